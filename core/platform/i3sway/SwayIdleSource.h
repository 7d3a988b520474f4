#pragma once

#include "core/async/Loop.h"
#include "core/platform/linux/Environment.h"
#include "core/seams/IdleSource.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

struct wl_display;
struct wl_proxy;
struct wl_registry;
struct wl_seat;
struct ext_idle_notifier_v1;
struct ext_idle_notification_v1;
struct org_kde_kwin_idle;
struct org_kde_kwin_idle_timeout;

namespace lumnara {

/// The time since the last input, from the compositor's word that the seat has been idle for a second and
/// that it is no longer, by the protocol ext-idle-notify-v1 or, before sway 1.8, org_kde_kwin_idle. A program
/// that keeps the screen awake, such as one that plays a film, counts as input. It has a connection of its
/// own and never waits for the compositor; before its first answer, without a seat and once it has gone the
/// time can't be told.
class SwayIdleSource : public IdleSource {
public:
    /// Connects to the compositor that the environment names; null where none answers.
    static std::unique_ptr<SwayIdleSource> connect(async::Loop& loop, const Environment& environment);
    SwayIdleSource(const SwayIdleSource&) = delete;
    SwayIdleSource& operator=(const SwayIdleSource&) = delete;
    ~SwayIdleSource() override;

    std::optional<double> secondsSinceInput() override;

private:
    struct Listeners;
    struct Disconnect {
        void operator()(wl_display* display) const;
    };
    struct Destroy {
        void operator()(wl_proxy* proxy) const;
    };

    SwayIdleSource(async::Loop& loop, std::unique_ptr<wl_display, Disconnect> display);
    void read();
    void offer(wl_registry* registry, std::uint32_t name, std::string_view interface);
    void subscribe();
    void setIdle(bool idle);
    template <class T> T* keep(T* proxy) {
        proxies_.emplace_back(reinterpret_cast<wl_proxy*>(proxy));
        return proxy;
    }

    async::Loop& loop_;
    std::unique_ptr<wl_display, Disconnect> display_;
    /// Those below and what was made of them; they go before the connection.
    std::vector<std::unique_ptr<wl_proxy, Destroy>> proxies_;
    wl_seat* seat_ = nullptr;
    ext_idle_notifier_v1* notifier_ = nullptr;
    org_kde_kwin_idle* oldNotifier_ = nullptr;
    bool subscribed_ = false;
    /// While idle: the moment of the last input.
    std::optional<async::Nanos> lastInput_;
    std::unique_ptr<async::FdWatch> watch_;
};

} // namespace lumnara
