#include "core/platform/sim/SimulatedAccessibility.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

// The system's codes.
constexpr int success = 0;
constexpr int cannotComplete = -25204;
constexpr int invalidElement = -25202;
constexpr int actionUnsupported = -25206;
constexpr int permissionDenied = -25211;

/// What an element of the Dock stands for.
enum class Part { application, missionControl, display, group, spaces, list, thumbnail, add };

struct Place {
    Part part = Part::application;
    /// Of the screen, for all below Mission Control itself.
    std::string screen{};
    /// Of a thumbnail.
    SpaceID space{};
};

class DockElement : public AccessibilityElement {
public:
    DockElement(SimulatedMac& mac, std::int32_t pid, Place place)
        : mac_(mac),
          pid_(pid),
          place_(std::move(place)) {}

    std::optional<AccessibilityValue> attribute(std::string_view name) override;
    int perform(std::string_view action) override;

private:
    /// The process it belongs to runs, and may be asked.
    bool answers() const { return mac_.isTrusted && mac_.apps().find(pid_) != nullptr; }
    bool exists() const;
    AccessibilityElements children() const;
    std::vector<Place> parts() const;
    std::vector<Place> partsOfBar() const;
    std::optional<Rect> frame() const;
    std::optional<ThumbnailPicture> thumbnail() const;
    std::optional<SpacesBarPicture> bar() const { return mac_.missionControl().bar(place_.screen); }
    std::optional<AccessibilityValue> identifier() const;
    std::string role() const;

    SimulatedMac& mac_;
    std::int32_t pid_;
    Place place_;
};

bool DockElement::exists() const {
    if (!answers()) return false;
    switch (place_.part) {
    case Part::application: return true;
    case Part::missionControl: return mac_.missionControl().isUp();
    case Part::thumbnail: return thumbnail().has_value();
    case Part::add: return bar() && bar()->addButton;
    case Part::display:
    case Part::group: return mac_.missionControl().isUp();
    case Part::spaces:
    case Part::list: return bar().has_value();
    }
    return false;
}

std::optional<AccessibilityValue> DockElement::attribute(std::string_view name) {
    if (!exists()) return std::nullopt;
    if (name == "AXChildren") return children();
    if (name == "AXRole") return role();
    if (name == "AXIdentifier") return identifier();
    if (name == "AXTitle" && place_.part == Part::thumbnail) return thumbnail()->title;
    if (name == "AXDescription" && place_.part == Part::add) return std::string("Add Desktop");
    const auto at = frame();
    if (at && name == "AXPosition") return Point{at->x, at->y};
    if (at && name == "AXSize") return Size{at->width, at->height};
    return std::nullopt;
}

int DockElement::perform(std::string_view action) {
    SimulatedMissionControl& missionControl = mac_.missionControl();
    if (!mac_.isTrusted) return permissionDenied;
    if (!exists()) return invalidElement;
    if (place_.part == Part::add && action == "AXPress")
        return missionControl.add(place_.screen) ? success : cannotComplete;
    if (place_.part == Part::thumbnail && action == "AXRemoveDesktop")
        return missionControl.remove(place_.space) ? success : cannotComplete;
    return actionUnsupported;
}

AccessibilityElements DockElement::children() const {
    AccessibilityElements made;
    for (Place& place : parts()) made.push_back(std::make_shared<DockElement>(mac_, pid_, std::move(place)));
    return made;
}

std::vector<Place> DockElement::parts() const {
    const bool isOlder = mac_.dockTree() == SimulatedDockTree::older;
    std::vector<Place> places;
    switch (place_.part) {
    case Part::application:
        if (mac_.missionControl().isUp() && pid_ == mac_.dockPid()) places.push_back({Part::missionControl});
        break;
    case Part::missionControl:
        for (const ScreenInfo& screen : mac_.layout().screens())
            places.push_back({Part::display, screen.uuid});
        break;
    case Part::display:
        if (!isOlder)
            places.push_back({Part::group, place_.screen});
        else if (bar())
            places.push_back({Part::spaces, place_.screen});
        break;
    case Part::group:
        if (bar()) places = {{Part::list, place_.screen}, {Part::add, place_.screen}};
        break;
    case Part::spaces:
        places = partsOfBar();
        places.push_back({Part::add, place_.screen});
        break;
    case Part::list: places = partsOfBar(); break;
    case Part::thumbnail:
    case Part::add: break;
    }
    std::erase_if(places, [this](const Place& place) {
        return place.part == Part::add && !DockElement(mac_, pid_, place).exists();
    });
    return places;
}

/// In the order in which the desktops were made, whatever their order in the bar.
std::vector<Place> DockElement::partsOfBar() const {
    std::vector<Place> places;
    const auto shown = bar();
    if (!shown) return places;
    for (const ThumbnailPicture& each : shown->thumbnails)
        places.push_back({Part::thumbnail, place_.screen, each.space});
    std::ranges::sort(places, {}, &Place::space);
    return places;
}

std::optional<ThumbnailPicture> DockElement::thumbnail() const {
    const auto shown = bar();
    if (!shown) return std::nullopt;
    const auto found = std::ranges::find(shown->thumbnails, place_.space, &ThumbnailPicture::space);
    return found == shown->thumbnails.end() ? std::nullopt : std::optional(*found);
}

std::optional<Rect> DockElement::frame() const {
    switch (place_.part) {
    case Part::thumbnail: return thumbnail()->frame;
    case Part::add: return bar()->addButton;
    case Part::display: {
        for (const ScreenInfo& screen : mac_.layout().screens())
            if (screen.uuid == place_.screen) return screen.frame;
        return std::nullopt;
    }
    case Part::spaces:
    case Part::list: return bar()->bar;
    default: return std::nullopt;
    }
}

std::optional<AccessibilityValue> DockElement::identifier() const {
    switch (place_.part) {
    case Part::missionControl: return std::string("mc");
    case Part::display: return std::string("mc.display");
    case Part::spaces: return std::string("mc.spaces");
    case Part::list: return std::string("mc.spaces.list");
    case Part::add: return std::string("mc.spaces.add");
    default: return std::nullopt;
    }
}

std::string DockElement::role() const {
    switch (place_.part) {
    case Part::application: return "AXApplication";
    case Part::list: return "AXList";
    case Part::thumbnail:
    case Part::add: return "AXButton";
    default: return "AXGroup";
    }
}

} // namespace

std::shared_ptr<AccessibilityElement> SimulatedAccessibility::application(std::int32_t pid) {
    return std::make_shared<DockElement>(mac_, pid, Place{});
}

} // namespace lumnara
