#include "core/catalog/DesktopAppearance.h"

#include "core/text/Text.h"

namespace lumnara::DesktopAppearance {

std::uint64_t hash(std::string_view name) {
    constexpr std::uint64_t offsetBasis = 0xcbf29ce484222325;
    constexpr std::uint64_t prime = 0x100000001b3;
    std::uint64_t hash = offsetBasis;
    for (const char byte : text::lowercased(name)) hash = (hash ^ static_cast<unsigned char>(byte)) * prime;
    return hash;
}

std::optional<std::string_view> suggestedColor(std::string_view name) {
    const std::string_view trimmed = text::trim(name);
    if (trimmed.empty()) return std::nullopt;
    return palette[hash(trimmed) % palette.size()];
}

std::string symbol(const Desktop& desktop) {
    if (desktop.record && desktop.record->icon && !desktop.record->icon->empty())
        return *desktop.record->icon;
    if (desktop.space.kind == SpaceKind::fullscreen) return "macwindow";
    if (!desktop.record || text::trim(desktop.record->name).empty()) return "square.dashed";
    return std::string(symbols[hash(desktop.record->name) % symbols.size()]);
}

} // namespace lumnara::DesktopAppearance
