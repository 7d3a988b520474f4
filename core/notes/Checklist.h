#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lumnara {

/// Checklists inside a text: lines whose first two characters are a box and a blank. Nothing else is an
/// item; indentation is not accepted. All texts are UTF-8. A line ends at \n, \r, \r\n, U+0085, U+2028 or
/// U+2029, which belongs to it.
namespace Checklist {

inline constexpr std::string_view uncheckedMarker = "\u2610 ";
inline constexpr std::string_view checkedMarker = "\u2611 ";

/// What a text view has to apply, so that undo stays with it.
struct Edit {
    /// What is replaced, in UTF-16 units of the whole text.
    std::size_t location = 0;
    std::size_t length = 0;
    std::string replacement;

    bool operator==(const Edit&) const = default;
};

struct Progress {
    std::size_t checked = 0;
    std::size_t total = 0;
    bool operator==(const Progress&) const = default;
};

bool isItem(std::string_view line);

/// Exchanges the box of the line at `location`, in UTF-16 units of the text. Nothing when that line is no
/// item or the location lies outside the text, as its end does.
std::optional<Edit> toggleEdit(std::string_view text, std::ptrdiff_t location);
/// Makes the line at `location` an item, or plain when it is one. A location outside the text, in UTF-16
/// units, counts as the nearest inside.
Edit convertEdit(std::string_view text, std::ptrdiff_t location);

/// The text after toggleEdit() or convertEdit() of the line at `position`, in user-perceived characters.
std::string toggle(std::string_view text, std::ptrdiff_t position);
std::string convert(std::string_view text, std::ptrdiff_t position);

Progress progress(std::string_view text);

} // namespace Checklist

} // namespace lumnara
