#include "app/board/QuickSwitcherController.h"

#include "app/board/BoardKeyTable.h"
#include "app/menu/TileMenu.h"
#include "core/arranging/DesktopArranger.h"
#include "core/base/Log.h"
#include "core/seams/Screens.h"
#include "core/seams/Workspace.h"
#include "core/text/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace lumnara {

namespace {

constexpr double staleAfterSeconds = 2.0;
constexpr double refreshSeconds = 2.0;
/// How long a closed Board keeps its panels, each with a store as large as its screen, in seconds.
constexpr double keepSeconds = 120;

std::string frameText(const Rect& frame) {
    return fmt::format("{:g},{:g} {:g}x{:g}", frame.x, frame.y, frame.width, frame.height);
}

} // namespace

QuickSwitcherController::Panel::Panel(AppState& state, ScreenInfo onScreen)
    : screen(std::move(onScreen)),
      model(state.catalog(), state.settings()) {}

QuickSwitcherController::QuickSwitcherController(AppState& state, BoardSurfaceFactory& factory)
    : state_(state),
      factory_(factory),
      commands_(state, [this](std::string sentence) { tellRefusal(std::move(sentence)); }) {}

QuickSwitcherController::~QuickSwitcherController() {
    onClosed = nullptr;
    close();
}

bool QuickSwitcherController::covers(const ScreenInfo& screen) const {
    return std::ranges::any_of(shown_, [&](const Panel* panel) { return panel->screen.uuid == screen.uuid; });
}

void QuickSwitcherController::toggle() {
    if (isOpen())
        close();
    else
        open();
}

void QuickSwitcherController::open() {
    if (isOpen()) return;
    closing_.reset();
    givingBack_.reset();
    refreshIfStale();
    screens_ = readScreens();
    std::erase_if(panels_, [&](const auto& panel) {
        return std::ranges::none_of(screens_,
                                    [&](const ScreenInfo& s) { return s.uuid == panel->screen.uuid; });
    });
    const std::vector<ScreenInfo> chosen = chooseScreens();
    if (!chosen.empty()) lastPointer_ = state_.platform().screens->pointer();
    for (const ScreenInfo& screen : chosen) {
        Panel& panel = fill(screen, chosen.size() > 1);
        shown_.push_back(&panel);
        panel.surface->show(screen);
    }
    if (isOpen()) giveKeyboard(panelUnderPointer());
    logOpening();
    if (!isOpen()) return;
    if (Workspace* workspace = state_.platform().workspace.get())
        screensChanged_ = workspace->observe([this](WorkspaceEvent event) { receive(event); });
    state_.catalog().startRefreshTimer(refreshSeconds);
    if (onShown) onShown();
}

void QuickSwitcherController::close() {
    if (!isOpen()) return;
    state_.catalog().stopRefreshTimer();
    screensChanged_ = {};
    keyPanel_ = nullptr;
    draggingAcross_ = false;
    for (Panel* panel : std::exchange(shown_, {})) {
        panel->surface->hide();
        panel->model.close();
    }
    givingBack_ = std::make_unique<async::Delayed>(state_.loop(), keepSeconds, [this] { panels_.clear(); });
    if (onClosed) onClosed();
}

void QuickSwitcherController::prepare() {
    if (!panels_.empty()) return;
    screens_ = readScreens();
    const std::vector<ScreenInfo> chosen = chooseScreens();
    for (const ScreenInfo& screen : chosen) {
        Panel& panel = fill(screen, chosen.size() > 1);
        panel.surface->prepare(screen);
        panel.model.close();
    }
}

/// A window manager is asked first, which takes the next turn, and does its work while the Board closes.
/// Gestures and activations need the screen to themselves.
void QuickSwitcherController::switchFromBoard(Desktop desktop) {
    if (closing_) return;
    if (state_.platform().kind != PlatformKind::windowManager) close();
    state_.switchTo(desktop);
    if (!isOpen()) return tellSwitched(desktop);
    closing_ = std::make_unique<async::Delayed>(state_.loop(), 0, [this, desktop = std::move(desktop)] {
        closing_.reset();
        close();
        tellSwitched(desktop);
    });
}

void QuickSwitcherController::tellSwitched(const Desktop& desktop) const {
    if (onSwitchedFromBoard) onSwitchedFromBoard(desktop);
}

void QuickSwitcherController::refreshIfStale() {
    DesktopCatalog& catalog = state_.catalog();
    const auto& snapshot = catalog.snapshot.get();
    if (!snapshot || state_.loop().date().secondsSince(snapshot->takenAt) > staleAfterSeconds)
        catalog.refresh();
}

std::vector<ScreenInfo> QuickSwitcherController::readScreens() {
    Screens* screens = state_.platform().screens.get();
    return screens ? screens->screens() : std::vector<ScreenInfo>();
}

/// Every screen that has desktops of its own when there are several, else the one under the pointer.
std::vector<ScreenInfo> QuickSwitcherController::chooseScreens() {
    const auto& snapshot = state_.catalog().snapshot.get();
    std::vector<ScreenInfo> withDesktops;
    for (const ScreenInfo& screen : screens_)
        if (snapshot && snapshot->spacesOnDisplay(screen.uuid)) withDesktops.push_back(screen);
    if (*state_.settings().boardOnEveryDisplay && withDesktops.size() > 1) return withDesktops;
    if (screens_.empty()) return {};
    const auto uuid = state_.platform().screens->displayUnderPointer();
    const auto under = std::ranges::find_if(screens_, [&](const ScreenInfo& screen) {
        return uuid && text::equalsIgnoringCase(screen.uuid, *uuid);
    });
    return {under != screens_.end() ? *under : screens_.front()};
}

/// The panel of a screen, as it is at an opening.
QuickSwitcherController::Panel& QuickSwitcherController::fill(const ScreenInfo& screen, bool scopeFixed) {
    Panel& panel = panelOn(screen);
    const auto& snapshot = state_.catalog().snapshot.get();
    const DisplayID display{snapshot ? snapshot->presentationDisplay(screen.uuid) : screen.uuid};
    panel.model.open(display, screen.frame.width, scopeFixed);
    panel.model.reset();
    return panel;
}

QuickSwitcherController::Panel& QuickSwitcherController::panelOn(const ScreenInfo& screen) {
    for (const auto& panel : panels_) {
        if (panel->screen.uuid != screen.uuid) continue;
        panel->screen = screen;
        return *panel;
    }
    panels_.push_back(std::make_unique<Panel>(state_, screen));
    Panel& panel = *panels_.back();
    panel.surface = factory_.makeSurface(panel.model);
    connect(panel);
    return panel;
}

/// The panel outlives its surface and its model, and the controller outlives the panel.
void QuickSwitcherController::connect(Panel& panel) {
    panel.modelChanged = panel.model.changed.subscribe([this, &panel] {
        if (isShown(panel)) panel.surface->redraw();
    });
    BoardSurface& surface = *panel.surface;
    surface.onKey = [this](const KeyPress& press) { return handleKey(press); };
    surface.onSwitch = [this, &panel](const std::string& key) { clickTile(panel, key); };
    surface.onClose = [this, &panel] { clickGround(panel); };
    surface.onHoverTile = [this, &panel](const auto& key, Point pointer) { hoverTile(panel, key, pointer); };
    surface.onPointerEntered = [this, &panel] { giveKeyboard(panel); };
    surface.onDragAcross = [this, &panel](const std::string& key, Point pointer) {
        dragAcross(panel, key, pointer);
    };
    surface.onDragAcrossEnded = [this, &panel](bool dropped, const std::string& key, Point pointer) {
        endDragAcross(panel, dropped, key, pointer);
    };
    surface.onTileMenu = [this, &panel](const std::string& key) { openTileMenu(panel, key); };
    surface.onMenuChosen = [this, &panel](const DesktopMenuItem& item) { choose(panel, item); };
    surface.onMenuTracking = [this](bool open) { trackMenu(open); };
}

bool QuickSwitcherController::isShown(const Panel& panel) const {
    return std::ranges::find(shown_, &panel) != shown_.end();
}

QuickSwitcherController::Panel& QuickSwitcherController::panelUnderPointer() {
    const auto uuid = state_.platform().screens->displayUnderPointer();
    for (Panel* panel : shown_)
        if (uuid && text::equalsIgnoringCase(panel->screen.uuid, *uuid)) return *panel;
    return *shown_.front();
}

void QuickSwitcherController::giveKeyboard(Panel& panel) {
    if (keyPanel_ == &panel || !isShown(panel)) return;
    keyPanel_ = &panel;
    panel.surface->takeKeyboard();
}

void QuickSwitcherController::logOpening() const {
    for (const Panel* panel : shown_)
        log(fmt::format("Lumnara Board: surface {} frame {} key {:d}", panel->screen.name,
                        frameText(panel->screen.frame), panel == keyPanel_));
    log(fmt::format("Lumnara Board: open on {} of {} screens (every display: {:d}), key on {}", shown_.size(),
                    screens_.size(), shown_.size() > 1, keyPanel_ ? keyPanel_->screen.name : "none"));
}

bool QuickSwitcherController::handleKey(const KeyPress& press) {
    if (closing_) return true;
    if (!keyPanel_) return false;
    if (toggleShortcut && press.key == toggleShortcut->key && press.modifiers == toggleShortcut->modifiers) {
        if (!press.repeats) close(); // still held from the opening
        return true;
    }
    const KeyEffect effect = applyKey(press, keyPanel_->model);
    if (effect.kind == KeyEffect::Kind::closesBoard) close();
    if (effect.kind == KeyEffect::Kind::switches) switchFromBoard(*effect.desktop);
    if (effect.kind == KeyEffect::Kind::opensMenu && keyPanel_->model.selectedKey())
        openTileMenu(*keyPanel_, *keyPanel_->model.selectedKey());
    if (effect.kind == KeyEffect::Kind::fallsThrough && press.key == KeyCode::tab)
        return passKeyboardOn(press);
    return effect.kind != KeyEffect::Kind::fallsThrough;
}

/// Where each screen has a Board of its own, Tab reaches the next one without the pointer.
bool QuickSwitcherController::passKeyboardOn(const KeyPress& tab) {
    if (shown_.size() < 2 || keyPanel_->model.renamingKey()) return false;
    const auto current = std::ranges::find(shown_, keyPanel_) - shown_.begin();
    const auto count = static_cast<std::ptrdiff_t>(shown_.size());
    giveKeyboard(
        *shown_[static_cast<std::size_t>((current + (tab.modifiers.shift ? count - 1 : 1)) % count)]);
    return true;
}

/// A panel on a screen that is gone, or of another size, would keep the keyboard out of sight.
void QuickSwitcherController::receive(WorkspaceEvent event) {
    if (event == WorkspaceEvent::screenParametersDidChange && readScreens() != screens_) close();
}

void QuickSwitcherController::clickTile(Panel& panel, const std::string& key) {
    if (panel.model.renamingKey() == key) return;
    if (panel.model.renamingKey()) return panel.model.commitRename();
    if (const Desktop* tile = panel.model.tile(key)) switchFromBoard(*tile);
}

void QuickSwitcherController::clickGround(Panel& panel) {
    if (panel.model.renamingKey())
        panel.model.commitRename();
    else
        close();
}

/// Tiles come and go under a pointer that stands still, when the Board opens or a query filters; only a
/// pointer that moves may take the selection from the keyboard.
void QuickSwitcherController::hoverTile(Panel& panel, const std::optional<std::string>& key, Point pointer) {
    const bool moved = lastPointer_ && *lastPointer_ != pointer;
    lastPointer_ = pointer;
    if (moved && key && isShown(panel)) panel.model.select(*key);
}

QuickSwitcherController::Panel* QuickSwitcherController::panelAt(Point pointer) {
    const auto under = std::ranges::find_if(
        shown_, [&](const Panel* panel) { return panel->screen.frame.contains(pointer); });
    return under != shown_.end() ? *under : nullptr;
}

/// The surface under the pointer shows the tile and where it would be linked, and no other does.
void QuickSwitcherController::dragAcross(Panel& from, const std::string& key, Point pointer) {
    if (!isShown(from)) return;
    // On the way out the tile has moved its neighbours, which nobody meant.
    if (!std::exchange(draggingAcross_, true)) from.model.recompute();
    const Desktop* dragged = from.model.tile(key);
    Panel* over = panelAt(pointer);
    for (Panel* panel : shown_) {
        std::optional<QuickSwitcherModel::IncomingLink> incoming;
        if (dragged && panel == over && panel != &from && panel->model.linksAcross()) {
            const Rect& frame = panel->screen.frame;
            incoming = {
                *dragged, {pointer.x - frame.x, pointer.y - frame.y}, panel->surface->tileAt(pointer)};
        }
        panel->model.setIncomingLink(std::move(incoming));
    }
}

void QuickSwitcherController::endDragAcross(Panel& from, bool dropped, const std::string& key,
                                            Point pointer) {
    draggingAcross_ = false;
    for (Panel* panel : shown_) panel->model.setIncomingLink(std::nullopt);
    if (dropped && isShown(from)) linkAcross(from, key, pointer);
}

void QuickSwitcherController::linkAcross(Panel& from, const std::string& key, Point pointer) {
    Panel* over = panelAt(pointer);
    const Desktop* dragged = from.model.tile(key);
    if (!dragged || !over || over == &from) return;
    if (!from.model.linksAcross())
        return from.model.showError("Links are off. “Link Displays” in the menu of a tile turns them on.");
    const auto target = over->surface->tileAt(pointer);
    const Desktop* partner = target ? over->model.tile(*target) : nullptr;
    if (partner && partner->key != dragged->key)
        commands_.carryOut(LinkRequest::with(*dragged, partner->spaceKey));
}

void QuickSwitcherController::openTileMenu(Panel& panel, const std::string& key) {
    if (!isShown(panel) || panel.model.renamingKey()) return;
    const Desktop* tile = panel.model.tile(key);
    if (!tile) return;
    const std::vector<DesktopMenuItem> menu =
        tileMenu(state_.catalog(), *tile, state_.platform().arranger != nullptr);
    panel.model.select(key);
    panel.surface->openMenu(key, menu);
}

void QuickSwitcherController::choose(Panel& panel, const DesktopMenuItem& item) {
    if (!isShown(panel)) return;
    if (item.kind == DesktopMenuItem::Kind::rename)
        panel.model.beginRename(item.desktop->key);
    else
        commands_.carryOut(item);
}

void QuickSwitcherController::tellRefusal(std::string sentence) {
    if (keyPanel_)
        keyPanel_->model.showError(std::move(sentence));
    else
        state_.notices().show(std::move(sentence));
}

void QuickSwitcherController::trackMenu(bool open) {
    log(fmt::format("Lumnara menu tracking {} (board visible: {:d})", open ? "began" : "ended", isOpen()));
    for (Panel* panel : shown_) panel->model.setMenuTracking(open);
}

} // namespace lumnara
