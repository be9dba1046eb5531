#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

/// Runs the program's way and the bare way in turn, so that a noisy machine troubles both alike, and reports
/// the median of each in milliseconds and their ratio.
template <typename Ours, typename Bare>
void compare(benchmark::State &state, Ours ours, Bare bare)
{
    using Clock = std::chrono::steady_clock;
    const auto milliseconds = [](Clock::time_point start) {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    };
    const auto median = [](std::vector<double> &values) {
        std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(values.size() / 2), values.end());
        return values[values.size() / 2];
    };
    std::vector<double> ourTimes;
    std::vector<double> bareTimes;
    for (auto _ : state) {
        const auto start = Clock::now();
        ours();
        ourTimes.push_back(milliseconds(start));
        state.PauseTiming();
        const auto bareStart = Clock::now();
        bare();
        bareTimes.push_back(milliseconds(bareStart));
        state.ResumeTiming();
    }
    state.counters["ours_ms"] = median(ourTimes);
    state.counters["bare_ms"] = median(bareTimes);
    state.counters["ratio"] = median(ourTimes) / median(bareTimes);
}
