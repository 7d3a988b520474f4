#pragma once

#include "core/async/Signal.h"
#include "core/async/Timer.h"
#include "core/platform/sim/SimulatedStage.h"
#include "core/platform/sim/SimulatedWindows.h"
#include "core/seams/Workspace.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// The running applications, which of them is active and where that leads: an application whose key window
/// is on a Space that isn't shown takes its display there, unless it has another window in view.
class SimulatedApps {
public:
    SimulatedApps(async::Loop& loop, SimulatedRandom& random, SimulatedStage& stage, SimulatedLayout& layout,
                  SimulatedWindows& windows, int systemVersion);

    std::int32_t launch(std::string name, std::optional<std::string> bundleID, ActivationPolicy policy);
    /// Its windows go along, and its full-screen Spaces stay for whoever removes them.
    void quit(std::int32_t pid);
    const std::vector<RunningApplication>& running() const { return running_; }
    const RunningApplication* find(std::int32_t pid) const;

    /// The active application; nothing before the first activation.
    std::optional<std::int32_t> active() const { return active_; }
    /// Where the active menu bar is.
    std::string menuBarDisplay() const;

    /// An application asks for itself; a newer request takes the place of one that isn't carried out yet.
    void activateSelf(std::int32_t pid);
    /// `by` asks for another application. Without insistence it has to be active, or about to be, and to
    /// have yielded to it, from macOS 14 on.
    void activateOther(std::int32_t by, std::int32_t pid, ActivationOptions options);
    bool mustYield() const { return systemVersion_ >= 14; }
    void yield(std::int32_t by, std::int32_t to) { yielded_[by] = to; }
    /// The window becomes its application's key window; if that one is active or about to be, it leads to
    /// the window's Space whatever else is in view.
    void makeKey(WindowNumber window);

private:
    struct Request {
        std::int32_t pid = 0;
        /// The window that was made key for it, which leads even when another is in view.
        WindowNumber window = 0;
    };
    void ask(Request request);
    void carryOut();
    const SimulatedWindow* windowToShow(const Request& request) const;
    const SimulatedWindow* frontWindowInView(std::int32_t pid) const;
    void focusWhatIsShown(SpaceID space);
    /// `number` may be 0, for an application without a window to focus.
    void focus(std::int32_t pid, WindowNumber number);

    async::Loop& loop_;
    SimulatedRandom& random_;
    SimulatedStage& stage_;
    SimulatedLayout& layout_;
    SimulatedWindows& windows_;
    int systemVersion_;
    std::vector<RunningApplication> running_;
    std::int32_t lastPid_ = 400;
    std::map<std::int32_t, WindowNumber> keyWindows_;
    std::map<std::int32_t, std::int32_t> yielded_;
    std::optional<std::int32_t> active_;
    std::string menuBarDisplay_;
    std::optional<Request> requested_;
    std::unique_ptr<async::Delayed> timer_;
    /// The window that leads its display to a Space, where it gets the focus.
    std::optional<Request> underWay_;
    async::Subscription shown_;
};

} // namespace lumnara
