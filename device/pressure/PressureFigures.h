// SPDX-License-Identifier: Apache-2.0
// The kernel's memory-pressure figures, and the severity that they come to. Pure: MemoryPressure reads the file.
#pragma once

#include <optional>
#include <string_view>

namespace kelp::device {

// The share of the last ten seconds in which work waited for memory, in hundredths of a per cent: 0 to 10000.
struct PressureFigures {
    int some = 0; // some of it
    int full = 0; // all of it at once

    // Reads the text of a pressure file, exactly as the kernel writes it:
    //     some avg10=0.00 avg60=0.00 avg300=0.00 total=0
    //     full avg10=0.00 avg60=0.00 avg300=0.00 total=0
    // Nothing for any other text, such as the first half of one.
    static std::optional<PressureFigures> parse(std::string_view text);
};

// The severity (enum navigator_severity) after one that has held until now. Critical begins where full reaches 10 %, low
// where some does, and each lasts until its figure has fallen below 5 %: a figure that wavers around a bound changes
// nothing.
int severityAfter(int present, const PressureFigures &figures);

} // namespace kelp::device
