#pragma once

#include "app/board/BoardSurface.h"
#include "app/qt/board/BoardView.h"

#include <memory>

namespace lumnara {

class BoardWindows;

/// One screen's Board as a window: covers the screen, over everything and out of the window manager's hands
/// where it can be. Hidden it is kept whole, so that it comes back at once.
class BoardWindow final : public BoardSurface {
public:
    BoardWindow(BoardWindows& windows, QuickSwitcherModel& model);
    ~BoardWindow() override;

    void prepare(const ScreenInfo& screen) override;
    void show(const ScreenInfo& screen) override;
    void hide() override;
    void redraw() override { view_.refresh(); }
    void takeKeyboard() override;
    std::optional<std::string> tileAt(Point pointer) const override { return view_.tileAt(pointer); }
    void openMenu(const std::string& key, const std::vector<DesktopMenuItem>& items) override {
        view_.openMenu(key, items);
    }

private:
    void open(const ScreenInfo& screen);

    BoardWindows& windows_;
    BoardView view_;
    /// Under Wayland, from the first showing on.
    std::unique_ptr<QObject> configureWatch_;
};

} // namespace lumnara
