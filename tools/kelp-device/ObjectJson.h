// SPDX-License-Identifier: Apache-2.0
// PPS texts, as the device hands them out, decoded for people and programs.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kelp::tool {

// {"name":"@battery","attributes":{"level":87}} for each object in the text. Throws Failure for what is no such text,
// as all here do.
std::vector<std::string> objectsAsJson(std::string text);

// The same of changes: with the lists "flags" of the object's own flags, and "created" and "deleted" of its
// attributes.
std::vector<std::string> changesAsJson(std::string text);

// The value of an attribute of the text's only object: a string as it is, any other as JSON. Nothing: it has none such.
std::optional<std::string> attributeValue(std::string text, const std::string &name);

} // namespace kelp::tool
