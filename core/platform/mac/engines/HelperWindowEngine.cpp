#include "core/platform/mac/engines/HelperWindowEngine.h"

#include "core/async/Task.h"
#include "core/platform/mac/server/DisplayHelpers.h"
#include "core/platform/mac/server/ListedWindow.h"
#include "core/switching/SwitchError.h"
#include "core/switching/SwitchTarget.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

/// An activation animates, so it gets longer than a swipe.
constexpr double landingInitialWait = 0.25;
constexpr int landingMaxPolls = 25;

constexpr std::uint32_t borderless = 0;
constexpr std::uint32_t buffered = 2;
/// Managed, stationary, passed over when cycling, beside full-screen windows.
constexpr std::uint32_t helperBehavior = 0x154;

/// Never 0, so that the window server keeps treating the window as visible.
constexpr double helperAlpha = 0.01;

/// One point in the bottom right corner of a screen.
Rect cornerOf(const Rect& screen) {
    return {screen.x + screen.width - 2, screen.y + screen.height - 2, 1, 1};
}

WindowForm helperForm(const Rect& screen) {
    return {.contentRect = cornerOf(screen),
            .styleMask = borderless,
            .backing = buffered,
            .isDeferred = false,
            .isReleasedWhenClosed = false,
            .alpha = helperAlpha,
            .hasClearBackground = true,
            .isOpaque = false,
            .hasShadow = false,
            .ignoresMouseEvents = true,
            .level = 0,
            .collectionBehavior = helperBehavior,
            .title = "Lumnara helper",
            .isExcludedFromWindowsMenu = true};
}

std::optional<WindowNumber> numberOf(OwnWindow& window) {
    const std::int64_t number = window.windowNumber();
    if (number == 0 || !std::in_range<WindowNumber>(number)) return std::nullopt;
    return static_cast<WindowNumber>(number);
}

void dismiss(OwnWindow& window) {
    window.orderOut();
    window.close();
}

bool holds(const std::vector<SpaceID>& spaces, SpaceID space) {
    return std::ranges::count(spaces, space) > 0;
}

bool isIn(const SpaceSnapshot& snapshot, SpaceID space) {
    return std::ranges::any_of(snapshot.displays, [&](const DisplaySpaces& shown) {
        return std::ranges::count(shown.spaces, space, &Space::id) > 0;
    });
}

} // namespace

async::Task<SwitchResult> HelperWindowEngine::switchTo(const Space& target, const DisplayID& display,
                                                       const SpaceSnapshot& snapshot) {
    const auto context = co_await async::currentContext();
    const async::Nanos start = context.loop->now();
    requireElsewhere(target.id, display, snapshot);
    const EngineKind used = activateFor(target, display);
    co_return co_await awaitAndHandBack(target.id, display, used, start);
}

async::Task<SwitchResult> HelperWindowEngine::awaitAndHandBack(SpaceID target, DisplayID display,
                                                               EngineKind engine, async::Nanos startedAt) {
    const auto context = co_await async::currentContext();
    const SwitchVerifier::Config patience{landingInitialWait, verify.pollInterval, landingMaxPolls};
    const bool landed = co_await SwitchVerifier::awaitLanding(target, display, provider_, patience);
    if (engine == EngineKind::helperWindow && handsFocusBack) handFocusBack(display);
    if (landed) co_return SwitchResult{true, engine, 1, async::secondsOf(context.loop->now() - startedAt)};
    if (context.stop.stop_requested()) throw async::Cancelled();
    throw SwitchError::notLanded(1);
}

OwnWindow& HelperWindowEngine::window(SpaceID space, const DisplayID& display) {
    const auto found = windows_.find(space);
    if (found == windows_.end()) return makeWindow(space, display);
    OwnWindow& window = *found->second;
    if (!holds(spacesOf(window), space)) pin(window, space);
    return window;
}

void HelperWindowEngine::warm(const SpaceSnapshot& snapshot) {
    for (const DisplaySpaces& shown : snapshot.displays) {
        for (const Space& space : shown.spaces) {
            const auto found = windows_.find(space.id);
            if (found == windows_.end())
                makeWindow(space.id, shown.display);
            else if (spacesOf(*found->second) != std::vector{space.id})
                pin(*found->second, space.id);
        }
    }
}

void HelperWindowEngine::pruneWindows(const SpaceSnapshot& keeping) {
    for (auto each = windows_.begin(); each != windows_.end();) {
        if (isIn(keeping, each->first)) {
            ++each;
        } else {
            dismiss(*each->second);
            each = windows_.erase(each);
        }
    }
}

void HelperWindowEngine::closeAll() {
    for (const auto& [space, window] : windows_) dismiss(*window);
    windows_.clear();
}

EngineKind HelperWindowEngine::activateFor(const Space& target, const DisplayID& display) {
    OwnWindow& helper = window(target.id, display);
    if (holds(spacesOf(helper), target.id)) {
        own_.activateIgnoringOtherApps();
        helper.makeKeyAndOrderFront();
        return EngineKind::helperWindow;
    }
    const bool hasOwner = target.kind == SpaceKind::fullscreen && target.fullscreenOwner;
    if (!hasOwner || !workspace_.runningApplication(target.fullscreenOwner->pid))
        throw SwitchError(SwitchError::Case::engineUnavailable);
    activate(target.fullscreenOwner->pid);
    return EngineKind::fullscreenActivation;
}

OwnWindow& HelperWindowEngine::makeWindow(SpaceID space, const DisplayID& display) {
    const auto made = windows_.emplace(space, own_.makeWindow(helperForm(frameForWindow(display)))).first;
    OwnWindow& window = *made->second;
    window.orderFrontRegardless();
    pin(window, space);
    return window;
}

void HelperWindowEngine::pin(OwnWindow& window, SpaceID space) {
    const auto number = numberOf(window);
    if (!number) return;
    std::vector<SpaceID> others = windowServer_.spacesOfWindows({*number});
    const bool isThere = std::erase(others, space) > 0;
    if (!others.empty()) windowServer_.removeWindowsFromSpaces({*number}, others);
    if (!isThere) windowServer_.addWindowsToSpaces({*number}, {space});
}

std::vector<SpaceID> HelperWindowEngine::spacesOf(OwnWindow& window) {
    const auto number = numberOf(window);
    return number ? windowServer_.spacesOfWindows({*number}) : std::vector<SpaceID>();
}

void HelperWindowEngine::handFocusBack(const DisplayID& display) {
    if (const auto pid = applicationToFocus(display)) return activate(*pid);
    for (const RunningApplication& running : workspace_.runningApplications())
        if (running.app.bundleID == "com.apple.finder") return activate(running.app.pid);
}

std::optional<std::int32_t> HelperWindowEngine::applicationToFocus(const DisplayID& display) {
    const auto list = windowServer_.windowList(WindowListOption::onScreenOnlyWithoutDesktop);
    if (!list) return std::nullopt;
    const std::int32_t ownPid = own_.pid();
    const auto screen = DisplayHelpers::screen(screens_, display.uuid);
    for (const PropertyDictionary& entry : *list) {
        const ListedWindow window = ListedWindow::of(entry);
        if (window.layer != 0 || !window.ownerPid || window.ownerPid == ownPid || !window.bounds) continue;
        if (screen && !screen->frame.contains(window.bounds->middle())) continue;
        const auto owner = workspace_.runningApplication(*window.ownerPid);
        if (owner && owner->policy == ActivationPolicy::regular) return owner->app.pid;
    }
    return std::nullopt;
}

void HelperWindowEngine::activate(std::int32_t pid) {
    own_.activateIgnoringOtherApps();
    if (own_.mustYieldActivation()) {
        own_.yieldActivation(pid);
        workspace_.activate(pid, ActivationOptions::none);
    } else {
        workspace_.activate(pid, ActivationOptions::ignoringOtherApps);
    }
}

Rect HelperWindowEngine::frameForWindow(const DisplayID& display) {
    if (const auto screen = DisplayHelpers::screen(screens_, display.uuid)) return screen->frame;
    const auto menuBar = windowServer_.activeMenuBarDisplay();
    const auto main = menuBar ? DisplayHelpers::screen(screens_, *menuBar) : std::nullopt;
    if (main) return main->frame;
    const auto all = screens_.screens();
    return all.empty() ? Rect{} : all.front().frame;
}

} // namespace lumnara
