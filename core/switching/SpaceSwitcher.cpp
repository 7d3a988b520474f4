#include "core/switching/SpaceSwitcher.h"

#include "core/async/Task.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace lumnara {

namespace {

std::string historyKey(const SpaceSnapshot& snapshot, const Space& space, const DisplayID& display) {
    if (auto key = snapshot.key(space, display.uuid)) return *std::move(key);
    return "unkeyed:" + space.id.text();
}

/// The stable key of a Space as a later snapshot has it, or nothing.
std::optional<std::string> keyIn(const SpaceSnapshot& snapshot, const PlacedSpace& placed) {
    const DisplaySpaces* shown = snapshot.spacesOnDisplay(placed.display.uuid);
    if (!shown) return std::nullopt;
    const auto space = std::ranges::find(shown->spaces, placed.space.id, &Space::id);
    if (space == shown->spaces.end()) return std::nullopt;
    return snapshot.key(*space, placed.display.uuid);
}

/// The display as the snapshot spells it. The screens may spell it in another case, and the history is kept
/// under one spelling.
DisplayID spelledAsIn(const SpaceSnapshot& snapshot, const DisplayID& display) {
    const DisplaySpaces* shown = snapshot.spacesOnDisplay(display.uuid);
    return shown != nullptr ? shown->display : display;
}

PlacedSpace requireSpace(const SpaceSnapshot& snapshot, const std::optional<std::string>& key) {
    auto found = key ? snapshot.resolve(*key) : std::nullopt;
    if (!found) throw SwitchError(SwitchError::Case::targetNotInSnapshot);
    return *std::move(found);
}

/// Whether no other engine can help either.
bool endsTheChain(const SwitchError& error) {
    return error.which() == SwitchError::Case::alreadyThere ||
           error.which() == SwitchError::Case::targetNotInSnapshot;
}

} // namespace

std::optional<SwitchError> blockingReasonOf(SessionProbe& session) {
    using Case = SwitchError::Case;
    if (session.isScreenLocked()) return SwitchError(Case::screenLocked);
    if (!session.isOnConsole()) return SwitchError(Case::sessionNotOnConsole);
    return std::nullopt;
}

SpaceSwitcher::SpaceSwitcher(SpaceProvider& provider, SwitcherSettings initial)
    : settings(initial),
      provider_(provider) {}

async::Task<SwitchResult> SpaceSwitcher::switchToDesktop(std::string key) {
    SpaceSnapshot snapshot = provider_.snapshot();
    PlacedSpace found = requireSpace(snapshot, key);
    co_return co_await switchTo(std::move(found.space), std::move(found.display), std::move(snapshot));
}

async::Task<SwitchResult> SpaceSwitcher::switchBack(std::optional<DisplayID> display) {
    SpaceSnapshot snapshot = provider_.snapshot();
    const DisplayID from = displayToGoBackOn(snapshot, std::move(display));
    PlacedSpace found = requireSpace(snapshot, history.previous(from.uuid));
    co_return co_await switchTo(std::move(found.space), std::move(found.display), std::move(snapshot));
}

async::Task<SwitchResult> SpaceSwitcher::switchTo(Space target, DisplayID display,
                                                  std::optional<SpaceSnapshot> snapshot) {
    throwIfBlocked();
    const SpaceSnapshot used = snapshot ? *std::move(snapshot) : provider_.snapshot();

    const SwitchResult result = co_await runChain(target, display, used);
    const DisplayID spelled = spelledAsIn(used, display);
    history.record(historyKey(used, target, spelled), spelled.uuid);
    if (onLanded) onLanded(target, spelled, result);
    co_return result;
}

async::Task<SwitchResult> SpaceSwitcher::switchWithHelperWindow(std::string key,
                                                                std::function<SpaceSnapshot()> rereading) {
    const SpaceSnapshot snapshot = provider_.snapshot();
    const PlacedSpace found = requireSpace(snapshot, key);
    throwIfBlocked();
    if (!helperWindow) throw SwitchError(SwitchError::Case::engineUnavailable);

    const SwitchResult result = co_await helperWindow->switchTo(found.space, found.display, snapshot);
    if (const auto landedOn = keyIn(rereading(), found)) history.record(*landedOn, found.display.uuid);
    if (onLanded) onLanded(found.space, found.display, result);
    co_return result;
}

void SpaceSwitcher::throwIfBlocked() const {
    if (!blockingReason) return;
    if (const auto reason = blockingReason()) throw *reason;
}

async::Task<SwitchResult> SpaceSwitcher::runChain(const Space& target, const DisplayID& display,
                                                  const SpaceSnapshot& snapshot) {
    std::exception_ptr lastError = std::make_exception_ptr(SwitchError(SwitchError::Case::engineUnavailable));
    for (SpaceSwitching* engine : chain()) {
        try {
            co_return co_await engine->switchTo(target, display, snapshot);
        } catch (const async::Cancelled&) {
            throw;
        } catch (const SwitchError& error) {
            if (endsTheChain(error)) throw;
            lastError = std::current_exception();
        } catch (...) {
            lastError = std::current_exception();
        }
    }
    std::rethrow_exception(lastError);
}

std::vector<SpaceSwitching*> SpaceSwitcher::chain() const {
    if (engineOverride) return *engineOverride;
    std::vector<SpaceSwitching*> engines;
    if (settings.instantSwitching) engines.push_back(dockSwipe);
    engines.push_back(helperWindow);
    std::erase(engines, nullptr);
    return engines;
}

DisplayID SpaceSwitcher::displayToGoBackOn(const SpaceSnapshot& snapshot,
                                           std::optional<DisplayID> asked) const {
    if (!asked) asked = provider_.cursorDisplay();
    if (!asked && !snapshot.displays.empty()) asked = snapshot.displays.front().display;
    if (!asked) throw SwitchError(SwitchError::Case::targetNotInSnapshot);
    return spelledAsIn(snapshot, *asked);
}

void SpaceSwitcher::observe(const SpaceSnapshot& snapshot) {
    if (helperWindow) {
        helperWindow->pruneWindows(snapshot);
        if (!settings.instantSwitching || keepHelperWindowsWarm) helperWindow->warm(snapshot);
    }
    for (const DisplaySpaces& shown : snapshot.displays) {
        const auto current = std::ranges::find(shown.spaces, shown.currentID, &Space::id);
        if (current != shown.spaces.end())
            history.record(historyKey(snapshot, *current, shown.display), shown.display.uuid);
    }
}

} // namespace lumnara
