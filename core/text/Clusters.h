#pragma once

#include "core/text/CodePoints.h"

#include <cstddef>
#include <iterator>
#include <string_view>

namespace lumnara::text {

/// Decides, code point by code point, where a user-perceived character begins (extended grapheme clusters,
/// UAX #29, GB3 to GB13 with GB9c).
class ClusterBoundary {
public:
    /// Whether a cluster begins before the next code point of the text.
    bool startsBefore(const CodePointInfo& next);

private:
    bool joins(const CodePointInfo& info) const;

    bool started_ = false;
    GraphemeBreak last_ = GraphemeBreak::other;
    bool pictograph_ = false;       ///< the text so far ends in a pictograph and its extenders
    bool joinedPictograph_ = false; ///< the same with a ZWJ behind it
    bool oddIndicators_ = false;    ///< the text so far ends in an odd number of regional indicators
    bool consonant_ = false;        ///< the text so far ends in an Indic consonant and its extenders
    bool linked_ = false;           ///< the same with a linker among them
};

/// The user-perceived characters of a text, as views into it.
class Clusters {
public:
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using pointer = const std::string_view*;
        using reference = std::string_view;

        Iterator() = default;
        Iterator(std::string_view text, std::size_t at) : text_(text), begin_(at), end_(at) { advance(); }

        std::string_view operator*() const { return text_.substr(begin_, end_ - begin_); }
        Iterator& operator++() {
            begin_ = end_;
            advance();
            return *this;
        }
        Iterator operator++(int) {
            Iterator old = *this;
            ++*this;
            return old;
        }
        bool operator==(const Iterator& other) const { return begin_ == other.begin_; }

        /// The byte at which the character begins.
        std::size_t offset() const { return begin_; }

    private:
        void advance();

        std::string_view text_;
        std::size_t begin_ = 0;
        std::size_t end_ = 0;
    };

    explicit Clusters(std::string_view text) : text_(text) {}
    Iterator begin() const { return {text_, 0}; }
    Iterator end() const { return {text_, text_.size()}; }

private:
    std::string_view text_;
};

/// The number of user-perceived characters.
std::size_t length(std::string_view text);

/// The first or last `count` characters, or the whole text when it has no more.
std::string_view first(std::string_view text, std::size_t count);
std::string_view last(std::string_view text, std::size_t count);

/// Whether the text begins or ends with these whole characters: "é" written with a combining accent does
/// not begin with "e".
bool beginsWith(std::string_view text, std::string_view beginning);
bool endsWith(std::string_view text, std::string_view ending);

/// The text without its last character; empty stays empty.
std::string_view withoutLast(std::string_view text);

} // namespace lumnara::text
