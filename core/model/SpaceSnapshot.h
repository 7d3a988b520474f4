#pragma once

#include "core/base/Date.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// A display's identity as the window server reports it. "Main" stands for the one shared arrangement of
/// a session whose displays have no Spaces of their own. Window systems spell the same uuid in different
/// cases: whoever looks a display up by its uuid compares with text::equalsIgnoringCase.
struct DisplayID {
    std::string uuid;

    bool operator==(const DisplayID&) const = default;
    bool isMain() const { return uuid == "Main"; }
};

/// The window server's id64 of a Space; valid as long as the Space lives.
struct SpaceID {
    std::uint64_t raw = 0;

    auto operator<=>(const SpaceID&) const = default;
    /// The decimal number.
    std::string text() const { return std::to_string(raw); }
};

enum class SpaceKind : int { user = 0, system = 2, fullscreen = 4, unknown = -1 };

/// The kind for the window server's type number; numbers without a meaning and no number give `unknown`.
SpaceKind spaceKindOf(std::optional<std::int64_t> type);

struct RunningApp {
    std::int32_t pid = 0;
    std::optional<std::string> bundleID;
    std::string name;

    bool operator==(const RunningApp&) const = default;
    /// The id under which its full-screen Spaces are keyed: the bundle id if there is one, else the name.
    const std::string& ownerID() const { return bundleID ? *bundleID : name; }
};

struct Space {
    SpaceID id;
    /// Empty for a desktop that the window server reports without one.
    std::string uuid;
    SpaceKind kind = SpaceKind::unknown;
    /// Zero-based place in the display's list as read.
    int indexOnDisplay = 0;
    std::optional<std::int64_t> managedID;
    /// Absent after parsing; the live provider fills it in.
    std::optional<RunningApp> fullscreenOwner;

    bool operator==(const Space&) const = default;
};

struct DisplaySpaces {
    DisplayID display;
    /// In the window server's order.
    std::vector<Space> spaces;
    /// The Space that the display is showing.
    SpaceID currentID;
    /// The display's human name, where the reading tells it.
    std::optional<std::string> name = std::nullopt;

    bool operator==(const DisplaySpaces&) const = default;
};

struct PlacedSpace {
    Space space;
    DisplayID display;

    bool operator==(const PlacedSpace&) const = default;
};

/// The layout of all displays at one instant. `takenAt` takes part in equality: whoever wants to know
/// whether the layout changed compares `displays`.
///
/// A Space's stable key is the text under which it is known across restarts: its uuid,
/// "primary:<display uuid>", "fullscreen:<owner id>" or "fullscreen:<owner id>#<n>" with n from 2.
struct SpaceSnapshot {
    /// In the window server's order.
    std::vector<DisplaySpaces> displays;
    Date takenAt;
    /// The display that has the keyboard, where a change of it is told of; else the provider is asked.
    std::optional<DisplayID> focusedDisplay = std::nullopt;

    bool operator==(const SpaceSnapshot&) const = default;

    /// Every Space of every display, in display order and then in list order. Copies; for a few Spaces.
    std::vector<PlacedSpace> allSpaces() const;

    /// Whether the session has one shared arrangement: exactly one display, "Main".
    bool isSharedMain() const;

    /// The display key of a per-display setting for a screen: "Main" under a shared arrangement, else `uuid`.
    std::string presentationDisplay(const std::string& uuid) const;

    /// The first display of that uuid in any case, or null. Points into this snapshot.
    const DisplaySpaces* spacesOnDisplay(std::string_view uuid) const;

    /// The Spaces of kind `user` of a display, in order.
    std::vector<Space> userSpaces(std::string_view displayUuid) const;

    /// The full-screen Spaces whose owner has this id or this name, in `allSpaces` order.
    std::vector<PlacedSpace> fullscreenSpaces(std::string_view ownerID) const;

    /// The stable key of a Space on a display, or nothing when it has none. Reads the whole snapshot for a
    /// full-screen Space; for the keys of many Spaces use stableKeys().
    std::optional<std::string> key(const Space& space, std::string_view displayUuid) const;

    /// key() of every Space, in `allSpaces` order, in linear time.
    std::vector<std::optional<std::string>> stableKeys() const;

    /// The Space that a stable key, or an "unkeyed:<raw id>", stands for in this snapshot, or nothing.
    std::optional<PlacedSpace> resolve(std::string_view key) const;
};

} // namespace lumnara

template <> struct std::hash<lumnara::DisplayID> {
    std::size_t operator()(const lumnara::DisplayID& display) const noexcept;
};
template <> struct std::hash<lumnara::SpaceID> {
    std::size_t operator()(const lumnara::SpaceID& id) const noexcept {
        return std::hash<std::uint64_t>{}(id.raw);
    }
};
template <> struct std::hash<lumnara::RunningApp> {
    std::size_t operator()(const lumnara::RunningApp& app) const noexcept;
};
template <> struct std::hash<lumnara::Space> {
    std::size_t operator()(const lumnara::Space& space) const noexcept;
};
template <> struct std::hash<lumnara::DisplaySpaces> {
    std::size_t operator()(const lumnara::DisplaySpaces& spaces) const noexcept;
};
template <> struct std::hash<lumnara::SpaceSnapshot> {
    std::size_t operator()(const lumnara::SpaceSnapshot& snapshot) const noexcept;
};
