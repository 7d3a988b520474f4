#include "core/platform/mac/server/ListedWindow.h"

#include <cmath>
#include <string_view>
#include <utility>

namespace lumnara {

namespace {

template <class Integer>
std::optional<Integer> integerMember(const PropertyDictionary& entry, std::string_view key) {
    const PropertyValue* value = entry.find(key);
    const auto whole = value ? value->signedInteger() : std::nullopt;
    if (!whole || !std::in_range<Integer>(*whole)) return std::nullopt;
    return static_cast<Integer>(*whole);
}

std::optional<double> realMember(const PropertyDictionary& entry, std::string_view key) {
    const PropertyValue* value = entry.find(key);
    if (!value) return std::nullopt;
    if (const auto* real = std::get_if<double>(&value->storage()))
        return std::isfinite(*real) ? std::optional(*real) : std::nullopt;
    const auto whole = value->signedInteger();
    return whole ? std::optional(static_cast<double>(*whole)) : std::nullopt;
}

std::optional<std::string> textMember(const PropertyDictionary& entry, std::string_view key) {
    const PropertyValue* value = entry.find(key);
    return value && value->text() ? std::optional(*value->text()) : std::nullopt;
}

std::optional<Rect> boundsOf(const PropertyDictionary& entry) {
    const PropertyValue* value = entry.find("kCGWindowBounds");
    const PropertyDictionary* bounds = value ? value->dictionary() : nullptr;
    if (!bounds) return std::nullopt;
    const auto x = realMember(*bounds, "X");
    const auto y = realMember(*bounds, "Y");
    const auto width = realMember(*bounds, "Width");
    const auto height = realMember(*bounds, "Height");
    if (!x || !y || !width || !height) return std::nullopt;
    return Rect{*x, *y, *width, *height};
}

} // namespace

ListedWindow ListedWindow::of(const PropertyDictionary& entry) {
    ListedWindow window;
    window.number = integerMember<std::uint32_t>(entry, "kCGWindowNumber");
    window.ownerPid = integerMember<std::int32_t>(entry, "kCGWindowOwnerPID");
    window.layer = integerMember<std::int64_t>(entry, "kCGWindowLayer");
    window.bounds = boundsOf(entry);
    window.alpha = realMember(entry, "kCGWindowAlpha");
    window.ownerName = textMember(entry, "kCGWindowOwnerName");
    window.title = textMember(entry, "kCGWindowName");
    return window;
}

} // namespace lumnara
