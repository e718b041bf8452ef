// SPDX-License-Identifier: Apache-2.0
// See Comparison.h.

#include "Comparison.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace kelp::bench {

namespace {

std::string digits(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", value < 10 ? 2 : value < 100 ? 1 : 0, value);
    return text;
}

std::string verdict(double value, double most, const std::string &unit)
{
    return most == 0 ? "" : "at most " + digits(most) + unit + (value <= most ? ": reached" : ": **missed**");
}

} // namespace

double Samples::percentile(double percent) const
{
    std::vector<double> values = _values;
    const auto last = static_cast<double>(values.size() - 1);
    const auto nth = values.begin() + static_cast<std::ptrdiff_t>(percent / 100 * last + 0.5);
    std::nth_element(values.begin(), nth, values.end());
    return *nth;
}

Samples &Comparison::add(const std::string &name, Target target)
{
    return _rows.emplace_back(Row{name, target, {}}).samples;
}

Samples &Comparison::addPeer(const std::string &name)
{
    Samples &samples = add(name);
    _peer = &_rows.back();
    return samples;
}

void Comparison::print() const
{
    const double peer = _peer->samples.percentile(50);
    for (const Row &row : _rows) {
        const double median = row.samples.percentile(50);
        const std::string target =
            verdict(median, row.target.value, ' ' + _unit) + verdict(median / peer, row.target.ratio, "");
        std::printf("| %s: %s | %s %s | %s | %s | %s | %s | %s |\n", _title.c_str(), row.name.c_str(),
                    digits(median).c_str(), _unit.c_str(), digits(row.samples.percentile(10)).c_str(),
                    digits(row.samples.percentile(90)).c_str(), digits(row.samples.percentile(99)).c_str(),
                    digits(median / peer).c_str(), target.c_str());
    }
    std::fflush(stdout);
}

} // namespace kelp::bench
