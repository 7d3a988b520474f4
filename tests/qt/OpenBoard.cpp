#include "tests/qt/OpenBoard.h"

#include "app/board/BoardKeyTable.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QWheelEvent>
#include <QWindow>

namespace lumnara::testing {
namespace {

SpaceSnapshot layoutOf(const std::vector<std::vector<std::string>>& displays) {
    SpaceSnapshot snapshot;
    std::uint64_t id = 1;
    for (const auto& names : displays) {
        DisplaySpaces display;
        display.display = {"display-" + std::to_string(snapshot.displays.size() + 1)};
        for (std::size_t index = 0; index < names.size(); ++index, ++id) {
            Space space;
            space.id = {id};
            space.uuid = std::to_string(id);
            space.kind = SpaceKind::user;
            space.indexOnDisplay = static_cast<int>(index);
            display.spaces.push_back(space);
        }
        if (!names.empty()) display.currentID = display.spaces.front().id;
        snapshot.displays.push_back(display);
    }
    return snapshot;
}

} // namespace

RecordingSurface::RecordingSurface() {
    onKey = [this](const KeyPress& press) {
        keys.push_back(press);
        return true;
    };
    onSwitch = [this](const std::string& key) { switched.push_back(key); };
    onClose = [this] { ++closed; };
    onHoverTile = [this](const std::optional<std::string>& key, Point) { hovered.push_back(key); };
    onDragAcross = [this](const std::string& key, Point pointer) {
        dragged.push_back("across " + key);
        draggedTo.push_back(pointer);
    };
    onDragAcrossEnded = [this](bool dropped, const std::string& key, Point) {
        dragged.push_back((dropped ? "dropped " : "back ") + key);
    };
    onTileMenu = [this](const std::string& key) { menus.push_back(key); };
    onMenuChosen = [this](const DesktopMenuItem& item) { chosen.push_back(item); };
    onMenuTracking = [this](bool open) { menuTracking.push_back(open); };
    onPointerEntered = [this] { ++entered; };
}

OpenBoard::OpenBoard(const Displays& displays, QSize size)
    : provider(layoutOf(displays)),
      store(loop, folder / "desktops.json"),
      catalog(loop, provider, store),
      model(catalog, settings),
      view(loop, surface, model, pictures) {
    surface.view = &view;
    std::size_t position = 0;
    const std::vector<Desktop> desktops = catalog.desktops();
    for (const auto& names : displays) {
        for (const std::string& name : names) {
            if (!name.empty()) catalog.rename(desktops[position].key, name);
            ++position;
        }
    }
    view.resize(size);
    model.open(displays.empty() ? std::nullopt : std::optional(DisplayID{"display-1"}), size.width(), false);
    redrawn_ = model.changed.subscribe([this] { view.refresh(); });
    open();
}

OpenBoard::~OpenBoard() = default;

void OpenBoard::open() {
    model.reset();
    view.open(view.geometry(), false);
    view.setKeyboard(true);
    view.show();
    settle();
}

void OpenBoard::settle() {
    loop.advance(1);
    // Showing leads to painting, and painting to what follows on it.
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
}

QImage OpenBoard::shown() { return view.screen()->grabWindow(view.winId()).toImage(); }

QImage OpenBoard::drawn() { return view.grab().toImage(); }

void OpenBoard::key(int key, const QString& text, Qt::KeyboardModifiers modifiers) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QCoreApplication::sendEvent(&view, &event);
}

void OpenBoard::press(QPointF at, Qt::MouseButton button) {
    QMouseEvent event(QEvent::MouseButtonPress, at, view.mapToGlobal(at), button, button, {});
    QCoreApplication::sendEvent(&view, &event);
}

void OpenBoard::move(QPointF to, bool held) {
    QMouseEvent event(QEvent::MouseMove, to, view.mapToGlobal(to), Qt::NoButton,
                      held ? Qt::LeftButton : Qt::NoButton, {});
    QCoreApplication::sendEvent(&view, &event);
}

void OpenBoard::release(QPointF at, Qt::MouseButton button) {
    QMouseEvent event(QEvent::MouseButtonRelease, at, view.mapToGlobal(at), button, Qt::NoButton, {});
    QCoreApplication::sendEvent(&view, &event);
}

void OpenBoard::click(QPointF at, Qt::MouseButton button) {
    press(at, button);
    release(at, button);
}

void OpenBoard::wheel(QPointF at, int notches) {
    QWheelEvent event(at, view.mapToGlobal(at), {}, {0, notches * 120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(&view, &event);
}

QRectF OpenBoard::tile(int position) const {
    const int tiles = static_cast<int>(model.results().size());
    return BoardLayout({.surface = view.size(),
                        .tiles = tiles,
                        .columns = model.gridColumns(),
                        .restingTiles = static_cast<int>(catalog.desktops().size()),
                        .restingColumns = model.gridColumns(),
                        .tileWidth = model.appearance().tileWidth,
                        .nameSize = model.appearance().nameSize})
        .tile(position);
}

std::vector<std::string> OpenBoard::keys() const {
    std::vector<std::string> keys;
    for (const Desktop* tile : model.results()) keys.push_back(tile->key);
    return keys;
}

QRect OpenBoard::ring(const QImage& picture) {
    const QRgb color = Theme::of(Appearance::dark).selectionRing.rgb();
    QRect bounds;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x + 24 < picture.width(); ++x) {
            // Letters have the ring's colour too, and no straight line as long.
            int run = 0;
            while (run < 24 && picture.pixel(x + run, y) == color) ++run;
            if (run == 24) bounds |= QRect(x, y, run, 1);
        }
    }
    return bounds;
}

} // namespace lumnara::testing
