// One line of the summary table. Each benchmark appends its lines to the file named by
// VELMORA_BENCH_RESULTS (tab-separated), and tools/bench-desktop prints them together at the end.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

namespace bench {

struct Figure {
    double median = 0;
    std::optional<double> p99;
};

struct Result {
    std::string name;
    std::string unit;
    Figure measured;
    std::string yardstick; // what the same figure is compared with, measured in the same run
    std::optional<Figure> yardstickFigure;
    std::string goal;
    std::optional<bool> met; // none: no goal, shown for context
};

inline void record(const Result& r) {
    const char* path = std::getenv("VELMORA_BENCH_RESULTS");
    if (!path || !*path)
        return;
    FILE* f = std::fopen(path, "a");
    if (!f)
        return;
    const auto number = [](std::optional<double> v) { return v ? std::to_string(*v) : std::string("-"); };
    std::fprintf(f, "%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\n", r.name.c_str(), r.unit.c_str(),
                 number(r.measured.median).c_str(), number(r.measured.p99).c_str(),
                 r.yardstick.empty() ? "-" : r.yardstick.c_str(),
                 number(r.yardstickFigure ? std::optional(r.yardstickFigure->median) : std::nullopt).c_str(),
                 number(r.yardstickFigure ? r.yardstickFigure->p99 : std::nullopt).c_str(),
                 r.goal.empty() ? "-" : r.goal.c_str(),
                 !r.met   ? "-"
                 : *r.met ? "pass"
                          : "FAIL");
    std::fclose(f);
}

} // namespace bench
