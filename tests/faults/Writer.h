#pragma once

#include <filesystem>
#include <vector>

namespace lumnara::testing {

/// One line of what a writer tells.
struct WriterLine {
    enum class What : char { begins = 'b', promises = 'p', fails = 'x' };
    What what{};
    /// The store's place among subjectKinds().
    char store = 0;
    int state = 0;
};

/// Changes all stores in an order that the seed chooses, from the states `from`, and writes a WriterLine to
/// `pipe` before each change and as soon as its state has to be safe. Doesn't return.
[[noreturn]] void writeUntilKilled(const std::filesystem::path& folder, unsigned seed, std::vector<int> from,
                                   int pipe);

} // namespace lumnara::testing
