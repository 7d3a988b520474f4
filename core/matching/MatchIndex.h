#pragma once

#include "core/matching/Candidate.h"
#include "core/matching/PhraseBank.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace lumnara {

/// What the matcher needs of a list of candidates, made ready once for the many queries that the list meets:
/// building it costs some fifty times what a query costs. Queries leave it as it is; any thread.
class MatchIndex {
public:
    /// A candidate, by its position in the list.
    struct Hit {
        std::uint32_t position = 0;
        double score = 0;

        bool operator==(const Hit&) const = default;
    };

    struct Entry {
        std::uint32_t display = 0; ///< in `displays`
        std::uint32_t order = 0;   ///< the place among all entries by index on display, then by position
        std::optional<int> userNumber;
    };

    explicit MatchIndex(std::span<const Candidate> candidates = {});

    /// An entry for each candidate.
    const std::vector<Entry>& entries() const { return entries_; }
    /// The positions by Entry::order.
    const std::vector<std::uint32_t>& ordered() const { return ordered_; }
    /// The distinct displays, in order of first appearance.
    const std::vector<DisplayID>& displays() const { return displays_; }
    /// The phrases; their owners are the positions.
    const PhraseBank& phrases() const { return phrases_; }

private:
    std::vector<DisplayID> displays_;
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> ordered_;
    PhraseBank phrases_;
};

} // namespace lumnara
