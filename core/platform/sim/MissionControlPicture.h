#pragma once

#include "core/model/Geometry.h"
#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// A thumbnail of a Spaces bar, or the label that stands for it in a collapsed one.
struct ThumbnailPicture {
    SpaceID space;
    SpaceKind kind = SpaceKind::user;
    /// "Desktop <number>", or the name of the application that has the Space to itself.
    std::string title;
    Rect frame;
    /// The display shows it.
    bool isCurrent = false;
    /// It hangs on the pointer; the others leave a gap where it would drop.
    bool isDragged = false;

    bool operator==(const ThumbnailPicture&) const = default;
};

/// The Spaces bar of one screen.
struct SpacesBarPicture {
    /// Of the screen.
    std::string display;
    Rect screen;
    Rect bar;
    /// 0 for labels only, 1 for pictures.
    double expanded = 0;
    /// From left to right in the order that a drop here and now would make.
    std::vector<ThumbnailPicture> thumbnails;
    std::optional<Rect> addButton;

    bool operator==(const SpacesBarPicture&) const = default;
};

/// A simulated Mission Control at one moment, for whoever draws it. Frames are in points of the arrangement
/// of all screens.
struct MissionControlPicture {
    /// 0 when it isn't on the screen, 1 when it stands.
    double open = 0;
    /// Of all screens that have one, in their order.
    std::vector<SpacesBarPicture> bars;
    Point pointer;
    bool isButtonDown = false;

    bool operator==(const MissionControlPicture&) const = default;
};

} // namespace lumnara
