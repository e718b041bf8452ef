// SPDX-License-Identifier: Apache-2.0
// The maps that the codec benchmark encodes and decodes.
#pragma once

#include <QtCore/QVariant>

namespace kelp::bench {

QVariantMap flatMap();   // an object's attributes: about 300 bytes of JSON
QVariantMap nestedMap(); // groups of settings, some of them nested: about 4 KB
QVariantMap listMap();   // lists of records, with maps and lists in them: about 30 KB

} // namespace kelp::bench
