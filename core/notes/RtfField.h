#pragma once

#include <string>
#include <string_view>

namespace lumnara {

/// The address that a field's instruction links to, with the place in it behind "#"; empty when it is no
/// link. `HYPERLINK "https://example.org/" \l "part"`: a backslash makes the next character plain in
/// quotes and begins a switch outside.
std::string rtfLinkAddress(std::string_view instruction);

} // namespace lumnara
