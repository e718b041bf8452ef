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
    return _rows.emplace_back(Row{name, target, {}, false}).samples;
}

Samples &Comparison::addPeer(const std::string &name)
{
    Samples &samples = add(name);
    _rows.back().isPeer = true;
    return samples;
}

void Comparison::atMost(const std::string &row, double ratio, const std::string &other)
{
    _bounds.push_back({row, false, ratio, other});
}

void Comparison::atLeast(const std::string &row, double ratio, const std::string &other)
{
    _bounds.push_back({row, true, ratio, other});
}

double Comparison::medianOf(const std::string &row) const
{
    const auto found =
        std::find_if(_rows.begin(), _rows.end(), [&](const Row &each) { return each.name == row; });
    return found->median();
}

double Comparison::peerMedian() const
{
    double least = 0;
    for (const Row &row : _rows) {
        if (row.isPeer && (least == 0 || row.median() < least)) {
            least = row.median();
        }
    }
    return least;
}

std::string Comparison::verdicts(const Row &row) const
{
    std::string text = verdict(row.median(), row.target.value, ' ' + _unit) +
                       verdict(row.median() / peerMedian(), row.target.ratio, "");
    for (const Bound &bound : _bounds) {
        if (bound.row == row.name) {
            const double ratio = row.median() / medianOf(bound.other);
            const bool isReached = bound.isLeast ? ratio >= bound.ratio : ratio <= bound.ratio;
            text += (text.empty() ? "" : "; ") + digits(ratio) + " of " + bound.other + ", " +
                    (bound.isLeast ? "at least " : "at most ") + digits(bound.ratio) +
                    (isReached ? ": reached" : ": **missed**");
        }
    }
    return text;
}

void Comparison::print() const
{
    const double peer = peerMedian();
    for (const Row &row : _rows) {
        std::printf("| %s: %s | %s %s | %s | %s | %s | %s | %s |\n", _title.c_str(), row.name.c_str(),
                    digits(row.median()).c_str(), _unit.c_str(), digits(row.samples.percentile(10)).c_str(),
                    digits(row.samples.percentile(90)).c_str(), digits(row.samples.percentile(99)).c_str(),
                    digits(row.median() / peer).c_str(), verdicts(row).c_str());
    }
    std::fflush(stdout);
}

} // namespace kelp::bench
