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
