// SPDX-License-Identifier: Apache-2.0
// See ObjectReport.h.

#include "ObjectReport.h"

#include <nlohmann/json.hpp>

namespace kelp::device {

namespace {

// Four octal digits, as chmod(1) takes them.
std::string modeText(mode_t mode)
{
    std::string text = "0000";
    for (std::size_t place = text.size(); place-- > 0; mode >>= 3) {
        text[place] = static_cast<char>('0' + (mode & 7));
    }
    return text;
}

} // namespace

std::string objectReport(const std::vector<Store::Entry> &entries)
{
    std::string report;
    for (const Store::Entry &entry : entries) {
        nlohmann::ordered_json json = {{"type", entry.status.isDirectory ? "directory" : "object"},
                                       {"name", entry.name},
                                       {"mode", modeText(entry.status.mode)},
                                       {"uid", entry.status.uid},
                                       {"gid", entry.status.gid}};
        if (!entry.status.isDirectory) {
            json["sizeBytes"] = entry.status.size;
        }
        report += json.dump() + '\n';
    }
    return report;
}

} // namespace kelp::device
