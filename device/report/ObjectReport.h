// SPDX-License-Identifier: Apache-2.0
// A directory of publish/subscribe objects as JSON, one entry a line, for the command line.
#pragma once

#include "device/store/Store.h"

#include <string>
#include <vector>

namespace kelp::device {

// {"type":"object","name":"battery","mode":"0644","uid":0,"gid":0,"sizeBytes":43} or {"type":"directory", ...} each.
std::string objectReport(const std::vector<Store::Entry> &entries);

} // namespace kelp::device
