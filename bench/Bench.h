#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace lumnara::bench {

/// The middle one of these; at least one.
inline double medianOf(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

/// What nine in ten of these stay within; at least one.
inline double ninetiethOf(std::vector<double> times) {
    const auto place = times.begin() + static_cast<std::ptrdiff_t>(times.size() * 9 / 10);
    std::nth_element(times.begin(), place, times.end());
    return *place;
}

/// The median of `rounds` timings of one call, in microseconds.
template <class F> double medianMicroseconds(int rounds, F&& call) {
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(rounds));
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        call();
        const auto end = std::chrono::steady_clock::now();
        times.push_back(std::chrono::duration<double, std::micro>(end - start).count());
    }
    return medianOf(std::move(times));
}

/// Times, in microseconds, of two things that take turns, each first in every other pair.
struct PairedTimes {
    std::vector<double> ours;
    std::vector<double> bare;

    double ratio() const { return medianOf(ours) / medianOf(bare); }
};
template <class Ours, class Bare> PairedTimes timeInTurns(int pairs, const Ours& ours, const Bare& bare) {
    PairedTimes times;
    for (int pair = 0; pair < pairs; ++pair) {
        if (pair % 2 == 0) times.ours.push_back(ours());
        times.bare.push_back(bare());
        if (pair % 2 == 1) times.ours.push_back(ours());
    }
    return times;
}

/// One group's figures: a table on standard output, and build/bench/<group>.json at the end.
class Report {
public:
    explicit Report(std::string group) : group_(std::move(group)) { std::printf("%s\n", group_.c_str()); }
    Report(const Report&) = delete;
    ~Report() {
        std::filesystem::create_directories("build/bench");
        std::ofstream("build/bench/" + group_ + ".json") << figures_.dump(2) << '\n';
    }

    /// A figure that goes into the file.
    void add(const std::string& name, double value, const std::string& remark = {}) {
        figures_[name] = value;
        line(name, value, remark);
    }
    /// The middle of these times, and what nine in ten stay within, for the reader of the table alone.
    void times(const std::string& name, const std::vector<double>& microseconds) {
        std::printf("  %-32s %12.3f  p90 %.3f\n", name.c_str(), medianOf(microseconds),
                    ninetiethOf(microseconds));
        std::fflush(stdout);
    }
    /// A figure for the reader of the table alone, such as the yardstick of a ratio.
    void line(const std::string& name, double value, const std::string& remark = {}) {
        std::printf("  %-32s %12.3f  %s\n", name.c_str(), value, remark.c_str());
        std::fflush(stdout);
    }

private:
    std::string group_;
    nlohmann::json figures_ = nlohmann::json::object();
};

} // namespace lumnara::bench
