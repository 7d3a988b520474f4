#pragma once

#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/async/Timer.h"
#include "core/platform/linux/Environment.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

struct sd_bus;
struct sd_bus_message;

namespace lumnara {

/// A member of an object that a service has on a bus.
struct BusMember {
    std::string service;
    std::string path;
    std::string interface;
    std::string member;
    /// Whether the bus may start the service for a call when it doesn't run.
    bool startsService = false;
};

/// A connection to a D-Bus. It never waits: what is sent goes out and what comes in is handed over from the
/// loop, which runs on real time. A machine without a bus is normal. Main thread; the loop outlives it.
///
/// Messages are sd-bus's own (sd_bus_message_append, sd_bus_message_read), so that whoever knows what stands
/// in them includes <systemd/sd-bus.h> in its .cpp file.
class Bus {
public:
    /// The bus of the machine, or of the user's session, where the environment says that it is or else at
    /// its usual place; null when there is none.
    static std::shared_ptr<Bus> system(async::Loop& loop, const Environment& environment);
    static std::shared_ptr<Bus> session(async::Loop& loop, const Environment& environment);
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;
    ~Bus();

    using Write = std::function<void(sd_bus_message& message)>;
    /// Null stands for a call that failed, or that nobody answered in time.
    using Answer = std::function<void(sd_bus_message* reply)>;
    using Handler = std::function<void(sd_bus_message& message)>;
    static constexpr double patience = 5.0; ///< seconds

    /// Ends what it stands for when it goes, also from inside its own callback. It may outlive the bus.
    class Slot {
    public:
        virtual ~Slot() = default;
    };

    /// Calls a method; `write`, unless empty, appends its arguments. The answer comes from the loop, once,
    /// unless the slot or the bus goes before.
    [[nodiscard]] std::unique_ptr<Slot> call(const BusMember& method, const Write& write, Answer onAnswer);
    /// Hears the signals that fit a match rule ("type='signal',member='Lock'"), until the slot goes.
    [[nodiscard]] std::unique_ptr<Slot> listen(const std::string& rule, Handler onSignal);

    /// False once the bus has gone; it doesn't come back.
    bool isOpen() const { return watch_ != nullptr; }
    async::Signal<> lost;

private:
    struct Close {
        void operator()(sd_bus* bus) const;
    };
    class LiveSlot;

    static std::shared_ptr<Bus> open(async::Loop& loop, const std::string& address);
    Bus(async::Loop& loop, std::unique_ptr<sd_bus, Close> bus, int fd);
    void process();
    void wakeInTime();

    async::Loop& loop_;
    std::unique_ptr<sd_bus, Close> bus_;
    const int fd_; ///< our own, since sd-bus closes its one whenever the bus goes
    std::unique_ptr<async::FdWatch> watch_;
    std::optional<async::Delayed> timer_;
    std::weak_ptr<Bus> self_;
};

} // namespace lumnara
