#pragma once

#include "core/async/PollLoop.h"
#include "core/platform/i3sway/WmIpcPlatform.h"
#include "core/platform/x11/X11Connection.h"
#include "core/platform/x11/X11Screens.h"
#include "tests/session/IpcRelay.h"
#include "tests/session/Session.h"
#include "tests/session/WholeShell.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace lumnara::testing {

/// The whole program on an i3 with two monitors. The time since the last input is left out: the clock has it
/// asked for.
class I3Shell {
public:
    enum class Counting { off, on };
    /// What the program costs the window manager and the X server.
    struct Costs {
        int requests = 0;
        int roundTrips = 0;
        bool operator==(const Costs&) const = default;
    };

    explicit I3Shell(Counting counting = Counting::off) {
        if (counting == Counting::on) relay_.emplace(folder / "relay.sock", session.i3Socket());
        platform_ =
            makePlatform(counting == Counting::on ? (folder / "relay.sock").string() : session.i3Socket());
        shell_.emplace(loop, platform_, folder.path());
        settle();
    }

    WholeShell& shell() { return *shell_; }
    AppState& state() { return shell_->state; }

    /// With counting.
    template <class Act> Costs costsOf(const Act& act) const {
        const Costs before = total();
        act();
        const Costs after = total();
        return {after.requests - before.requests, after.roundTrips - before.roundTrips};
    }
    /// Somebody else asks i3 for a workspace; returns when the program has shown and recorded it.
    void otherShows(const std::string& workspace) {
        const int shown = shell_->cards;
        session.run({"i3-msg", "-q", "-s", session.i3Socket(), "workspace", workspace});
        if (!loop.runUntil([&] { return shell_->cards > shown; }, 5))
            throw std::runtime_error("no card for workspace " + workspace);
        settle();
    }
    /// Longer than a sample waits to be written.
    void settle() {
        loop.runUntil([] { return false; }, 0.4);
    }

    XSession session{WindowManager::i3};
    TemporaryFolder folder;
    async::PollLoop loop;

private:
    Costs total() const { return {relay_->requests(), static_cast<int>(x11_->roundTrips())}; }
    Platform makePlatform(const std::string& socket) {
        auto screens = std::make_unique<X11Screens>(x11_);
        const auto identify = [&screens = *screens](const std::string& connector) {
            return screens.identity(connector);
        };
        return i3Platform(
            loop, Environment(session.environment()), folder.path(), std::move(screens),
            [socket] { return socket; }, identify);
    }

    std::shared_ptr<X11Connection> x11_ = X11Connection::open(loop, session.display());
    std::optional<IpcRelay> relay_;
    Platform platform_;
    std::optional<WholeShell> shell_;
};

} // namespace lumnara::testing
