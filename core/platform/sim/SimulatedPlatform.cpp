#include "core/platform/mac/server/DisplayHelpers.h"
#include "core/platform/mac/server/PrivateAPI.h"
#include "core/platform/sim/SimulatedAccessibility.h"

#include <utility>

// The other seams over a simulated Mac.
namespace lumnara {

namespace {

class SimulatedScreens : public Screens {
public:
    explicit SimulatedScreens(SimulatedMac& mac) : mac_(mac) {}
    std::vector<ScreenInfo> screens() override { return mac_.layout().screens(); }
    std::optional<Point> pointer() override { return mac_.pointer().position(); }
    std::optional<std::string> displayUnderPointer() override {
        const auto screen = DisplayHelpers::displayUnderCursor(*this);
        return screen ? std::optional(DisplayHelpers::uuid(*screen)) : std::nullopt;
    }

private:
    SimulatedMac& mac_;
};

class SimulatedWorkspace : public Workspace {
public:
    explicit SimulatedWorkspace(SimulatedMac& mac) : mac_(mac) {}
    async::Subscription observe(std::function<void(WorkspaceEvent)> onEvent) override {
        return mac_.happened.subscribe(std::move(onEvent));
    }
    std::optional<RunningApp> frontmostApplication() override {
        const auto active = mac_.apps().active();
        const auto running = active ? runningApplication(*active) : std::nullopt;
        return running ? std::optional(running->app) : std::nullopt;
    }
    std::vector<RunningApplication> runningApplications() override { return mac_.apps().running(); }
    void activate(std::int32_t pid, ActivationOptions options) override {
        mac_.apps().activateOther(mac_.ownPid(), pid, options);
    }
    bool openFile(const std::string& path) override { return mac_.openFile(path); }

private:
    SimulatedMac& mac_;
};

class SimulatedEventServices : public EventServices {
public:
    explicit SimulatedEventServices(SimulatedMac& mac) : mac_(mac) {}
    void post(const SyntheticEvent& event, EventTap tap) override { mac_.post(event, tap); }
    std::optional<Point> pointer() override { return mac_.pointer().position(); }
    void warpPointer(Point to) override { mac_.warpPointer(to); }

private:
    SimulatedMac& mac_;
};

class SimulatedSessionOfUser : public MacSession {
public:
    explicit SimulatedSessionOfUser(const SimulatedMac& mac) : mac_(mac) {}
    std::optional<PropertyDictionary> currentDictionary() override { return mac_.sessionDictionary(); }

private:
    const SimulatedMac& mac_;
};

class SimulatedPreferences : public Preferences {
public:
    explicit SimulatedPreferences(const SimulatedMac& mac) : mac_(mac) {}
    std::optional<PropertyValue> value(std::string_view key, std::string_view application) override {
        return mac_.preference(key, application);
    }

private:
    const SimulatedMac& mac_;
};

class SimulatedOwnWindow : public OwnWindow {
public:
    SimulatedOwnWindow(SimulatedMac& mac, const WindowForm& form)
        : mac_(mac),
          number_(mac.windows().add({.ownerPid = mac.ownPid(),
                                     .ownerName = "Lumnara",
                                     .layer = form.level,
                                     .alpha = form.alpha,
                                     .bounds = form.contentRect})),
          isDeferred_(form.isDeferred) {}
    ~SimulatedOwnWindow() override { mac_.windows().remove(number_); }

    std::int64_t windowNumber() override {
        return isDeferred_ || !mac_.windows().find(number_) ? 0 : static_cast<std::int64_t>(number_);
    }
    void orderFrontRegardless() override {
        isDeferred_ = false;
        mac_.windows().orderFront(number_);
    }
    void makeKeyAndOrderFront() override {
        isDeferred_ = false;
        mac_.apps().makeKey(number_);
    }
    void orderOut() override { mac_.windows().orderOut(number_); }
    void close() override { mac_.windows().remove(number_); }

private:
    SimulatedMac& mac_;
    WindowNumber number_;
    bool isDeferred_;
};

class SimulatedOwnApplication : public OwnApplication {
public:
    explicit SimulatedOwnApplication(SimulatedMac& mac) : mac_(mac) {}
    std::int32_t pid() override { return mac_.ownPid(); }
    std::unique_ptr<OwnWindow> makeWindow(const WindowForm& form) override {
        return std::make_unique<SimulatedOwnWindow>(mac_, form);
    }
    void activateIgnoringOtherApps() override { mac_.apps().activateSelf(mac_.ownPid()); }
    bool mustYieldActivation() override { return mac_.apps().mustYield(); }
    void yieldActivation(std::int32_t toPid) override { mac_.apps().yield(mac_.ownPid(), toPid); }

private:
    SimulatedMac& mac_;
};

} // namespace

MacSeams SimulatedMac::seams() {
    return {.windowServer = std::make_unique<PrivateAPI>(calls()),
            .screens = std::make_unique<SimulatedScreens>(*this),
            .workspace = std::make_unique<SimulatedWorkspace>(*this),
            .eventServices = std::make_unique<SimulatedEventServices>(*this),
            .accessibility = std::make_unique<SimulatedAccessibility>(*this),
            .ownApplication = std::make_unique<SimulatedOwnApplication>(*this),
            .session = std::make_unique<SimulatedSessionOfUser>(*this),
            .preferences = std::make_unique<SimulatedPreferences>(*this)};
}

Platform SimulatedMac::platform() {
    Platform platform = macPlatform(loop_, seams());
    platform.name = "simulated";
    return platform;
}

} // namespace lumnara
