// The time that a piece of work takes.
#pragma once

#include <windows.h>

#include <algorithm>
#include <functional>
#include <limits>

namespace bench {

using Work = std::function<void()>;

// In microseconds.
inline double Now() {
    LARGE_INTEGER frequency;
    LARGE_INTEGER now;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    return static_cast<double>(now.QuadPart) * 1e6 / static_cast<double>(frequency.QuadPart);
}

// The best round, in microseconds for each piece of work.
struct Measured {
    double best = std::numeric_limits<double>::max();
    void Take(const Work& prepare, const Work& work, int repeats) {
        prepare();
        const double start = Now();
        for (int i = 0; i < repeats; ++i) {
            work();
        }
        best = std::min(best, (Now() - start) / repeats);
    }
};

} // namespace bench
