#include "core/platform/sim/SimulatedRandom.h"

#include <fmt/core.h>

namespace lumnara {

std::uint64_t SimulatedRandom::next() {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
}

double SimulatedRandom::between(double low, double high) {
    return low + (high - low) * (static_cast<double>(next() >> 11) * 0x1p-53);
}

std::string SimulatedRandom::uuid() {
    const std::uint64_t high = (next() & ~std::uint64_t{0xF000}) | 0x4000;
    const std::uint64_t low = (next() >> 2) | (std::uint64_t{1} << 63);
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:012X}", high >> 32, (high >> 16) & 0xFFFF,
                       high & 0xFFFF, low >> 48, low & 0xFFFFFFFFFFFF);
}

} // namespace lumnara
