#pragma once

#include "core/async/Driver.h"
#include "core/model/SpaceSnapshot.h"
#include "core/platform/mac/server/WindowServer.h"
#include "core/platform/sim/MissionControlPicture.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

class SimulatedMac;

struct WindowPicture {
    WindowNumber number = 0;
    /// The application that owns it.
    std::string owner;
    /// In points of the arrangement of all screens.
    Rect frame;
    /// Its application is the active one.
    bool isActive = false;

    bool operator==(const WindowPicture&) const = default;
};

struct SpacePicture {
    SpaceID space;
    SpaceKind kind = SpaceKind::user;
    /// Back to front.
    std::vector<WindowPicture> windows;

    bool operator==(const SpacePicture&) const = default;
};

/// One screen with what it shows.
struct ScreenPicture {
    std::string uuid;
    std::string name;
    Rect frame;
    bool hasMenuBar = false;
    /// All that its display has, in their order.
    std::vector<SpacePicture> spaces;
    SpaceID shown;
    /// The Space that comes in from one side while the shown one leaves.
    std::optional<SpaceID> arriving;
    bool arrivesFromTheRight = false;
    /// How far it has come, from 0 to 1.
    double arrived = 0;

    bool operator==(const ScreenPicture&) const = default;
    /// One of its Spaces, or null.
    const SpacePicture* find(SpaceID space) const;
};

/// A simulated Mac at one moment, for whoever draws it.
struct MacPicture {
    std::vector<ScreenPicture> screens;
    MissionControlPicture missionControl;
    /// The active application's name; empty when there is none.
    std::string frontmost;

    bool operator==(const MacPicture&) const = default;
};

MacPicture pictureOf(SimulatedMac& mac, async::Nanos now);

} // namespace lumnara
