// SPDX-License-Identifier: Apache-2.0
// See Report.h.

#include "Report.h"

#include "Failure.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace kelp::tool {

void forEachObject(const std::string &report, const std::function<void(const nlohmann::json &)> &use)
{
    try {
        std::istringstream lines(report);
        for (std::string line; std::getline(lines, line);) {
            use(nlohmann::json::parse(line));
        }
    } catch (const nlohmann::json::exception &error) {
        throw Failure(EXIT_REFUSED,
                      std::string("the device's report cannot be read, it is of another release: ") +
                          error.what());
    }
}

} // namespace kelp::tool
