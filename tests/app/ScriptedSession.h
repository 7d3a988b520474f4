#pragma once

#include "app/AppState.h"
#include "core/arranging/DesktopArranger.h"
#include "core/async/Task.h"
#include "core/async/TestLoop.h"
#include "core/base/Log.h"
#include "core/model/SpaceKitError.h"
#include "core/platform/Platform.h"
#include "core/platform/linux/WindowManagerError.h"
#include "core/seams/DesktopNamePublisher.h"
#include "core/seams/Screens.h"
#include "core/seams/SpaceActivator.h"
#include "core/seams/Workspace.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/RecordingExecutor.h"
#include "tests/support/ScriptedProvider.h"
#include "tests/support/TemporaryFolder.h"

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara::testing {

using Texts = std::vector<std::string>;

class ScriptedWorkspace : public Workspace {
public:
    async::Subscription observe(std::function<void(WorkspaceEvent)> onEvent) override {
        return events.subscribe(std::move(onEvent));
    }
    std::optional<RunningApp> frontmostApplication() override { return frontmost; }

    async::Signal<WorkspaceEvent> events;
    std::optional<RunningApp> frontmost;
};

class ScriptedScreens : public Screens {
public:
    std::vector<ScreenInfo> screens() override { return list; }
    std::optional<Point> pointer() override { return at; }
    std::optional<std::string> displayUnderPointer() override { return under; }

    std::vector<ScreenInfo> list;
    std::optional<Point> at = Point{10, 10};
    std::optional<std::string> under;
};

/// Shows the Space in the provider, unless it is told to fail or to do nothing.
class ScriptedActivator : public SpaceActivator {
public:
    explicit ScriptedActivator(ScriptedProvider& provider) : provider_(provider) {}
    async::Task<std::optional<SpaceID>> activate(const Space& target, const DisplayID& display) override;
    std::shared_ptr<const DisplayID> keepFocusOn(const DisplayID& display) override;

    std::vector<SpaceID> asked;
    /// Where the keyboard was kept, at each activation.
    std::vector<std::string> focused;
    /// A display that can't be switched.
    std::string stubborn;
    std::exception_ptr failure;
    bool obeys = true;
    /// Called when a Space has been shown.
    std::function<void()> onShown;

private:
    ScriptedProvider& provider_;
    std::weak_ptr<const DisplayID> focusKept_;
};

/// Adds desktops, "added-90" and so on, and does nothing else.
class AddingArranger : public DesktopArranger {
public:
    explicit AddingArranger(ScriptedProvider& provider) : provider_(provider) {}
    std::optional<int> desktopsPerDisplay() const override { return std::nullopt; }
    async::Task<ReorderOutcome> reorder(DisplayID, std::vector<SpaceID>) override;
    async::Task<RemoveOutcome> remove(std::vector<SpaceID>, DisplayID) override;
    async::Task<std::vector<SpaceID>> create(DisplayID display) override;

    int adds = 1;
    std::exception_ptr failure;
    std::function<void()> onAdded;

private:
    ScriptedProvider& provider_;
    std::uint64_t nextID_ = 90;
};

class RecordingPublisher : public DesktopNamePublisher {
public:
    void publish(const std::vector<PublishedDesktop>& desktops) override { published.push_back(desktops); }
    /// The names of the last publication, in its order.
    std::vector<std::string> lastNames() const;

    std::vector<std::vector<PublishedDesktop>> published;
};

/// `count` ordinary Spaces on a display, "<uuid>-1" and so on, with ids from `firstId`; it shows the first.
DisplaySpaces displayOf(const std::string& uuid, int count, std::uint64_t firstId);

/// Display A with three Spaces, ids from 1, and B with two, ids from 11.
std::vector<DisplaySpaces> twoDisplays();

/// The whole shell over a window manager in memory, in virtual time.
class ScriptedSession {
public:
    explicit ScriptedSession(std::vector<DisplaySpaces> displays);
    ~ScriptedSession();

    /// Builds the state; the folder and the window manager may be prepared before.
    AppState& start();
    AppState& state() { return *state_; }
    DesktopCatalog& catalog() { return state_->catalog(); }
    /// The live desktop of that Space key; fails the test when there is none.
    Desktop desktop(const std::string& spaceKey);
    /// The window manager shows the Space and says so.
    void userShows(std::uint64_t space);
    /// Something changed in the window manager.
    void tell(WorkspaceEvent event = WorkspaceEvent::activeSpaceDidChange);

    TemporaryFolder folder;
    async::TestLoop loop;
    MemoryDefaultsStore defaults;
    AppSettings settings{defaults};
    Platform platform;
    RecordingExecutor executor;
    ScriptedProvider* provider = nullptr;
    /// How often a quick probe was asked for.
    int probes = 0;
    ScriptedWorkspace* workspace = nullptr;
    ScriptedScreens* screens = nullptr;
    ScriptedActivator* activator = nullptr;
    RecordingPublisher* publisher = nullptr;
    std::vector<std::string> logged;
    std::vector<Notice> notices;

private:
    LogSink previousSink_;
    std::unique_ptr<AppState> state_;
    async::Subscription listening_;
};

} // namespace lumnara::testing
