#pragma once

#include <cstddef>
#include <exception>
#include <fmt/core.h>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace lumnara {

/// A failure that a user may meet: a typed value that carries its full sentence. Derived types hold
/// their case and payload and compare by both.
class Failure : public std::exception {
public:
    explicit Failure(std::string sentence) : sentence_(std::move(sentence)) {}

    /// The sentence that a surface shows as it stands.
    const std::string& sentence() const noexcept { return sentence_; }
    const char* what() const noexcept override { return sentence_.c_str(); }

private:
    std::string sentence_;
};

/// A family of failures. `Family` derives from FailureOf<Family, Payload...> and declares, both public,
///   enum class Case { ... };                          without gaps, from 0
///   static constexpr Sentence<Case> sentences[] = {   one for each case, in the order of the cases
///       {Case::tooLong, "At most {1} characters."}};  which may name the parts of the payload
/// A case without a sentence and a sentence that doesn't suit the payload don't compile.
template <class Family, class... Payload> class FailureOf : public Failure {
public:
    auto which() const { return static_cast<typename Family::Case>(which_); }
    bool operator==(const FailureOf& other) const {
        return which_ == other.which_ && payload_ == other.payload_;
    }

protected:
    template <class Case> struct Sentence {
        Case which;
        fmt::format_string<const Payload&...> text;
    };

    template <class Case>
    explicit FailureOf(Case which, Payload... payload)
        : Failure(told(which, payload...)),
          which_(static_cast<int>(which)),
          payload_(std::move(payload)...) {}

    /// With the payload of a case that has none.
    template <class Case>
        requires(sizeof...(Payload) > 0)
    explicit FailureOf(Case which) : FailureOf(which, Payload()...) {}

    template <std::size_t place> const auto& payload() const { return std::get<place>(payload_); }

private:
    /// Whether the enumeration names the value: a compiler writes "(Case)7" where it doesn't.
    template <auto value> static consteval bool isNamed() {
        const std::string_view text = __PRETTY_FUNCTION__;
        const std::string_view before = "value = ";
        return text[text.find(before) + before.size()] != '(';
    }

    template <class Case> static consteval bool hasEverySentence() {
        constexpr std::size_t count = std::size(Family::sentences);
        for (std::size_t place = 0; place < count; ++place)
            if (Family::sentences[place].which != static_cast<Case>(place)) return false;
        return !isNamed<static_cast<Case>(count)>();
    }

    template <class Case> static std::string told(Case which, const Payload&... payload) {
        static_assert(hasEverySentence<Case>(), "each case needs its sentence, in the order of the cases");
        return fmt::format(Family::sentences[static_cast<std::size_t>(which)].text, payload...);
    }

    int which_;
    std::tuple<Payload...> payload_;
};

/// The sentence of a Failure, and the description of any other exception; empty for none.
std::string sentenceOf(const std::exception_ptr& error);

} // namespace lumnara
