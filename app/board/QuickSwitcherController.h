#pragma once

#include "app/AppState.h"
#include "app/board/BoardSettings.h"
#include "app/board/BoardSurface.h"
#include "app/board/QuickSwitcherModel.h"
#include "core/platform/GlobalShortcuts.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace lumnara {

/// The Board as the user meets it: puts up one surface per display, routes the keyboard to one of them, and
/// takes them all down again. Main thread.
class QuickSwitcherController {
public:
    /// The state and the factory outlive the controller.
    QuickSwitcherController(AppState& state, BoardSurfaceFactory& factory, BoardSettings settings = {});
    ~QuickSwitcherController();
    QuickSwitcherController(const QuickSwitcherController&) = delete;
    QuickSwitcherController& operator=(const QuickSwitcherController&) = delete;

    bool isOpen() const { return !shown_.empty(); }
    /// Opens the Board, or closes it when it is open.
    void toggle();
    void open();
    void close();
    /// Closes the Board first, then asks for the switch.
    void switchFromBoard(const Desktop& desktop);

    /// The shortcut that calls toggle(). While the Board holds the keyboard the session can't see it, so the
    /// Board answers to it itself.
    std::optional<Shortcut> toggleShortcut;

    std::function<void()> onShown;
    std::function<void()> onClosed;
    /// The desktop that the user chose.
    std::function<void(const Desktop&)> onSwitchedFromBoard;

private:
    struct Panel;

    std::vector<Panel*> choosePanels();
    Panel& panelOn(const ScreenInfo& screen);
    void connect(Panel& panel);
    void giveKeyboard(Panel& panel);
    bool handleKey(const KeyPress& press);
    void hoverTile(Panel& panel, const std::optional<std::string>& key, Point pointer);
    void setMenuTracking(bool tracking);

    AppState& state_;
    BoardSurfaceFactory& factory_;
    BoardSettings settings_;
    std::vector<std::unique_ptr<Panel>> panels_;
    std::vector<Panel*> shown_;
    Panel* keyPanel_ = nullptr;
    std::optional<Point> lastPointer_;
};

} // namespace lumnara
