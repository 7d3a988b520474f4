#pragma once

#include "app/overlay/Notices.h"
#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/async/TaskFwd.h"
#include "core/async/Timer.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/platform/Platform.h"
#include "core/switching/SpaceSwitcher.h"
#include "core/switching/SwitchSettle.h"

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumnara {

/// Brings every member of a link group to the front of its display, one display at a time, and watches for a
/// few seconds whether the displays stay where they were sent. Runs may overlap. Main thread.
class LinkedSwitching {
public:
    /// The platform may lack anything. All outlive this object and its tasks.
    LinkedSwitching(async::Loop& loop, Platform& platform, SpaceProvider& provider, DesktopCatalog& catalog,
                    SpaceSwitcher& switcher, Notices& notices);

    /// The member under the pointer goes first and keeps the keyboard. A member that doesn't follow
    /// stops no other: when any moved, the result is that of the first that did, and a notice tells of the
    /// first failure. When none moved, throws the first failure, SwitchError::alreadyThere when all are there
    /// already, or SwitchError::targetNotInSnapshot without members.
    async::Task<SwitchResult> run(std::vector<Desktop> members);

    /// What each display showed a second after a switch that moved something, with its first member. A switch
    /// that another has followed is not measured.
    async::Signal<const Desktop&, const std::vector<SwitchSettle::Entry>&> settled;

private:
    struct Run;

    void putUnderPointerFirst(std::vector<Desktop>& members);
    async::Task<> drive(Desktop member, Run& run);
    void noteAlreadyThere(const Desktop& member, Run& run);
    SwitchResult outcomeOf(const Run& run) const;
    void watch(const Run& run, const Desktop& asked);
    void measure(double delay, const Run& run, const Desktop& asked);

    std::optional<SpaceID> shownOn(const DisplayID& display);
    std::string nameOf(const DisplayID& display);
    std::string currentNameOn(const DisplayID& display) const;
    std::string describeShown(const std::optional<SpaceID>& shown) const;
    std::string describe(const SwitchSettle::Entry& entry);

    async::Loop& loop_;
    Platform& platform_;
    SpaceProvider& provider_;
    DesktopCatalog& catalog_;
    SpaceSwitcher& switcher_;
    Notices& notices_;
    /// Counts the runs; the measurement of any but the latest means nothing.
    int linkedSwitchSerial_ = 0;
    std::vector<std::unique_ptr<async::Delayed>> measurements_;
};

} // namespace lumnara
