#include "core/platform/sim/SimulatedMissionControl.h"

#include "core/platform/mac/server/DisplayHelpers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace lumnara {

namespace {

// The window server's layers of what Mission Control shows over everything.
constexpr int missionControlLayer = 18;
constexpr int dockLayer = 20;

// Our own choice. A press that begins to move sooner is a flick, and lifts nothing.
constexpr double liftHold = 0.3;
constexpr double liftDistance = 8;
/// A thumbnail that is let go of sooner after its last move flies back, and so does one that was thrown there
/// in fewer moves.
constexpr double dropRest = 0.1;
constexpr int dropMoves = 20;

} // namespace

SimulatedMissionControl::SimulatedMissionControl(async::Loop& loop, SimulatedRandom& random,
                                                 SimulatedFaults& faults, SimulatedStage& stage,
                                                 SimulatedLayout& layout, SimulatedWindows& windows,
                                                 const SimulatedPointer& pointer)
    : loop_(loop),
      random_(random),
      faults_(faults),
      stage_(stage),
      layout_(layout),
      windows_(windows),
      pointer_(pointer),
      stripTop_(std::array{0.0, 24.0, 32.0}[random.below(3)]) {}

void SimulatedMissionControl::toggle() {
    if (isUp()) return dismiss();
    if (phase_ == Phase::closed) enter(Phase::asked, random_.between(0.05, 0.4));
}

void SimulatedMissionControl::dismiss() {
    if (!isUp() || phase_ == Phase::closing) return;
    if (faults_.befalls(SimulatedFault::gestureLost)) return;
    grip_.reset();
    enter(Phase::closing, random_.between(0.2, 0.4));
}

void SimulatedMissionControl::vanish() {
    pending_.clear();
    if (phase_ != Phase::closed) enter(Phase::closed, 0);
}

void SimulatedMissionControl::enter(Phase phase, double seconds) {
    phase_ = phase;
    next_.reset();
    const async::Nanos now = loop_.now();
    const double open = opening_.at(now);
    switch (phase) {
    case Phase::closed:
        opening_ = {};
        grip_.reset();
        hideOverlays();
        break;
    case Phase::asked:
        next_ = std::make_unique<async::Delayed>(
            loop_, seconds, [this] { enter(Phase::opening, random_.between(0.25, 0.45)); });
        break;
    case Phase::opening:
        showOverlays();
        if (faults_.befalls(SimulatedFault::animationNeverEnds)) {
            opening_ = {0, 1, now, std::numeric_limits<double>::infinity()};
            break;
        }
        opening_ = {0, 1, now, seconds};
        next_ = std::make_unique<async::Delayed>(loop_, seconds, [this] { enter(Phase::open, 0); });
        break;
    case Phase::open: opening_ = {1, 1, now, 0}; break;
    case Phase::closing:
        opening_ = {open, 0, now, seconds};
        next_ = std::make_unique<async::Delayed>(loop_, seconds, [this] { enter(Phase::closed, 0); });
        break;
    }
    changed.emit();
}

/// A bar a screen, and the Dock's windows by which others can tell.
void SimulatedMissionControl::showOverlays() {
    for (const ScreenInfo& screen : layout_.screens()) {
        bars_.emplace(screen.uuid, SimulatedSpacesBar(screen.frame, stripTop_));
        for (const int layer : {missionControlLayer, dockLayer, dockLayer})
            overlays_.push_back(windows_.add({.ownerPid = dockPid,
                                              .ownerName = "Dock",
                                              .layer = layer,
                                              .bounds = screen.frame,
                                              .isOrderedIn = true,
                                              .isOnEverySpace = true}));
    }
}

void SimulatedMissionControl::hideOverlays() {
    bars_.clear();
    for (const WindowNumber overlay : std::exchange(overlays_, {})) windows_.remove(overlay);
}

void SimulatedMissionControl::heal() {
    if (phase_ == Phase::opening && !next_) enter(Phase::open, 0);
}

void SimulatedMissionControl::after(double seconds, std::function<void()> action) {
    const int number = ++lastPending_;
    pending_.emplace(number, std::make_unique<async::Delayed>(loop_, seconds, [=, this] {
                         const auto carriedOut = pending_.extract(number);
                         action();
                         changed.emit();
                     }));
}

bool SimulatedMissionControl::isAnimating() const {
    const async::Nanos now = loop_.now();
    return opening_.runs(now) ||
           std::ranges::any_of(bars_, [now](const auto& bar) { return bar.second.moves(now); });
}

void SimulatedMissionControl::collapseBars() {
    for (auto& [screen, bar] : bars_) bar.collapse(loop_.now());
    changed.emit();
}

void SimulatedMissionControl::shift(double points, double seconds) {
    shift_ = points;
    shiftedUntil_ = loop_.now() + async::wholeNanos(seconds);
    changed.emit();
    after(seconds, [] {}); // the picture is another one then
}

// What it shows.

const SimulatedDisplay* SimulatedMissionControl::displayOn(const std::string& screen) const {
    if (const SimulatedDisplay* own = layout_.display(screen)) return own;
    const auto main = DisplayHelpers::mainScreen(layout_.screens());
    return main && main->uuid == screen ? layout_.display("Main") : nullptr;
}

std::string SimulatedMissionControl::titleOf(const SimulatedDisplay& display,
                                             const SimulatedSpace& space) const {
    if (space.kind != SpaceKind::user) {
        const SimulatedWindow* window = windows_.find(space.fullscreenWindow);
        return window ? window->ownerName : "";
    }
    const auto end = display.spaces.begin() + static_cast<std::ptrdiff_t>(display.indexOf(space.id)) + 1;
    const auto number = std::count_if(
        display.spaces.begin(), end, [](const SimulatedSpace& each) { return each.kind == SpaceKind::user; });
    return "Desktop " + std::to_string(number);
}

std::optional<SpacesBarPicture> SimulatedMissionControl::picture(const std::string& screen,
                                                                 bool showsDragged) const {
    const SimulatedDisplay* display = displayOn(screen);
    const auto found = bars_.find(screen);
    if (!display || found == bars_.end()) return std::nullopt;
    const SimulatedSpacesBar& bar = found->second;
    const async::Nanos now = loop_.now();
    std::vector<SimulatedSpace> order = display->spaces;
    const bool isLifted = grip_ && grip_->isLifted && grip_->screen == screen && display->find(grip_->space);
    if (isLifted) {
        const auto from = order.begin() + static_cast<std::ptrdiff_t>(display->indexOf(grip_->space));
        const SimulatedSpace lifted = *from;
        order.erase(from);
        const std::size_t place = std::min(grip_->place, order.size());
        order.insert(order.begin() + static_cast<std::ptrdiff_t>(place), lifted);
    }

    SpacesBarPicture picture{screen, bar.screen(), bar.frame(now), bar.expanded(now), {}, {}};
    for (std::size_t i = 0; i < order.size(); ++i) {
        Rect frame = bar.slot(i, order.size(), now);
        if (now < shiftedUntil_) frame.x += shift_;
        const bool isDragged = isLifted && order[i].id == grip_->space;
        const Point hold = pointer_.position();
        if (isDragged && showsDragged)
            frame = {hold.x - frame.width / 2, hold.y - frame.height / 2, frame.width, frame.height};
        picture.thumbnails.push_back({order[i].id, order[i].kind, titleOf(*display, order[i]), frame,
                                      order[i].id == display->current, isDragged});
    }
    if (phase_ == Phase::open && display->desktopCount() < desktopsPerDisplay &&
        (bar.isExpanded(now) || bar.isNearAddButton(pointer_.position())))
        picture.addButton = bar.addButton(now);
    return picture;
}

MissionControlPicture SimulatedMissionControl::picture() const {
    MissionControlPicture picture{opening_.at(loop_.now()), {}, pointer_.position(), pointer_.isDown()};
    for (const ScreenInfo& screen : layout_.screens())
        if (auto bar = this->picture(screen.uuid, true)) picture.bars.push_back(std::move(*bar));
    return picture;
}

std::optional<SpacesBarPicture> SimulatedMissionControl::bar(const std::string& screen) const {
    return picture(screen, false);
}

// What it is asked for.

bool SimulatedMissionControl::remove(SpaceID space) {
    const SimulatedDisplay* display = layout_.displayOf(space);
    if (!isUp() || phase_ == Phase::closing || !display || display->find(space)->kind != SpaceKind::user)
        return false;
    if (display->desktopCount() == 1) return false;
    after(random_.between(0.05, 0.2), [this, space] { removeSpace(space); });
    return true;
}

bool SimulatedMissionControl::add(const std::string& screen) {
    const auto shown = bar(screen);
    if (!shown || !shown->addButton) return false;
    after(random_.between(0.05, 0.2), [this, uuid = displayOn(screen)->uuid] { layout_.addDesktop(uuid); });
    return true;
}

void SimulatedMissionControl::point(const MouseEvent& event) {
    if (phase_ != Phase::open) return;
    for (auto& [screen, bar] : bars_) bar.track(event.at, loop_.now());
    switch (event.type) {
    case MouseEventType::leftDown: press(event.at); break;
    case MouseEventType::leftDragged: drag(event.at); break;
    case MouseEventType::leftUp: release(event.at); break;
    case MouseEventType::moved: break;
    }
    changed.emit();
}

void SimulatedMissionControl::press(Point at) {
    grip_.reset();
    if (faults_.befalls(SimulatedFault::gestureLost)) return;
    for (const auto& [screen, bar] : bars_) {
        const auto shown = this->bar(screen);
        if (!shown) continue;
        for (std::size_t i = 0; i < shown->thumbnails.size(); ++i)
            if (shown->thumbnails[i].frame.contains(at))
                grip_ = Grip{.screen = screen,
                             .space = shown->thumbnails[i].space,
                             .at = at,
                             .since = loop_.now(),
                             .place = i};
    }
}

void SimulatedMissionControl::drag(Point to) {
    if (!grip_) return;
    const async::Nanos now = loop_.now();
    const bool isFlick = grip_->moves == 0 && now - grip_->since < async::wholeNanos(liftHold);
    const auto bar = bars_.find(grip_->screen);
    const bool isLabel = bar == bars_.end() || (!grip_->isLifted && !bar->second.isExpanded(now));
    if (isFlick || isLabel || !layout_.displayOf(grip_->space)) return grip_.reset();
    ++grip_->moves;
    grip_->lastDrag = now;
    const double distance = std::hypot(to.x - grip_->at.x, to.y - grip_->at.y);
    grip_->isLifted = grip_->isLifted || distance >= liftDistance;
    if (grip_->isLifted) makeRoom(to);
}

/// The gap follows the pointer past the middles of the thumbnails beside it.
void SimulatedMissionControl::makeRoom(Point pointer) {
    const auto shown = bar(grip_->screen);
    if (!shown) return;
    const auto middle = [&](std::size_t i) { return shown->thumbnails[i].frame.middle().x; };
    std::size_t place = std::min(grip_->place, shown->thumbnails.size() - 1);
    while (place + 1 < shown->thumbnails.size() && pointer.x > middle(place + 1)) ++place;
    while (place > 0 && pointer.x < middle(place - 1)) --place;
    grip_->place = place;
}

void SimulatedMissionControl::release(Point at) {
    if (grip_ && grip_->isLifted) makeRoom(at);
    const auto grip = std::exchange(grip_, std::nullopt);
    const bool isOnBar = std::ranges::any_of(
        bars_, [&](const auto& each) { return each.second.frame(loop_.now()).contains(at); });
    if (!grip && !isOnBar) return dismiss();
    if (!grip) return;
    if (grip->isLifted) return drop(*grip);
    if (grip->moves > 0 || !layout_.displayOf(grip->space)) return;
    stage_.move(grip->space, random_.between(0.3, 0.5));
    dismiss();
}

void SimulatedMissionControl::drop(const Grip& grip) {
    const async::Nanos now = loop_.now();
    const auto bar = bars_.find(grip.screen);
    const bool isCarried = grip.moves >= dropMoves && now - grip.lastDrag >= async::wholeNanos(dropRest);
    if (!isCarried || bar == bars_.end() || !bar->second.isExpanded(now) ||
        !bar->second.frame(now).contains(pointer_.position()))
        return;
    after(random_.between(0.02, 0.15), [this, grip] {
        const SimulatedDisplay* display = layout_.displayOf(grip.space);
        if (!display) return;
        const std::size_t from = display->indexOf(grip.space);
        layout_.moveTo(grip.space, grip.place);
        if (faults_.befalls(SimulatedFault::snapBack))
            after(random_.between(0.02, 0.9), [=, this] { layout_.moveTo(grip.space, from); });
    });
}

} // namespace lumnara
