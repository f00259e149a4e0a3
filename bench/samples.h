// Timings of many presses, and the two figures reported of them.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace bench {

class Samples {
public:
    void add(double value) { values.push_back(value); }
    std::size_t size() const { return values.size(); }
    bool empty() const { return values.empty(); }

    double median() const { return percentile(0.5); }
    double p99() const { return percentile(0.99); }

    // Nearest rank: the smallest sample that at least this share of the samples does not exceed.
    double percentile(double share) const {
        if (values.empty())
            return 0;
        std::vector<double> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        const auto rank = std::size_t(std::ceil(share * double(sorted.size())));
        return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
    }

private:
    std::vector<double> values;
};

} // namespace bench
