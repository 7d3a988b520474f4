#pragma once

#include "app/board/KeyPress.h"
#include "app/menu/DesktopMenuItem.h"
#include "core/model/Geometry.h"
#include "core/seams/Screens.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

class QuickSwitcherModel;

/// One screen's Board: it draws its model and forwards events. The rules are the model's and the
/// controller's. Owned by QuickSwitcherController, main thread; while open or hidden it is kept and used
/// again, so a callback may hide the surface that calls it.
class BoardSurface {
public:
    virtual ~BoardSurface() = default;

    /// Gets ready to be shown there, unseen: what takes time at a first showing is done.
    virtual void prepare(const ScreenInfo& screen) = 0;
    /// Puts the panel up, over the whole screen. Also called while shown, when the screen has changed.
    virtual void show(const ScreenInfo& screen) = 0;
    virtual void hide() = 0;
    /// The model has changed; several calls may be answered by one drawing.
    virtual void redraw() = 0;
    /// From now on the keys come to this panel, and to no other.
    virtual void takeKeyboard() = 0;
    /// The tile at a place in the arrangement of screens, or nothing.
    virtual std::optional<std::string> tileAt(Point pointer) const = 0;
    /// Opens a menu at the tile.
    virtual void openMenu(const std::string& key, const std::vector<DesktopMenuItem>& items) = 0;

    /// A key, before the panel looks at it itself; false when the panel may.
    std::function<bool(const KeyPress&)> onKey;
    /// A click on a tile.
    std::function<void(const std::string& key)> onSwitch;
    /// A click beside the tiles.
    std::function<void()> onClose;
    /// The tile under the pointer, or nothing between tiles, with the pointer's place in the arrangement of
    /// screens. Forward every report of the toolkit: one in which the pointer has not moved is dropped.
    std::function<void(const std::optional<std::string>& key, Point pointer)> onHoverTile;
    /// The pointer came onto this panel.
    std::function<void()> onPointerEntered;
    /// A tile is dragged over no part of this panel, the pointer being there in the arrangement of screens.
    std::function<void(const std::string& key, Point pointer)> onDragAcross;
    /// That drag ended there with the tile let go (true), or the tile came back (false).
    std::function<void(bool dropped, const std::string& key, Point pointer)> onDragAcrossEnded;
    /// The user asks for what can be done with a tile.
    std::function<void(const std::string& key)> onTileMenu;
    std::function<void(const DesktopMenuItem&)> onMenuChosen;
    /// A menu that belongs to the panel opened (true) or closed (false).
    std::function<void(bool)> onMenuTracking;
};

/// Makes surfaces; app/qt implements it.
class BoardSurfaceFactory {
public:
    virtual ~BoardSurfaceFactory() = default;
    /// The model outlives the surface. The surface calls it for what the pointer does to tiles alone:
    /// cycleScope, moveTile, commitOrder and toggleExpanded.
    virtual std::unique_ptr<BoardSurface> makeSurface(QuickSwitcherModel& model) = 0;
};

} // namespace lumnara
