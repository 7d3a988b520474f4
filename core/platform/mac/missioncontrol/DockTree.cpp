#include "core/platform/mac/missioncontrol/DockTree.h"

#include "core/text/Text.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace lumnara {

namespace {

using Element = DockTree::Element;

constexpr std::string_view dockBundleID = "com.apple.dock";

// What the Dock calls the parts of Mission Control; a later system may call them otherwise.
namespace identifiers {
constexpr std::string_view missionControl = "mc";
constexpr std::string_view display = "mc.display";
constexpr std::string_view spaces = "mc.spaces";
constexpr std::string_view spacesList = "mc.spaces.list";
constexpr std::string_view addDesktop = "mc.spaces.add";
} // namespace identifiers

// How far below a display's element they are looked for.
constexpr int listDepth = 3;
constexpr int addDepth = 4;
/// The whole Dock is deeper than any other search goes; this only keeps a tree without end from hanging us.
constexpr int wholeDepth = 12;

/// Points by which a display's element and its frame may differ.
constexpr double originTolerance = 2;

template <class T> std::optional<T> read(const Element& element, std::string_view name) {
    auto value = element->attribute(name);
    T* wanted = value ? std::get_if<T>(&*value) : nullptr;
    return wanted ? std::optional<T>(std::move(*wanted)) : std::nullopt;
}

std::string textOf(const Element& element, std::string_view name) {
    return read<std::string>(element, name).value_or(std::string());
}

AccessibilityElements childrenOf(const Element& element) {
    auto children = read<AccessibilityElements>(element, "AXChildren").value_or(AccessibilityElements());
    std::erase(children, nullptr);
    return children;
}

bool isNamed(const Element& element, std::string_view identifier) {
    return textOf(element, "AXIdentifier") == identifier;
}

bool isButton(const Element& element) { return textOf(element, "AXRole") == "AXButton"; }

Element childNamed(const Element& parent, std::string_view identifier) {
    for (const Element& child : childrenOf(parent))
        if (isNamed(child, identifier)) return child;
    return nullptr;
}

/// The first element below `parent`, depth first, that is wanted.
Element search(const Element& parent, int depth, const std::function<bool(const Element&)>& isWanted) {
    if (depth == 0) return nullptr;
    for (const Element& child : childrenOf(parent)) {
        if (isWanted(child)) return child;
        if (Element found = search(child, depth - 1, isWanted)) return found;
    }
    return nullptr;
}

Element searchNamed(const Element& parent, std::string_view identifier, int depth) {
    return search(parent, depth, [=](const Element& element) { return isNamed(element, identifier); });
}

std::optional<Rect> frameOf(const Element& element) {
    const auto position = read<Point>(element, "AXPosition");
    const auto size = read<Size>(element, "AXSize");
    if (!position || !size) return std::nullopt;
    return Rect{position->x, position->y, size->width, size->height};
}

bool hasOriginOf(const Rect& frame, const Rect& other) {
    const double left = std::min(frame.x, frame.x + frame.width);
    const double top = std::min(frame.y, frame.y + frame.height);
    return std::abs(left - other.x) < originTolerance && std::abs(top - other.y) < originTolerance;
}

std::optional<DockTree::Thumbnail> thumbnailOf(const Element& element) {
    if (!isButton(element) || isNamed(element, identifiers::addDesktop)) return std::nullopt;
    const auto frame = frameOf(element);
    if (!frame) return std::nullopt;
    return DockTree::Thumbnail{{textOf(element, "AXTitle"), *frame}, element};
}

/// A thumbnail whose place is no number comes behind all others.
double placeOf(const DockTree::Thumbnail& thumbnail) {
    const double x = thumbnail.button.frame.x;
    return std::isnan(x) ? HUGE_VAL : x;
}

bool describesAdding(const Element& element) {
    if (!isButton(element)) return false;
    const std::string description = text::lowercased(textOf(element, "AXDescription"));
    return description.find("add desktop") != std::string::npos ||
           description.find("add space") != std::string::npos;
}

} // namespace

Element DockTree::dock() {
    for (const RunningApplication& running : workspace_.runningApplications())
        if (running.app.bundleID == dockBundleID) return accessibility_.application(running.app.pid);
    return nullptr;
}

Element DockTree::missionControl() {
    const Element root = dock();
    return root ? childNamed(root, identifiers::missionControl) : nullptr;
}

Element DockTree::displayElement(const std::optional<Rect>& displayFrame) {
    const Element root = missionControl();
    if (!root) return nullptr;
    AccessibilityElements displays = childrenOf(root);
    std::erase_if(displays, [](const Element& child) { return !isNamed(child, identifiers::display); });
    if (displays.size() == 1) return displays.front();
    for (const Element& display : displays) {
        const auto frame = displayFrame ? frameOf(display) : std::nullopt;
        if (frame && hasOriginOf(*frame, *displayFrame)) return display;
    }
    return root;
}

std::optional<std::vector<DockTree::Thumbnail>>
DockTree::thumbnails(const std::optional<Rect>& displayFrame) {
    const Element display = displayElement(displayFrame);
    if (!display) return std::nullopt;
    Element bar = childNamed(display, identifiers::spaces);
    if (!bar) bar = searchNamed(display, identifiers::spacesList, listDepth);
    if (!bar) return std::nullopt;
    std::vector<Thumbnail> found;
    for (const Element& child : childrenOf(bar))
        if (auto thumbnail = thumbnailOf(child)) found.push_back(std::move(*thumbnail));
    std::ranges::sort(found, {}, placeOf);
    return found;
}

Element DockTree::addButton(const std::optional<Rect>& displayFrame) {
    const Element display = displayElement(displayFrame);
    const Element button = display ? searchNamed(display, identifiers::addDesktop, addDepth) : nullptr;
    return button && isButton(button) ? button : nullptr;
}

Element DockTree::describedAddButton() {
    const Element root = dock();
    return root ? search(root, wholeDepth, describesAdding) : nullptr;
}

} // namespace lumnara
