#pragma once

#include <cstdint>
#include <string>

namespace lumnara {

/// Numbers that follow from a seed, the same on every machine: SplitMix64 (Steele, Lea and Flood 2014).
class SimulatedRandom {
public:
    explicit SimulatedRandom(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next();
    /// Below `bound`, which is positive.
    std::uint64_t below(std::uint64_t bound) { return next() % bound; }
    /// In [low, high).
    double between(double low, double high);
    /// In the form of newUuid().
    std::string uuid();

private:
    std::uint64_t state_;
};

} // namespace lumnara
