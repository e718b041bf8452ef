// SPDX-License-Identifier: Apache-2.0
// What was measured side by side, as rows of a table in docs/performance.md. Every benchmark prints its
// results so.
#pragma once

#include <deque>
#include <string>
#include <vector>

namespace kelp::bench {

class Samples
{
public:
    void add(double value) { _values.push_back(value); }
    double percentile(double percent) const; // there is at least one value

private:
    std::vector<double> _values;
};

// The most that a median may be; 0: as much as it likes.
struct Target {
    double ratio = 0; // to the peer's median
    double value = 0;
};

class Comparison
{
public:
    Comparison(std::string title, std::string unit) : _title(std::move(title)), _unit(std::move(unit)) {}

    // Something measured; the samples are to be filled before print().
    Samples &add(const std::string &name, Target target = {});

    // What the others are compared to: of several, the one with the least median.
    Samples &addPeer(const std::string &name);

    // What the median of a row should be, as a ratio to that of another one.
    void atMost(const std::string &row, double ratio, const std::string &other);
    void atLeast(const std::string &row, double ratio, const std::string &other);

    void print() const;

private:
    struct Row {
        std::string name;
        Target target;
        Samples samples;
        bool isPeer = false;
        double median() const { return samples.percentile(50); }
    };
    struct Bound {
        std::string row;
        bool isLeast; // else most
        double ratio;
        std::string other;
    };

    double medianOf(const std::string &row) const;
    double peerMedian() const;
    std::string verdicts(const Row &row) const;

    std::string _title;
    std::string _unit;
    std::deque<Row> _rows; // which stay where they are while it grows
    std::vector<Bound> _bounds;
};

} // namespace kelp::bench
