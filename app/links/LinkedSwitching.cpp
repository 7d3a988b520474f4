#include "app/links/LinkedSwitching.h"

#include "app/DisplayName.h"
#include "core/async/Task.h"
#include "core/base/Failure.h"
#include "core/base/Log.h"
#include "core/seams/SpaceActivator.h"
#include "core/seams/Workspace.h"
#include "core/switching/SwitchError.h"
#include "core/switching/SwitchVerifier.h"
#include "core/text/Text.h"

#include <algorithm>
#include <fmt/format.h>

namespace lumnara {

namespace {

/// When the displays are looked at after a switch; the first look is told to the surfaces.
constexpr double firstLook = 1.0;
constexpr double secondLook = 3.0;

bool isOn(const Desktop& desktop, const DisplayID& display) {
    return text::equalsIgnoringCase(desktop.display.uuid, display.uuid);
}

double millisecondsOf(double seconds) { return seconds * 1000; }

} // namespace

/// One switch of a whole group, from the request to what became of it.
struct LinkedSwitching::Run {
    int serial = 0;
    std::optional<SwitchResult> firstMove;
    int alreadyThere = 0;
    /// The display's name and its error.
    std::vector<std::pair<std::string, std::exception_ptr>> failures;
    std::vector<std::pair<DisplayID, SpaceID>> expected;
};

LinkedSwitching::LinkedSwitching(async::Loop& loop, Platform& platform, SpaceProvider& provider,
                                 DesktopCatalog& catalog, SpaceSwitcher& switcher, Notices& notices)
    : loop_(loop),
      platform_(platform),
      provider_(provider),
      catalog_(catalog),
      switcher_(switcher),
      notices_(notices) {}

async::Task<SwitchResult> LinkedSwitching::run(std::vector<Desktop> members) {
    putUnderPointerFirst(members);
    const async::Nanos start = loop_.now();
    Run run;
    run.serial = ++linkedSwitchSerial_;
    const bool keepsFocus = platform_.spaceActivator && !members.empty();
    const auto focus = keepsFocus ? platform_.spaceActivator->keepFocusOn(members.front().display) : nullptr;
    const auto context = co_await async::currentContext();
    for (const Desktop& member : members) {
        // Who asked for another desktop meanwhile must not see this one come after it.
        if (context.stop.stop_requested()) throw async::Cancelled();
        co_await drive(member, run);
    }

    log(fmt::format("Lumnara linked switch: {} displays, {} already there, {} failed, {:.0f} ms",
                    members.size(), run.alreadyThere, run.failures.size(),
                    millisecondsOf(async::secondsOf(loop_.now() - start))));
    if (!run.failures.empty()) {
        const auto& [display, error] = run.failures.front();
        notices_.show(fmt::format("{} did not follow: {}", display, sentenceOf(error)), briefNoticeSeconds);
    }
    const SwitchResult result = outcomeOf(run);
    watch(run, members.front());
    co_return result;
}

void LinkedSwitching::putUnderPointerFirst(std::vector<Desktop>& members) {
    const auto pointed = provider_.cursorDisplay();
    if (!pointed) return;
    const auto first = std::ranges::find_if(members, [&](const auto& each) { return isOn(each, *pointed); });
    if (first != members.end()) std::rotate(members.begin(), first, first + 1);
}

async::Task<> LinkedSwitching::drive(Desktop member, Run& run) {
    const std::string display = nameOf(member.display);
    const std::string before = currentNameOn(member.display);
    try {
        const SwitchResult result = co_await switcher_.switchTo(member.space, member.display, std::nullopt);
        log(fmt::format("Lumnara linked switch: {}: {} -> {} via {}, {} attempt(s), {:.0f} ms", display,
                        before, member.displayName(), rawValue(result.engine), result.attempts,
                        millisecondsOf(result.elapsed)));
        if (!run.firstMove) run.firstMove = result;
        run.expected.emplace_back(member.display, member.space.id);
        co_return;
    } catch (const async::Cancelled&) {
        throw;
    } catch (const SwitchError& error) {
        if (error.which() == SwitchError::Case::alreadyThere) {
            noteAlreadyThere(member, run);
            co_return;
        }
        run.failures.emplace_back(display, std::current_exception());
    } catch (const std::exception&) {
        run.failures.emplace_back(display, std::current_exception());
    }
    log(fmt::format("Lumnara linked switch: {} did not follow: {}", display,
                    sentenceOf(run.failures.back().second)));
}

void LinkedSwitching::noteAlreadyThere(const Desktop& member, Run& run) {
    ++run.alreadyThere;
    run.expected.emplace_back(member.display, member.space.id);
    const auto shown = shownOn(member.display);
    const std::string doubt = shown == member.space.id
                                  ? std::string()
                                  : " by the snapshot, but the window server shows " + describeShown(shown);
    log(fmt::format("Lumnara linked switch: {}: already on {}{}", nameOf(member.display),
                    member.displayName(), doubt));
}

SwitchResult LinkedSwitching::outcomeOf(const Run& run) const {
    if (run.firstMove) return *run.firstMove;
    if (!run.failures.empty()) std::rethrow_exception(run.failures.front().second);
    throw SwitchError(run.alreadyThere > 0 ? SwitchError::Case::alreadyThere
                                           : SwitchError::Case::targetNotInSnapshot);
}

void LinkedSwitching::watch(const Run& run, const Desktop& asked) {
    if (run.serial != linkedSwitchSerial_) return;
    measurements_.clear();
    for (const double delay : {firstLook, secondLook})
        measurements_.push_back(std::make_unique<async::Delayed>(
            loop_, delay, [this, delay, run, asked] { measure(delay, run, asked); }));
}

void LinkedSwitching::measure(double delay, const Run& run, const Desktop& asked) {
    if (run.serial != linkedSwitchSerial_) return;
    const auto entries =
        SwitchSettle::entries(run.expected, [this](const DisplayID& display) { return shownOn(display); });
    std::vector<std::string> descriptions;
    for (const SwitchSettle::Entry& entry : entries) descriptions.push_back(describe(entry));
    const auto frontmost = platform_.workspace ? platform_.workspace->frontmostApplication() : std::nullopt;
    log(fmt::format("Lumnara linked switch settle +{:.0f}s: {}; frontmost {}", delay,
                    fmt::join(descriptions, "; "), frontmost ? frontmost->name : "none"));
    if (delay == firstLook) settled.emit(asked, entries);
}

std::optional<SpaceID> LinkedSwitching::shownOn(const DisplayID& display) {
    return SwitchVerifier::currentSpace(display, provider_);
}

std::string LinkedSwitching::nameOf(const DisplayID& display) {
    const std::string name = displayNameIn(catalog_, display);
    return name.empty() ? provider_.displayName(display.uuid).value_or(display.uuid) : name;
}

std::string LinkedSwitching::currentNameOn(const DisplayID& display) const {
    for (const DisplayDesktops& shown : catalog_.displays.get())
        if (text::equalsIgnoringCase(shown.display.uuid, display.uuid))
            if (const Desktop* current = shown.current()) return current->displayName();
    return "?";
}

std::string LinkedSwitching::describeShown(const std::optional<SpaceID>& shown) const {
    if (!shown) return "nothing readable";
    for (const Desktop& desktop : catalog_.desktops())
        if (desktop.space.id == *shown && desktop.isNamed()) return desktop.displayName();
    return "an unnamed Space";
}

std::string LinkedSwitching::describe(const SwitchSettle::Entry& entry) {
    const std::string display = nameOf(entry.display);
    if (entry.showing != entry.expected) return display + " LEFT for " + describeShown(entry.showing);
    for (const Desktop& desktop : catalog_.desktops())
        if (desktop.space.id == entry.expected) return display + " on " + desktop.displayName();
    return display + " on " + describeShown(entry.showing);
}

} // namespace lumnara
