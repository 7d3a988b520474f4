#include "tests/simruns/ArrangeMishaps.h"

#include <algorithm>
#include <array>
#include <limits>

namespace lumnara::testing {

const std::vector<ArrangeMishaps::Mishap> ArrangeMishaps::mishaps{
    {"a desktop vanishes",
     [](ArrangeMishaps& at) {
         const SpaceID space = at.anySpace();
         at.changedTheLayout_ = true;
         at.removed_.insert(space);
         at.stage_.mac.removeSpace(space);
     }},
    {"a desktop appears",
     [](ArrangeMishaps& at) {
         at.changedTheLayout_ = true;
         at.added_.insert(at.stage_.mac.addDesktop(at.stage_.display.uuid));
     }},
    {"another order by the user",
     [](ArrangeMishaps& at) {
         at.changedTheLayout_ = true;
         at.stage_.mac.moveSpace(at.anySpace(), at.random_.below(5));
     }},
    {"display unplugged",
     [](ArrangeMishaps& at) {
         at.changedTheLayout_ = true;
         at.stage_.mac.removeScreen(at.stage_.display.isMain() ? "RIGHT" : at.stage_.display.uuid);
     }},
    {"display unplugged for a while", &ArrangeMishaps::unplugForAWhile},
    {"screen locked", [](ArrangeMishaps& at) { at.stage_.mac.isLocked = true; }},
    {"Mac woken", [](ArrangeMishaps& at) { at.stage_.mac.wake(); }},
    {"a reading fails",
     [](ArrangeMishaps& at) { at.stage_.provider.failures = 1 + static_cast<int>(at.random_.below(3)); }},
    {"attribute missing", [](ArrangeMishaps& at) { at.damage(at.anyAttribute(), std::nullopt); }},
    {"attribute of another type", [](ArrangeMishaps& at) { at.damage(at.anyAttribute(), true); }},
    {"frames of NaN",
     [](ArrangeMishaps& at) {
         constexpr double none = std::numeric_limits<double>::quiet_NaN();
         at.damage("AXPosition", Point{none, none});
     }},
    {"frames of no size", [](ArrangeMishaps& at) { at.damage("AXSize", Size{}); }},
    {"titles in another language", [](ArrangeMishaps& at) { at.damage("AXTitle", "Schreibtisch 1"); }},
    {"actions refused",
     [](ArrangeMishaps& at) { at.stage_.accessibility.actions = DamagedAccessibility::Actions::refused; }},
    {"actions ignored",
     [](ArrangeMishaps& at) { at.stage_.accessibility.actions = DamagedAccessibility::Actions::ignored; }}};

/// Nobody would notice by now.
constexpr auto lateSymbol = static_cast<std::size_t>(SimulatedFault::symbolMissing);

std::vector<std::unique_ptr<async::Delayed>> ArrangeMishaps::schedule(double seconds) {
    std::vector<std::unique_ptr<async::Delayed>> scheduled;
    std::set<std::size_t> chosen; // each once: of two lost Escapes no script recovers
    const std::array chances{0, 1, 1, 1, 2, 2};
    for (int more = chances[random_.below(chances.size())]; more > 0; --more) {
        // The opening takes two or three seconds, and begins at once: early moments matter as much as late
        // ones.
        const double moment = random_.between(0, std::array{0.05, 3.0, seconds}[random_.below(3)]);
        const std::size_t which = random_.below(everySimulatedFault.size() + mishaps.size());
        if (!chosen.insert(which).second || which == lateSymbol) continue;
        scheduled.push_back(std::make_unique<async::Delayed>(stage_.loop, moment, [this, which] {
            if (which < everySimulatedFault.size()) {
                befallen_.emplace(nameOf(everySimulatedFault[which]));
                stage_.mac.inject(everySimulatedFault[which]);
            } else {
                const Mishap& mishap = mishaps[which - everySimulatedFault.size()];
                befallen_.emplace(mishap.name);
                mishap.happen(*this);
            }
        }));
    }
    return scheduled;
}

bool ArrangeMishaps::movedPointer() const {
    return befallen_.contains(std::string(nameOf(SimulatedFault::pointerGrabbed))) ||
           befallen_.contains("display unplugged") || befallen_.contains("display unplugged for a while");
}

bool ArrangeMishaps::isBlind() const {
    return changedTheLayout_ && befallen_.contains(std::string(nameOf(SimulatedFault::staleReading)));
}

SpaceID ArrangeMishaps::anySpace() {
    const auto& displays = stage_.mac.layout().displays();
    const auto& spaces = displays[random_.below(displays.size())].spaces;
    return spaces[random_.below(spaces.size())].id;
}

void ArrangeMishaps::unplugForAWhile() {
    const auto& screens = stage_.mac.layout().screens();
    const ScreenInfo screen = screens[random_.below(screens.size())];
    changedTheLayout_ = true;
    stage_.mac.removeScreen(screen.uuid);
    ends_.push_back(std::make_unique<async::Delayed>(stage_.loop, random_.between(0.05, 2), [this, screen] {
        if (std::ranges::count(stage_.mac.layout().screens(), screen.uuid, &ScreenInfo::uuid) == 0)
            stage_.mac.addScreen(screen, 1);
    }));
}

/// For a moment, or for good.
void ArrangeMishaps::damage(std::string attribute, std::optional<AccessibilityValue> lie) {
    damagedTree_ = true;
    stage_.accessibility.damage = [=](std::string_view name, const AccessibilityValue& value) {
        return name == attribute ? lie : std::optional(value);
    };
    if (random_.below(2) == 0) return;
    ends_.push_back(std::make_unique<async::Delayed>(stage_.loop, random_.between(0.01, 1),
                                                     [this] { stage_.accessibility.damage = nullptr; }));
}

std::string ArrangeMishaps::anyAttribute() {
    constexpr std::array names{"AXChildren", "AXIdentifier", "AXRole", "AXTitle", "AXPosition", "AXSize"};
    return names[random_.below(names.size())];
}

} // namespace lumnara::testing
