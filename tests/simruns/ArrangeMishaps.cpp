#include "tests/simruns/ArrangeMishaps.h"

#include <algorithm>
#include <array>
#include <limits>

namespace lumnara::testing {

const std::vector<ArrangeMishaps::Mishap> ArrangeMishaps::mishaps{
    {"a desktop vanishes", &ArrangeMishaps::removeSpace},
    {"a desktop appears", &ArrangeMishaps::addSpace},
    {"another order by the user", &ArrangeMishaps::moveSpace},
    {"display unplugged", &ArrangeMishaps::unplug},
    {"display unplugged for a while", &ArrangeMishaps::unplugForAWhile},
    {"screen locked", &ArrangeMishaps::lockScreen},
    {"Mac woken", &ArrangeMishaps::wake},
    {"a reading fails", &ArrangeMishaps::failReading},
    {"attribute missing", &ArrangeMishaps::dropAttributes},
    {"attribute of another type", &ArrangeMishaps::mistypeAttributes},
    {"frames of NaN", &ArrangeMishaps::tellNoNumbers},
    {"frames of no size", &ArrangeMishaps::tellNoArea},
    {"titles in another language", &ArrangeMishaps::translateTitles},
    {"actions refused", &ArrangeMishaps::refuseActions},
    {"actions ignored", &ArrangeMishaps::ignoreActions}};

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
                (this->*mishap.happen)();
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

void ArrangeMishaps::removeSpace() {
    const SpaceID space = anySpace();
    changedTheLayout_ = true;
    removed_.insert(space);
    stage_.mac.removeSpace(space);
}

void ArrangeMishaps::addSpace() {
    changedTheLayout_ = true;
    added_.insert(stage_.mac.addDesktop(stage_.display.uuid));
}

void ArrangeMishaps::moveSpace() {
    changedTheLayout_ = true;
    stage_.mac.moveSpace(anySpace(), random_.below(5));
}

void ArrangeMishaps::unplug() {
    changedTheLayout_ = true;
    stage_.mac.removeScreen(stage_.display.isMain() ? "RIGHT" : stage_.display.uuid);
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

void ArrangeMishaps::lockScreen() { stage_.mac.isLocked = true; }
void ArrangeMishaps::wake() { stage_.mac.wake(); }
void ArrangeMishaps::failReading() { stage_.provider.failures = 1 + static_cast<int>(random_.below(3)); }

/// For a moment, or for good.
void ArrangeMishaps::damage(DamagedAccessibility::Damage damage) {
    damagedTree_ = true;
    stage_.accessibility.damage = std::move(damage);
    if (random_.below(2) == 0) return;
    ends_.push_back(std::make_unique<async::Delayed>(stage_.loop, random_.between(0.01, 1),
                                                     [this] { stage_.accessibility.damage = nullptr; }));
}

std::string ArrangeMishaps::anyAttribute() {
    constexpr std::array names{"AXChildren", "AXIdentifier", "AXRole", "AXTitle", "AXPosition", "AXSize"};
    return names[random_.below(names.size())];
}

void ArrangeMishaps::dropAttributes() {
    damage([damaged = anyAttribute()](std::string_view name, const AccessibilityValue& value) {
        return name == damaged ? std::nullopt : std::optional(value);
    });
}

void ArrangeMishaps::mistypeAttributes() {
    damage([damaged = anyAttribute()](std::string_view name, const AccessibilityValue& value) {
        return std::optional(name == damaged ? AccessibilityValue(true) : value);
    });
}

void ArrangeMishaps::tellNoNumbers() {
    damage([](std::string_view name, const AccessibilityValue& value) -> std::optional<AccessibilityValue> {
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        if (name == "AXPosition") return Point{none, none};
        return value;
    });
}

void ArrangeMishaps::tellNoArea() {
    damage([](std::string_view name, const AccessibilityValue& value) -> std::optional<AccessibilityValue> {
        if (name == "AXSize") return Size{};
        return value;
    });
}

void ArrangeMishaps::translateTitles() {
    damage([](std::string_view name, const AccessibilityValue& value) -> std::optional<AccessibilityValue> {
        const auto* title = std::get_if<std::string>(&value);
        if (name == "AXTitle" && title && title->starts_with("Desktop "))
            return "Schreibtisch " + title->substr(8);
        return value;
    });
}

void ArrangeMishaps::refuseActions() {
    stage_.accessibility.actions = DamagedAccessibility::Actions::refused;
}
void ArrangeMishaps::ignoreActions() {
    stage_.accessibility.actions = DamagedAccessibility::Actions::ignored;
}

} // namespace lumnara::testing
