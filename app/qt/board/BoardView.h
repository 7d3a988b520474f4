#pragma once

#include "app/qt/board/BoardMotion.h"
#include "app/qt/board/BoardPainter.h"
#include "core/async/Timer.h"
#include "core/model/Geometry.h"

#include <QMenu>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

class BoardSurface;
class QuickSwitcherModel;
struct DesktopMenuItem;

/// The widget of one Board surface: draws the model and turns what the toolkit reports into the callbacks of
/// its BoardSurface. The loop, the surface, the model and the pictures outlive
/// it.
class BoardView final : public QWidget {
public:
    BoardView(async::Loop& loop, BoardSurface& surface, QuickSwitcherModel& model, TilePictures& pictures);

    /// Takes a fresh start over an area of the toolkit's virtual desktop, before it is shown there.
    void open(const QRect& area, bool translucent);
    /// After open(), in place of being shown: makes the window and its store and draws there, unseen.
    void drawUnseen();
    /// It is shown no longer.
    void closed();
    /// Whether the keys come here; it shows.
    void setKeyboard(bool here);
    /// Reads the model and has what differs drawn.
    void refresh();
    /// The tile at a place in the arrangement of screens, or nothing.
    std::optional<std::string> tileAt(Point pointer) const;
    /// Opens a menu where the tile was clicked, else at its middle.
    void openMenu(const std::string& key, const std::vector<DesktopMenuItem>& items);

    /// Called once after each open(), when the first picture has been handed to the window system.
    std::function<void()> onPainted;
    /// The pointer was pressed: a moment at which the keyboard may be asked for again.
    std::function<void()> onPressed;
    /// A menu is closed, which had the keyboard.
    std::function<void()> onMenuClosed;

protected:
    bool focusNextPrevChild(bool) override { return false; }
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void enterEvent(QEnterEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// A button that is held, and where it went down.
    struct Press {
        std::optional<std::string> key;
        QPointF at;
        QPointF grip; ///< from the tile's top left corner
    };

    void draw(QPainter& painter);
    BoardContent readModel() const;
    void applyContent(BoardContent fresh);
    void letGo();
    void layOut();
    void follow(const BoardContent& before);
    void updateChanged(const BoardContent& before);
    void glideFrom(const BoardContent& before, const BoardLayout& layoutBefore);
    std::optional<std::string> keyAt(QPointF point) const;
    void makeMenu();
    Point pointerPlace() const;
    void reportHover(const QMouseEvent& event);
    void click(QPointF point);
    void drag(QPointF point);
    void endDrag();
    void scrollAtEdges(double seconds);
    void animate();
    void step();

    async::Loop& loop_;
    BoardSurface& surface_;
    QuickSwitcherModel& model_;
    BoardPainter painter_;
    BoardContent content_;
    BoardLayout layout_{BoardLayout::Input{}};
    BoardMotion motion_;
    QPoint origin_; ///< of the view on the toolkit's virtual desktop
    int restingTiles_ = 0;
    int restingColumns_ = 1;
    QString preedit_;
    std::optional<Press> press_;
    QPointF pointer_;
    /// The tile that the pointer selected; it is in view and doesn't scroll.
    std::optional<std::string> hovered_;
    /// The lifted tile is beyond this surface.
    bool isAway_ = false;
    QMenu* menu_ = nullptr; ///< of a tile; the view's child
    /// Where the click was that asks for a menu, while it does.
    std::optional<QPointF> menuPoint_;
    bool translucent_ = false;
    bool hasKeyboard_ = false;
    bool awaitingPaint_ = false;
    std::unique_ptr<async::Repeating> frames_;
    async::Nanos lastFrame_{};
};

} // namespace lumnara
