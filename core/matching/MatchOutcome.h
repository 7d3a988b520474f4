#pragma once

#include "core/matching/Candidate.h"
#include "core/matching/VoiceCommand.h"

#include <variant>
#include <vector>

namespace lumnara {

/// What a transcript came to.
struct MatchOutcome {
    struct Accepted {
        Candidate candidate;
        double score = 0;
        bool operator==(const Accepted&) const = default;
    };
    /// At most three desktops that can't be told apart, best first.
    struct Ambiguous {
        std::vector<Candidate> candidates;
        bool operator==(const Ambiguous&) const = default;
    };
    /// Nothing fits; the best score seen.
    struct None {
        double best = 0;
        bool operator==(const None&) const = default;
    };
    struct Command {
        VoiceCommand command = VoiceCommand::next;
        bool operator==(const Command&) const = default;
    };
    /// A partial transcript that proves nothing yet.
    struct KeepListening {
        bool operator==(const KeepListening&) const = default;
    };
    using Choice = std::variant<Accepted, Ambiguous, None, Command, KeepListening>;

    Choice choice;

    /// The alternative of that type, or null.
    template <class T> const T* as() const { return std::get_if<T>(&choice); }
    bool operator==(const MatchOutcome&) const = default;
};

} // namespace lumnara
