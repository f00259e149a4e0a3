// How a benchmark gives up: one line on standard error naming the program, and a non-zero exit.
#pragma once

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace bench {

inline const char* programName = "bench";

[[noreturn]] inline void fail(const char* format, ...) {
    std::fprintf(stderr, "%s: ", programName);
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputc('\n', stderr);
    std::exit(1);
}

} // namespace bench
