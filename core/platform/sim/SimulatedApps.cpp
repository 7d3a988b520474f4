#include "core/platform/sim/SimulatedApps.h"

#include <algorithm>
#include <utility>

namespace lumnara {

SimulatedApps::SimulatedApps(async::Loop& loop, SimulatedRandom& random, SimulatedStage& stage,
                             SimulatedLayout& layout, SimulatedWindows& windows, int systemVersion)
    : loop_(loop),
      random_(random),
      stage_(stage),
      layout_(layout),
      windows_(windows),
      systemVersion_(systemVersion),
      shown_(stage.shown.subscribe([this](SpaceID space) { focusWhatIsShown(space); })) {}

std::int32_t SimulatedApps::launch(std::string name, std::optional<std::string> bundleID,
                                   ActivationPolicy policy) {
    running_.push_back({{++lastPid_, std::move(bundleID), std::move(name)}, policy});
    return lastPid_;
}

void SimulatedApps::quit(std::int32_t pid) {
    std::erase_if(running_, [=](const RunningApplication& each) { return each.app.pid == pid; });
    windows_.removeAllOf(pid);
    keyWindows_.erase(pid);
    if (active_ == pid) active_.reset();
}

const RunningApplication* SimulatedApps::find(std::int32_t pid) const {
    const auto found =
        std::ranges::find_if(running_, [=](const RunningApplication& each) { return each.app.pid == pid; });
    return found == running_.end() ? nullptr : &*found;
}

std::string SimulatedApps::menuBarDisplay() const {
    if (menuBarDisplay_.empty() && !layout_.displays().empty()) return layout_.displays().front().uuid;
    return menuBarDisplay_;
}

void SimulatedApps::activateSelf(std::int32_t pid) { ask({pid}); }

void SimulatedApps::activateOther(std::int32_t by, std::int32_t pid, ActivationOptions options) {
    const bool isForemost = active_ == by || (requested_ && requested_->pid == by);
    const auto yielded = yielded_.find(by);
    const bool mayPass = mustYield() ? isForemost && yielded != yielded_.end() && yielded->second == pid
                                     : options == ActivationOptions::ignoringOtherApps || isForemost;
    if (mayPass) ask({pid});
}

void SimulatedApps::makeKey(WindowNumber window) {
    windows_.orderFront(window);
    const SimulatedWindow* found = windows_.find(window);
    if (!found) return;
    keyWindows_[found->ownerPid] = window;
    if (active_ == found->ownerPid || (requested_ && requested_->pid == found->ownerPid))
        ask({found->ownerPid, window});
}

void SimulatedApps::ask(Request request) {
    requested_ = request;
    if (!timer_)
        timer_ = std::make_unique<async::Delayed>(loop_, random_.between(0.005, 0.015), [this] {
            timer_.reset();
            carryOut();
        });
}

void SimulatedApps::carryOut() {
    const auto request = std::exchange(requested_, std::nullopt);
    if (!request || !find(request->pid)) return;
    const SimulatedWindow* window = windowToShow(*request);
    const bool leadsNowhere = !window || !window->isOrderedIn || window->alpha <= 0 ||
                              window->spaces.empty() || windows_.isOnScreen(*window);
    if (leadsNowhere) return focus(request->pid, window ? window->number : 0);
    active_ = request->pid;
    underWay_ = Request{request->pid, window->number};
    stage_.move(window->spaces.front(), random_.between(0.45, 0.75));
}

const SimulatedWindow* SimulatedApps::windowToShow(const Request& request) const {
    if (request.window != 0) return windows_.find(request.window);
    const auto key = keyWindows_.find(request.pid);
    const SimulatedWindow* window = key == keyWindows_.end() ? nullptr : windows_.find(key->second);
    if (window && windows_.isOnScreen(*window)) return window;
    const SimulatedWindow* inView = frontWindowInView(request.pid);
    return inView ? inView : window;
}

const SimulatedWindow* SimulatedApps::frontWindowInView(std::int32_t pid) const {
    for (const SimulatedWindow& window : windows_.all())
        if (window.ownerPid == pid && window.layer == 0 && windows_.isOnScreen(window)) return &window;
    return nullptr;
}

void SimulatedApps::focusWhatIsShown(SpaceID space) {
    const SimulatedDisplay* display = layout_.displayOf(space);
    const SimulatedWindow* leading = underWay_ ? windows_.find(underWay_->window) : nullptr;
    // A landing on another display leaves the one that is under way alone.
    if (leading && !leading->spaces.empty() && layout_.displayOf(leading->spaces.front()) == display) {
        const Request led = *std::exchange(underWay_, std::nullopt);
        if (std::ranges::count(leading->spaces, space) > 0) return focus(led.pid, led.window);
    }
    if (display) menuBarDisplay_ = display->uuid;
    for (const SimulatedWindow& window : windows_.all()) {
        const RunningApplication* owner = find(window.ownerPid);
        const bool isThere =
            window.layer == 0 && windows_.isOnScreen(window) && std::ranges::count(window.spaces, space) > 0;
        if (isThere && owner && owner->policy == ActivationPolicy::regular)
            return focus(window.ownerPid, window.number);
    }
}

void SimulatedApps::focus(std::int32_t pid, WindowNumber number) {
    active_ = pid;
    const SimulatedWindow* window = windows_.find(number);
    if (!window || !window->isOrderedIn) return;
    keyWindows_[pid] = number;
    const SimulatedDisplay* display =
        window->spaces.empty() ? nullptr : layout_.displayOf(window->spaces.front());
    if (display) menuBarDisplay_ = display->uuid;
    windows_.orderFront(number);
}

} // namespace lumnara
