#include "core/platform/linux/Bus.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <utility>

namespace lumnara {

namespace {

/// What could not be written at once is tried again so many seconds later.
constexpr double writeAgain = 0.02;

struct UnrefMessage {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

sd_bus_message* messageUnlessError(sd_bus_message* message) {
    return sd_bus_message_is_method_error(message, nullptr) ? nullptr : message;
}

} // namespace

void Bus::Close::operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }

class Bus::LiveSlot : public Slot {
public:
    explicit LiveSlot(Handler handler) : handler_(std::make_shared<const Handler>(std::move(handler))) {}
    LiveSlot(const LiveSlot&) = delete;
    LiveSlot& operator=(const LiveSlot&) = delete;
    ~LiveSlot() override { sd_bus_slot_unref(slot); }

    static int receive(sd_bus_message* message, void* data, sd_bus_error*) {
        const auto handler = static_cast<LiveSlot*>(data)->handler_; // outlives a slot that goes in the call
        (*handler)(*message);
        return 0;
    }

    sd_bus_slot* slot = nullptr;
    /// Tells of a call that could not even be sent.
    std::optional<async::Delayed> failure;

private:
    std::shared_ptr<const Handler> handler_;
};

std::shared_ptr<Bus> Bus::system(async::Loop& loop, const Environment& environment) {
    return open(loop,
                environment.get("DBUS_SYSTEM_BUS_ADDRESS").value_or("unix:path=/run/dbus/system_bus_socket"));
}

std::shared_ptr<Bus> Bus::session(async::Loop& loop, const Environment& environment) {
    auto address = environment.get("DBUS_SESSION_BUS_ADDRESS");
    if (!address) {
        const auto folder = environment.get("XDG_RUNTIME_DIR");
        if (!folder) return nullptr;
        address = "unix:path=" + *folder + "/bus";
    }
    return open(loop, *address);
}

std::shared_ptr<Bus> Bus::open(async::Loop& loop, const std::string& address) {
    sd_bus* made = nullptr;
    if (sd_bus_new(&made) < 0) return nullptr;
    std::unique_ptr<sd_bus, Close> bus(made);
    if (sd_bus_set_address(bus.get(), address.c_str()) < 0 || sd_bus_set_bus_client(bus.get(), 1) < 0 ||
        sd_bus_start(bus.get()) < 0)
        return nullptr;
    const int fd = ::fcntl(sd_bus_get_fd(bus.get()), F_DUPFD_CLOEXEC, 0);
    if (fd < 0) return nullptr;
    std::shared_ptr<Bus> opened(new Bus(loop, std::move(bus), fd));
    opened->self_ = opened;
    opened->wakeInTime();
    return opened;
}

Bus::Bus(async::Loop& loop, std::unique_ptr<sd_bus, Close> bus, int fd)
    : loop_(loop),
      bus_(std::move(bus)),
      fd_(fd),
      watch_(loop.watchReadable(fd, [this] { process(); })) {}

Bus::~Bus() {
    watch_.reset();
    ::close(fd_);
}

std::unique_ptr<Bus::Slot> Bus::call(const BusMember& method, const Write& write, Answer onAnswer) {
    auto slot = std::make_unique<LiveSlot>(
        [onAnswer](sd_bus_message& reply) { onAnswer(messageUnlessError(&reply)); });
    sd_bus_message* made = nullptr;
    int status =
        sd_bus_message_new_method_call(bus_.get(), &made, method.service.c_str(), method.path.c_str(),
                                       method.interface.c_str(), method.member.c_str());
    const std::unique_ptr<sd_bus_message, UnrefMessage> message(made);
    if (status >= 0) {
        sd_bus_message_set_auto_start(message.get(), method.startsService ? 1 : 0);
        if (write) write(*message);
        status = sd_bus_call_async(bus_.get(), &slot->slot, message.get(), &LiveSlot::receive, slot.get(),
                                   static_cast<std::uint64_t>(patience * 1e6));
    }
    if (status < 0) slot->failure.emplace(loop_, 0, [onAnswer = std::move(onAnswer)] { onAnswer(nullptr); });
    wakeInTime();
    return slot;
}

std::unique_ptr<Bus::Slot> Bus::listen(const std::string& rule, Handler onSignal) {
    auto slot = std::make_unique<LiveSlot>(std::move(onSignal));
    // Told of a rule that the bus refuses, sd-bus would close the connection unless somebody takes the news.
    const auto installed = [](sd_bus_message*, void*, sd_bus_error*) { return 0; };
    sd_bus_add_match_async(bus_.get(), &slot->slot, rule.c_str(), &LiveSlot::receive, installed, slot.get());
    wakeInTime();
    return slot;
}

void Bus::process() {
    const auto self = self_.lock(); // a handler may let the last owner go
    int status = 0;
    do status = sd_bus_process(bus_.get(), nullptr);
    while (status > 0);
    if (status == 0 && sd_bus_is_open(bus_.get()) > 0) return wakeInTime();
    timer_.reset();
    watch_.reset();
    lost.emit();
}

void Bus::wakeInTime() {
    if (!isOpen()) return;
    timer_.reset();
    std::optional<double> seconds;
    std::uint64_t due = 0; // microseconds of the monotonic clock
    if (sd_bus_get_timeout(bus_.get(), &due) > 0 && due != UINT64_MAX) {
        const auto now = std::chrono::duration_cast<std::chrono::microseconds>(loop_.now()).count();
        seconds = std::max(0.0, (static_cast<double>(due) - static_cast<double>(now)) / 1e6);
    }
    const int events = sd_bus_get_events(bus_.get());
    if (events > 0 && (events & POLLOUT) != 0) seconds = std::min(seconds.value_or(writeAgain), writeAgain);
    if (seconds) timer_.emplace(loop_, *seconds, [this] { process(); });
}

} // namespace lumnara
