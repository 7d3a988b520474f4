#include "core/platform/i3sway/I3Ipc.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace lumnara {

namespace {

/// A connected socket that never blocks, or -1.
int openSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) return -1;
    std::memcpy(address.sun_path, path.data(), path.size());
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) return -1;
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
    ::close(fd);
    return -1;
}

} // namespace

I3Ipc::I3Ipc(async::Loop& loop, Setup setup, Listener& listener)
    : loop_(loop),
      setup_(std::move(setup)),
      listener_(listener),
      retryAfter_(setup_.firstRetry) {
    connect();
}

I3Ipc::~I3Ipc() {
    watch_.reset();
    if (socket_ >= 0) ::close(socket_);
}

bool I3Ipc::accepts(const std::string& socketPath) {
    const int fd = openSocket(socketPath);
    if (fd >= 0) ::close(fd);
    return fd >= 0;
}

void I3Ipc::connect() {
    const auto path = setup_.findSocket();
    socket_ = path ? openSocket(*path) : -1;
    if (socket_ < 0) {
        hung_ = false;
        retryLater();
        return;
    }
    state_ = State::greeting;
    watch_ = loop_.watchReadable(socket_, [this] { readAvailable(); });
    greet();
}

/// Subscribes event by event, since a window manager gives up a list at the first one that it doesn't know.
/// The answer to the last tells that the window manager lives.
void I3Ipc::greet() {
    try {
        for (const std::string& event : setup_.events) {
            const bool last = &event == &setup_.events.back();
            send(IpcType::subscribe, "[\"" + event + "\"]", [this, last](const std::string* reply) {
                if (!reply) return;
                parseOutcome(*reply);
                if (last) greeted();
            });
        }
    } catch (const WindowManagerError&) {
        // Lost again; the next attempt is set.
    }
}

void I3Ipc::greeted() {
    state_ = State::connected;
    hung_ = false;
    listener_.onConnected();
}

void I3Ipc::retryLater() {
    retry_ = std::make_unique<async::Delayed>(loop_, retryAfter_, [this] { connect(); });
    retryAfter_ = std::min(2 * retryAfter_, setup_.longestRetry);
}

void I3Ipc::lose() {
    if (socket_ < 0) return;
    watch_.reset();
    ::close(std::exchange(socket_, -1));
    frames_ = {};
    hung_ = false;
    const bool wasConnected = std::exchange(state_, State::away) == State::connected;
    retryLater();
    for (const Pending& each : std::exchange(pending_, {})) each.onReply(nullptr);
    if (wasConnected) listener_.onLost();
}

void I3Ipc::loseAsHung() {
    lose();
    hung_ = true;
}

WindowManagerError I3Ipc::lost() const {
    return {WindowManagerError::Case::connectionLost, setup_.windowManager};
}

WindowManagerError I3Ipc::hung() const {
    return {WindowManagerError::Case::notAnswering, setup_.windowManager};
}

/// A greeting that is not answered yet is no hindrance: what is sent now is answered after it.
void I3Ipc::checkReachable() const {
    if (hung_) throw hung();
    if (state_ == State::away) throw lost();
}

void I3Ipc::send(IpcType type, std::string_view payload, std::function<void(const std::string*)> onReply) {
    const std::string frame = encodeFrame(type, payload);
    const ssize_t sent = ::send(socket_, frame.data(), frame.size(), MSG_NOSIGNAL);
    // The socket takes far more than we ever have on the way: when it doesn't, nobody reads there.
    const bool full = sent >= 0 ? static_cast<std::size_t>(sent) < frame.size() : errno == EAGAIN;
    if (full) {
        loseAsHung();
        throw hung();
    }
    if (sent < 0) {
        lose();
        throw lost();
    }
    pending_.push_back({.type = static_cast<std::uint32_t>(type), .onReply = std::move(onReply)});
}

void I3Ipc::run(std::string_view commands, OnOutcomes onOutcomes) {
    checkReachable();
    send(IpcType::command, commands, [onOutcomes = std::move(onOutcomes)](const std::string* reply) {
        if (!reply) {
            onOutcomes(nullptr);
            return;
        }
        const std::vector<IpcOutcome> outcomes = parseOutcomes(*reply);
        onOutcomes(&outcomes);
    });
}

void I3Ipc::askAhead(IpcType type, std::function<void(const std::string*)> onAnswer) {
    checkReachable();
    send(type, {}, std::move(onAnswer));
}

std::string I3Ipc::request(IpcType type, std::string_view payload, const std::function<void()>& onAnswered) {
    checkReachable();
    std::optional<std::string> answer;
    bool over = false;
    send(type, payload, [&](const std::string* reply) {
        over = true;
        if (!reply) return;
        answer = *reply;
        onAnswered();
    });
    const async::Nanos deadline = loop_.now() + async::wholeNanos(setup_.patience);
    while (!over) {
        if (!waitReadable(deadline)) {
            loseAsHung();
            throw hung();
        }
        readAvailable();
    }
    if (!answer) throw lost();
    retryAfter_ = setup_.firstRetry;
    return std::move(*answer);
}

bool I3Ipc::waitReadable(async::Nanos deadline) const {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - loop_.now()).count();
        if (left <= 0) return false;
        pollfd entry{.fd = socket_, .events = POLLIN, .revents = 0};
        const int ready = ::poll(&entry, 1, static_cast<int>(left));
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

void I3Ipc::readAvailable() {
    std::array<char, 65536> bytes;
    try {
        const ssize_t got = ::recv(socket_, bytes.data(), bytes.size(), 0);
        if (got < 0 && (errno == EAGAIN || errno == EINTR)) return;
        if (got <= 0) {
            lose();
            return;
        }
        frames_.append({bytes.data(), static_cast<std::size_t>(got)});
        while (socket_ >= 0) {
            const auto frame = frames_.next();
            if (!frame) return;
            take(*frame);
        }
    } catch (const IpcProtocolError&) {
        lose();
    }
}

void I3Ipc::take(const IpcFrame& frame) {
    if (frame.isEvent()) {
        listener_.onEvent(frame);
        return;
    }
    if (pending_.empty() || pending_.front().type != frame.type) throw IpcProtocolError("an unasked answer");
    const Pending pending = std::move(pending_.front());
    pending_.pop_front();
    try {
        pending.onReply(&frame.payload);
    } catch (const IpcProtocolError&) {
        pending.onReply(nullptr);
        throw;
    }
}

} // namespace lumnara
