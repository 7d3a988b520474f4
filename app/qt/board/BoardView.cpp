#include "app/qt/board/BoardView.h"

#include "app/board/BoardSurface.h"
#include "app/board/QuickSwitcherModel.h"
#include "app/qt/menu/DesktopMenuView.h"
#include "app/qt/windows/Keys.h"
#include "app/qt/windows/WindowSystem.h"
#include "core/async/Loop.h"

#include <QBackingStore>
#include <QEnterEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QStyleHints>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace lumnara {
namespace {

constexpr double frameSeconds = 1.0 / 60;
/// A stalled program must not make the tiles jump.
constexpr double longestFrameSeconds = 0.05;
constexpr double wheelNotch = 120;
constexpr double pixelsPerNotch = 110;
/// How near to the viewport's edge a dragged tile scrolls it, and how fast.
constexpr double dragEdge = 44;
constexpr double dragScrollPerSecond = 900;

bool sameTiles(const BoardContent& a, const BoardContent& b) {
    return a.tiles.size() == b.tiles.size() &&
           std::is_permutation(a.tiles.begin(), a.tiles.end(), b.tiles.begin(),
                               [](const TileContent& x, const TileContent& y) { return x.key == y.key; });
}

} // namespace

BoardView::BoardView(async::Loop& loop, BoardSurface& surface, QuickSwitcherModel& model,
                     TilePictures& pictures)
    : loop_(loop),
      surface_(surface),
      model_(model),
      painter_(pictures) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void BoardView::open(const QRect& area, bool translucent) {
    origin_ = area.topLeft();
    translucent_ = translucent;
    awaitingPaint_ = true;
    restingTiles_ = 0;
    restingColumns_ = 1;
    preedit_.clear();
    letGo();
    content_ = readModel();
    resize(area.size());
    layOut();
    motion_.jumpTo(content_.selected ? layout_.scrollShowing(static_cast<int>(*content_.selected), 0) : 0);
    update();
}

void BoardView::drawUnseen() {
    awaitingPaint_ = false;
    // A Wayland window has no store before it is shown: there, fonts, symbols and tiles are made ready alone.
    QPixmap elsewhere;
    if (!placesOwnWindows()) {
        elsewhere = QPixmap(size());
        QPainter painter(&elsewhere);
        return draw(painter);
    }
    winId();
    QBackingStore& store = *backingStore();
    store.resize(size());
    store.beginPaint(rect());
    {
        QPainter painter(store.paintDevice());
        draw(painter);
    }
    store.endPaint();
}

void BoardView::closed() {
    hasKeyboard_ = false;
    if (menu_) menu_->close();
    letGo();
}

void BoardView::letGo() {
    press_.reset();
    isAway_ = false;
    hovered_.reset();
    frames_.reset();
    motion_.settle();
}

void BoardView::setKeyboard(bool here) {
    if (std::exchange(hasKeyboard_, here) != here) refresh();
}

void BoardView::refresh() { applyContent(readModel()); }

BoardContent BoardView::readModel() const {
    BoardContent content = contentOf(model_);
    (content.renaming ? content.renameText : content.query) += preedit_;
    content.hasKeyboard = hasKeyboard_;
    content.incomingAt /= unitsPerPoint(*screen());
    return content;
}

void BoardView::applyContent(BoardContent fresh) {
    if (fresh == content_) return;
    const BoardContent before = std::exchange(content_, std::move(fresh));
    const BoardLayout layoutBefore = layout_;
    layOut();
    if (motion_.pose().lifted && sameTiles(before, content_)) glideFrom(before, layoutBefore);
    follow(before);
    updateChanged(before);
    animate();
}

void BoardView::layOut() {
    const int tiles = static_cast<int>(content_.tiles.size());
    restingTiles_ = std::max(restingTiles_, tiles);
    restingColumns_ = std::max(restingColumns_, content_.columns);
    layout_ = BoardLayout({.surface = size(),
                           .tiles = tiles,
                           .columns = content_.columns,
                           .restingTiles = restingTiles_,
                           .restingColumns = restingColumns_,
                           .tileWidth = content_.tileWidth,
                           .nameSize = content_.nameSize});
    model_.setVisibleRows(layout_.visibleRows());
}

/// Scrolls the selected tile into view, unless the pointer, which sees it, has selected it.
void BoardView::follow(const BoardContent& before) {
    const auto keyIn = [](const BoardContent& content) {
        return content.selected ? content.tiles[*content.selected].key : std::string();
    };
    const std::string selected = keyIn(content_);
    if (hovered_ != selected) hovered_.reset();
    const bool sameList = sameTiles(before, content_);
    double scroll = std::clamp(motion_.targetScroll(), 0.0, layout_.maximumScroll());
    if (content_.selected && !hovered_ && (selected != keyIn(before) || !sameList))
        scroll = layout_.scrollShowing(static_cast<int>(*content_.selected), scroll);
    if (sameList) {
        motion_.scrollTo(scroll);
    } else {
        motion_.jumpTo(scroll);
    }
}

void BoardView::updateChanged(const BoardContent& before) {
    BoardContent reselected = before;
    reselected.selected = content_.selected;
    if (reselected != content_ || motion_.moving()) {
        update();
        return;
    }
    const double bleed = metrics::tileBleed + 1;
    for (const auto& position : {before.selected, content_.selected}) {
        if (!position) continue;
        const QRectF place = layout_.tile(static_cast<int>(*position)).translated(0, -motion_.pose().scroll);
        update(place.adjusted(-bleed, -bleed, bleed, bleed).toAlignedRect());
    }
}

void BoardView::glideFrom(const BoardContent& before, const BoardLayout& layoutBefore) {
    for (std::size_t now = 0; now < content_.tiles.size(); ++now) {
        const std::string& key = content_.tiles[now].key;
        const auto then = std::find_if(before.tiles.begin(), before.tiles.end(),
                                       [&](const TileContent& tile) { return tile.key == key; });
        if (key == motion_.pose().lifted || then == before.tiles.end()) continue;
        const QPointF from = layoutBefore.tile(static_cast<int>(then - before.tiles.begin())).topLeft();
        const QPointF to = layout_.tile(static_cast<int>(now)).topLeft();
        if (from != to) motion_.displace(key, from + motion_.offset(key) - to);
    }
}

void BoardView::draw(QPainter& painter) {
    painter_.setLook(Theme::of(sessionAppearance()), translucent_, devicePixelRatioF());
    painter_.paint(painter, rect(), content_, layout_, motion_.pose());
}

void BoardView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    draw(painter);
    if (!awaitingPaint_) return;
    awaitingPaint_ = false;
    // Behind the flush that follows the painting.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (onPainted) onPainted();
        },
        Qt::QueuedConnection);
}

void BoardView::resizeEvent(QResizeEvent*) {
    layOut();
    motion_.jumpTo(std::clamp(motion_.targetScroll(), 0.0, layout_.maximumScroll()));
}

void BoardView::keyPressEvent(QKeyEvent* event) {
    if (!isModifierKey(*event)) surface_.onKey(keyPressOf(*event));
}

void BoardView::inputMethodEvent(QInputMethodEvent* event) {
    preedit_ = event->preeditString();
    if (!event->commitString().isEmpty())
        surface_.onKey(
            {.key = {}, .modifiers = {}, .text = event->commitString().toStdString(), .repeats = false});
    refresh();
    event->accept();
}

QVariant BoardView::inputMethodQuery(Qt::InputMethodQuery query) const {
    if (query == Qt::ImEnabled) return true;
    if (query != Qt::ImCursorRectangle) return QWidget::inputMethodQuery(query);
    if (!content_.renaming) return layout_.query().toAlignedRect();
    return layout_.tile(static_cast<int>(*content_.renaming))
        .translated(0, -motion_.pose().scroll)
        .toAlignedRect();
}

void BoardView::enterEvent(QEnterEvent*) { surface_.onPointerEntered(); }

std::optional<std::string> BoardView::keyAt(QPointF point) const {
    const auto position = layout_.tileAt(point, motion_.pose().scroll);
    if (content_.expanded || !position) return std::nullopt;
    return content_.tiles[static_cast<std::size_t>(*position)].key;
}

std::optional<std::string> BoardView::tileAt(Point pointer) const {
    const Point origin = arrangementPoint(origin_);
    return keyAt(QPointF(pointer.x - origin.x, pointer.y - origin.y) / unitsPerPoint(*screen()));
}

void BoardView::openMenu(const std::string& key, const std::vector<DesktopMenuItem>& items) {
    const auto position = std::ranges::find(content_.tiles, key, &TileContent::key) - content_.tiles.begin();
    if (position == std::ssize(content_.tiles)) return;
    if (!menu_) makeMenu();
    fillMenu(*menu_, items, surface_.onMenuChosen);
    dress(*menu_, Theme::of(sessionAppearance()));
    QPointF at = layout_.tile(static_cast<int>(position)).translated(0, -motion_.pose().scroll).center();
    if (content_.expanded) at = layout_.expanded().center();
    menu_->popup(mapToGlobal(menuPoint_.value_or(at)).toPoint());
    if (!menuPoint_) menu_->setActiveAction(menu_->actions().front());
}

void BoardView::makeMenu() {
    menu_ = new QMenu(this);
    connect(menu_, &QMenu::aboutToShow, this, [this] { surface_.onMenuTracking(true); });
    connect(menu_, &QMenu::aboutToHide, this, [this] {
        // The menu still has the keyboard, and is over only when that is back.
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (onMenuClosed) onMenuClosed();
                surface_.onMenuTracking(false);
            },
            Qt::QueuedConnection);
    });
}

void BoardView::reportHover(const QMouseEvent& event) {
    hovered_ = keyAt(event.position());
    surface_.onHoverTile(hovered_, arrangementPoint(event.globalPosition()));
}

void BoardView::mousePressEvent(QMouseEvent* event) {
    if (onPressed) onPressed();
    const auto key = keyAt(event->position());
    if (event->button() == Qt::RightButton && key) {
        menuPoint_ = event->position();
        surface_.onTileMenu(*key);
        menuPoint_.reset();
    }
    if (event->button() != Qt::LeftButton) return;
    press_ = Press{key, event->position(), {}};
    if (const auto position = layout_.tileAt(event->position(), motion_.pose().scroll))
        press_->grip =
            event->position() - layout_.tile(*position).topLeft() + QPointF(0, motion_.pose().scroll);
}

void BoardView::mouseMoveEvent(QMouseEvent* event) {
    pointer_ = event->position();
    if (motion_.pose().lifted) {
        drag(pointer_);
    } else if (!press_) {
        reportHover(*event);
    } else if (press_->key && (content_.query.isEmpty() || content_.linksAcross) && !content_.renaming &&
               (pointer_ - press_->at).manhattanLength() >=
                   QGuiApplication::styleHints()->startDragDistance()) {
        drag(pointer_);
        animate();
    }
}

void BoardView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !press_) return;
    const Press press = *std::exchange(press_, std::nullopt);
    if (motion_.pose().lifted) {
        endDrag();
    } else if (press.key == keyAt(event->position())) {
        click(event->position());
    }
}

void BoardView::click(QPointF point) {
    if (content_.expanded) {
        if (layout_.expanded().contains(point)) {
            surface_.onSwitch(content_.tiles[*content_.expanded].key);
        } else {
            model_.toggleExpanded();
        }
    } else if (const auto key = keyAt(point)) {
        surface_.onSwitch(*key);
    } else if (layout_.query().contains(point)) {
        if (layout_.scope().contains(point)) model_.cycleScope();
    } else if (!layout_.isBetweenTiles(point, motion_.pose().scroll)) {
        surface_.onClose();
    }
}

void BoardView::drag(QPointF point) {
    const std::string key = *press_->key;
    motion_.lift(key, point - press_->grip);
    if (!rect().contains(point.toPoint())) {
        isAway_ = true;
        surface_.onDragAcross(key, pointerPlace());
    } else {
        if (std::exchange(isAway_, false)) surface_.onDragAcrossEnded(false, key, pointerPlace());
        const auto over = keyAt(point);
        if (over && *over != key) model_.moveTile(key, *over);
    }
    update();
}

Point BoardView::pointerPlace() const { return arrangementPoint(mapToGlobal(pointer_)); }

void BoardView::endDrag() {
    const std::string key = *motion_.pose().lifted;
    const QPointF from = motion_.pose().liftedAt + QPointF(0, motion_.pose().scroll);
    motion_.drop();
    for (std::size_t position = 0; position < content_.tiles.size(); ++position) {
        if (content_.tiles[position].key == key)
            motion_.displace(key, from - layout_.tile(static_cast<int>(position)).topLeft());
    }
    if (std::exchange(isAway_, false)) {
        surface_.onDragAcrossEnded(true, key, pointerPlace());
    } else {
        model_.commitOrder();
    }
    update();
    animate();
}

void BoardView::wheelEvent(QWheelEvent* event) {
    if (content_.expanded || layout_.maximumScroll() <= 0) return;
    const auto within = [this](double scroll) { return std::clamp(scroll, 0.0, layout_.maximumScroll()); };
    if (!event->pixelDelta().isNull()) {
        motion_.jumpTo(within(motion_.pose().scroll - event->pixelDelta().y()));
    } else {
        motion_.scrollTo(
            within(motion_.targetScroll() - event->angleDelta().y() / wheelNotch * pixelsPerNotch));
    }
    update();
    animate();
}

void BoardView::scrollAtEdges(double seconds) {
    const QRectF& view = layout_.viewport();
    double direction = 0;
    if (pointer_.y() < view.top() + dragEdge) direction = -1;
    if (pointer_.y() > view.bottom() - dragEdge) direction = 1;
    motion_.jumpTo(std::clamp(motion_.pose().scroll + direction * dragScrollPerSecond * seconds, 0.0,
                              layout_.maximumScroll()));
    drag(pointer_);
}

/// Runs the frames for as long as anything moves or is held.
void BoardView::animate() {
    if (frames_ || (!motion_.moving() && !motion_.pose().lifted)) return;
    lastFrame_ = loop_.now();
    frames_ = std::make_unique<async::Repeating>(loop_, frameSeconds, [this] { step(); });
}

void BoardView::step() {
    const async::Nanos now = loop_.now();
    const double seconds = std::min(async::secondsOf(now - lastFrame_), longestFrameSeconds);
    lastFrame_ = now;
    motion_.step(seconds);
    if (motion_.pose().lifted && !isAway_) scrollAtEdges(seconds);
    update();
    if (!motion_.moving() && !motion_.pose().lifted) frames_.reset();
}

} // namespace lumnara
