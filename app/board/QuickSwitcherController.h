#pragma once

#include "app/AppState.h"
#include "app/board/BoardSurface.h"
#include "app/board/QuickSwitcherModel.h"
#include "app/menu/DesktopMenuCommands.h"
#include "core/seams/GlobalShortcuts.h"

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
    QuickSwitcherController(AppState& state, BoardSurfaceFactory& factory);
    ~QuickSwitcherController();
    QuickSwitcherController(const QuickSwitcherController&) = delete;
    QuickSwitcherController& operator=(const QuickSwitcherController&) = delete;

    bool isOpen() const { return !shown_.empty(); }
    /// One of its panels covers that screen.
    bool covers(const ScreenInfo& screen) const;
    /// Opens the Board, or closes it when it is open.
    void toggle();
    void open();
    void close();
    /// Makes the panels while nobody waits for them, so that the first opening is as quick as any.
    void prepare();
    /// A menu of the application opened (true) or closed (false).
    void trackMenu(bool open);
    /// Asks for the switch and closes the Board: in this order where a window manager is asked, else the
    /// other way round.
    void switchFromBoard(Desktop desktop);

    /// The shortcut that calls toggle(). While the Board holds the keyboard the session can't see it, so the
    /// Board answers to it itself.
    std::optional<Shortcut> toggleShortcut;

    std::function<void()> onShown;
    std::function<void()> onClosed;
    /// The desktop that the user chose.
    std::function<void(const Desktop&)> onSwitchedFromBoard;

private:
    /// One screen's surface with its model. Kept for a while when closed and used again at the next opening.
    struct Panel {
        Panel(AppState& state, ScreenInfo onScreen);

        ScreenInfo screen;
        QuickSwitcherModel model;
        std::unique_ptr<BoardSurface> surface;
        async::Subscription modelChanged;
    };

    void refreshIfStale();
    std::vector<ScreenInfo> readScreens();
    std::vector<ScreenInfo> chooseScreens();
    Panel& fill(const ScreenInfo& screen, bool scopeFixed);
    Panel& panelOn(const ScreenInfo& screen);
    void connect(Panel& panel);
    bool isShown(const Panel& panel) const;
    Panel& panelUnderPointer();
    void giveKeyboard(Panel& panel);
    void logOpening() const;
    void receive(WorkspaceEvent event);

    bool handleKey(const KeyPress& press);
    bool passKeyboardOn(const KeyPress& tab);
    void clickTile(Panel& panel, const std::string& key);
    void clickGround(Panel& panel);
    void hoverTile(Panel& panel, const std::optional<std::string>& key, Point pointer);
    Panel* panelAt(Point pointer);
    void dragAcross(Panel& from, const std::string& key, Point pointer);
    void endDragAcross(Panel& from, bool dropped, const std::string& key, Point pointer);
    void linkAcross(Panel& from, const std::string& key, Point pointer);
    void openTileMenu(Panel& panel, const std::string& key);
    void choose(Panel& panel, const DesktopMenuItem& item);
    void tellRefusal(std::string sentence);
    void tellSwitched(const Desktop& desktop) const;

    AppState& state_;
    BoardSurfaceFactory& factory_;
    std::vector<std::unique_ptr<Panel>> panels_;
    /// From the closing on, until the panels are given back.
    std::unique_ptr<async::Delayed> givingBack_;
    /// The panels that are up; empty while closed.
    std::vector<Panel*> shown_;
    /// The one that holds the keyboard.
    Panel* keyPanel_ = nullptr;
    /// The screens as they were at the opening.
    std::vector<ScreenInfo> screens_;
    /// Where the pointer last was; a report from the same place is no movement.
    std::optional<Point> lastPointer_;
    async::Subscription screensChanged_;
    /// A choice has been made.
    std::unique_ptr<async::Delayed> closing_;
    /// The tile of a surface is being dragged over another.
    bool draggingAcross_ = false;
    DesktopMenuCommands commands_;
};

} // namespace lumnara
