#include "app/qt/board/BoardWindow.h"

#include "app/qt/board/BoardWindows.h"
#include "app/qt/windows/WindowSystem.h"

#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace lumnara {

BoardWindow::BoardWindow(BoardWindows& windows, QuickSwitcherModel& model)
    : windows_(windows),
      view_(windows.loop_, *this, model, windows.pictures_) {
    ++windows_.made_;
    Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    if (placesOwnWindows()) flags |= Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint;
    view_.setWindowFlags(flags);
    view_.setWindowTitle(QStringLiteral("Lumnara Board"));
    // Decided for good with the window's pixel format; without a compositor it would only cost.
    if (windows_.isComposited_ && windows_.isComposited_()) view_.setAttribute(Qt::WA_TranslucentBackground);
    view_.onPainted = [this] { windows_.painted.emit(); };
    view_.onPressed = [this] {
        if (!windows_.keyboard_.isHeldBy(view_)) takeKeyboard();
    };
    view_.onMenuClosed = [this] {
        if (windows_.keyboard_.isHeldBy(view_)) windows_.keyboard_.take(view_);
    };
}

BoardWindow::~BoardWindow() {
    hide();
    windows_.noteGone();
}

/// Takes a fresh start over a screen.
void BoardWindow::open(const ScreenInfo& info) {
    const bool translucent = view_.testAttribute(Qt::WA_TranslucentBackground) && windows_.isComposited_ &&
                             windows_.isComposited_();
    view_.setScreen(screenFor(info));
    const QRect area = areaOf(info);
    view_.open(area, translucent);
    // Also where the compositor places it: a window is made for the screen that its place is on.
    view_.setGeometry(area);
}

void BoardWindow::prepare(const ScreenInfo& info) {
    open(info);
    view_.drawUnseen();
}

void BoardWindow::show(const ScreenInfo& info) {
    if (std::ranges::find(windows_.shown_, this) == windows_.shown_.end()) windows_.shown_.push_back(this);
    open(info);
    if (!placesOwnWindows()) {
        view_.showFullScreen();
        windows_.shortcuts_.hold(*view_.windowHandle());
        if (!configureWatch_) configureWatch_ = drawingAtEachConfigure(view_);
        return;
    }
    view_.show();
    view_.raise();
}

void BoardWindow::hide() {
    std::erase(windows_.shown_, this);
    windows_.keyboard_.release(view_);
    if (view_.windowHandle()) windows_.shortcuts_.release(*view_.windowHandle());
    view_.closed();
    view_.hide();
}

void BoardWindow::takeKeyboard() {
    for (BoardWindow* window : windows_.shown_) window->view_.setKeyboard(window == this);
    windows_.keyboard_.take(view_);
}

} // namespace lumnara
