#pragma once

#include "app/board/BoardSurface.h"
#include "app/board/QuickSwitcherModel.h"
#include "app/qt/board/BoardView.h"
#include "core/async/TestLoop.h"
#include "core/model/SnapshotSpaceProvider.h"
#include "core/names/NameStore.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/TemporaryFolder.h"

#include <QImage>

#include <memory>
#include <string>
#include <vector>

namespace lumnara::testing {

/// A surface that writes down what its view reports.
class RecordingSurface final : public BoardSurface {
public:
    RecordingSurface();
    void prepare(const ScreenInfo&) override {}
    void show(const ScreenInfo&) override {}
    void hide() override {}
    void redraw() override { view->refresh(); }
    void takeKeyboard() override {}
    std::optional<std::string> tileAt(Point) const override { return std::nullopt; }
    void openMenu(const std::string& key, const std::vector<DesktopMenuItem>& items) override {
        view->openMenu(key, items);
    }

    BoardView* view = nullptr;
    std::vector<KeyPress> keys;
    std::vector<std::string> switched;
    std::vector<std::optional<std::string>> hovered;
    /// "across" and "back" or "dropped" with the tile's key.
    std::vector<std::string> dragged;
    std::vector<Point> draggedTo;
    std::vector<std::string> menus;
    std::vector<DesktopMenuItem> chosen;
    std::vector<bool> menuTracking;
    int closed = 0;
    int entered = 0;
};

/// The names of the desktops, display by display; an empty one leaves the desktop without a name.
using Displays = std::vector<std::vector<std::string>>;

/// A view that is open over a catalog in memory, drawn off screen in virtual time.
class OpenBoard {
public:
    /// The first desktop of each display is the current one, and the Spaces are "1", "2" and so on.
    explicit OpenBoard(const Displays& displays, QSize size = {1280, 800});
    ~OpenBoard();

    /// Opens the view anew, as it is when the Board is opened.
    void open();
    /// Lets the window system hand out what waits, and gliding tiles come to rest.
    void settle();
    /// What the window system shows.
    QImage shown();
    /// What drawing everything from scratch shows.
    QImage drawn();

    void key(int key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {});
    void press(QPointF at, Qt::MouseButton button = Qt::LeftButton);
    void move(QPointF to, bool held = false);
    void release(QPointF at, Qt::MouseButton button = Qt::LeftButton);
    void click(QPointF at, Qt::MouseButton button = Qt::LeftButton);
    void wheel(QPointF at, int notches);

    /// The place of a tile when nothing is scrolled.
    QRectF tile(int position) const;
    std::vector<std::string> keys() const;
    /// Where the ring of the selected tile is in a picture of one pixel a point; empty for none.
    static QRect ring(const QImage& picture);

    async::TestLoop loop;
    TemporaryFolder folder;
    SnapshotSpaceProvider provider;
    NameStore store;
    DesktopCatalog catalog;
    MemoryDefaultsStore defaults;
    AppSettings settings{defaults};
    QuickSwitcherModel model;
    RecordingSurface surface;
    TilePictures pictures;
    BoardView view;

private:
    async::Subscription redrawn_;
};

} // namespace lumnara::testing
