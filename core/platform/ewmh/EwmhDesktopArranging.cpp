#include "core/platform/ewmh/EwmhDesktopArranging.h"

#include "core/async/Task.h"
#include "core/async/Timer.h"

#include <algorithm>
#include <numeric>

namespace lumnara {

namespace {

/// A window manager that hasn't done it by then hangs or refuses.
constexpr double arrangingPatience = 0.3;

using Indexes = std::vector<std::size_t>;

/// Where each place of `places` has its own index.
Indexes inverted(const Indexes& places) {
    Indexes targets(places.size());
    for (std::size_t i = 0; i < places.size(); ++i) targets[places[i]] = i;
    return targets;
}

} // namespace

EwmhDesktopArranging::EwmhDesktopArranging(std::shared_ptr<X11Connection> connection,
                                           std::shared_ptr<EwmhDesktops> desktops)
    : connection_(std::move(connection)),
      desktops_(std::move(desktops)),
      root_(connection_),
      windows_(connection_),
      propertyChanged_(connection_->propertyChanged.subscribe([this](const auto&) { changed_.fire(); })) {}

async::Task<> EwmhDesktopArranging::add(DisplayID) {
    const std::size_t count = desktops_->read().desktops.size();
    desktops_->expectNew(count);
    if (!co_await changeCount(count + 1)) desktops_->forget(count);
}

async::Task<> EwmhDesktopArranging::arrange(DisplayID, std::vector<SpaceID> order) {
    const EwmhReading reading = desktops_->read();
    Indexes places;
    for (const SpaceID id : order)
        if (const auto index = reading.indexOf(id)) places.push_back(*index);
    if (places.size() != reading.desktops.size()) co_return;
    const auto held = desktops_->hold();
    if (co_await moveAll(inverted(places))) desktops_->identify(places);
}

async::Task<> EwmhDesktopArranging::remove(SpaceID id, SpaceID heir) {
    const EwmhReading reading = desktops_->read();
    const auto removed = reading.indexOf(id);
    const auto inherits = reading.indexOf(heir);
    if (!removed || !inherits) co_return;
    const std::size_t last = reading.desktops.size() - 1;
    Indexes places(last + 1);
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::rotate(places.begin() + static_cast<std::ptrdiff_t>(*removed),
                places.begin() + static_cast<std::ptrdiff_t>(*removed) + 1, places.end());
    Indexes targets = inverted(places);
    targets[*removed] = targets[*inherits];

    const auto held = desktops_->hold();
    if (!co_await moveAll(targets)) co_return;
    desktops_->identify(places);
    if (co_await changeCount(last)) {
        desktops_->forget(last);
        co_return;
    }
    // It won't have one less: then all keep their places.
    if (co_await moveAll(places)) desktops_->identify(inverted(places));
}

/// What is at each index goes to its target. When that doesn't come about it is taken back, so that a window
/// manager that was only late ends where it was.
async::Task<bool> EwmhDesktopArranging::moveAll(Indexes targets) {
    const Move move = planMove(targets);
    windows_.watch(move.after, true);
    request(move);
    const auto come = [this, &move] { return hasCome(move); };
    bool moved = co_await comesTrue(come);
    if (!moved) {
        // A window may have been drawn along by another, as a dialog is by its parent.
        for (const EwmhPlacement& placement : windows_.misplaced(move.after)) windows_.request(placement);
        moved = co_await comesTrue(come);
    }
    windows_.watch(move.after, false);
    if (moved)
        co_await bringLatecomers(move);
    else
        takeBack(move);
    co_return moved;
}

/// A window that opened before the window manager heard of the move stands where the shown desktop was then.
/// By now the window manager has listed it: it takes things in their order.
async::Task<> EwmhDesktopArranging::bringLatecomers(const Move& move) {
    if (move.current == move.currentBefore) co_return;
    std::vector<EwmhPlacement> homes;
    for (const EwmhPlacement& placement : windows_.placements())
        if (placement.desktop == move.currentBefore &&
            std::ranges::find(move.before, placement.window, &EwmhPlacement::window) == move.before.end())
            homes.push_back({placement.window, static_cast<std::uint32_t>(move.current)});
    if (homes.empty()) co_return;
    windows_.watch(homes, true);
    for (const EwmhPlacement& home : homes) windows_.request(home);
    co_await comesTrue([this, &homes] { return windows_.misplaced(homes).empty(); });
    windows_.watch(homes, false);
}

EwmhDesktopArranging::Move EwmhDesktopArranging::planMove(const Indexes& targets) {
    Move move;
    move.currentBefore = root_.read().current;
    move.current = move.currentBefore < targets.size() ? targets[move.currentBefore] : move.currentBefore;
    move.active = windows_.active();
    for (const EwmhPlacement& placement : windows_.placements()) {
        if (placement.desktop >= targets.size()) continue;
        move.before.push_back(placement);
        move.after.push_back({placement.window, static_cast<std::uint32_t>(targets[placement.desktop])});
    }
    return move;
}

/// What shows is taken along on all desktops, so that it doesn't flicker. It may lose the keyboard all the
/// same, and gets it again in the end.
void EwmhDesktopArranging::request(const Move& move) {
    std::vector<EwmhPlacement> shown;
    for (std::size_t i = 0; i < move.after.size(); ++i) {
        if (move.before[i].desktop == move.after[i].desktop) continue;
        if (move.before[i].desktop == move.currentBefore)
            shown.push_back(move.after[i]);
        else
            windows_.request(move.after[i]);
    }
    for (const EwmhPlacement& placement : shown)
        windows_.request({placement.window, EwmhWindows::everywhere});
    if (move.current == move.currentBefore) return;
    root_.requestDesktop(move.current);
    for (const EwmhPlacement& placement : shown) windows_.request(placement);
    if (move.active != XCB_WINDOW_NONE) windows_.requestActive(move.active);
}

void EwmhDesktopArranging::takeBack(const Move& move) {
    const bool showsAnother = move.current != move.currentBefore;
    if (showsAnother) root_.requestDesktop(move.currentBefore);
    for (const EwmhPlacement& placement : move.before) windows_.request(placement);
    if (showsAnother && move.active != XCB_WINDOW_NONE) windows_.requestActive(move.active);
}

bool EwmhDesktopArranging::hasCome(const Move& move) {
    return root_.read().current == move.current && windows_.misplaced(move.after).empty();
}

async::Task<bool> EwmhDesktopArranging::changeCount(std::size_t count) {
    const std::size_t before = root_.read().count;
    root_.requestCount(count);
    const auto changed = [this, count] { return root_.read().count == count; };
    const auto done = co_await comesTrue(changed);
    if (!done) root_.requestCount(before);
    co_return done;
}

/// Looks at each announcement, for as long as patience lasts.
async::Task<bool> EwmhDesktopArranging::comesTrue(std::function<bool()> condition) {
    const async::Nanos deadline = connection_->loop().now() + async::wholeNanos(arrangingPatience);
    for (;;) {
        if (condition()) co_return true;
        const double left = async::secondsOf(deadline - connection_->loop().now());
        if (left <= 0) co_return false;
        if (!co_await changed_.wait(left)) co_return condition();
    }
}

} // namespace lumnara
