#pragma once

#include "core/async/Loop.h"
#include "core/async/Timer.h"
#include "core/platform/i3sway/IpcFrames.h"
#include "core/platform/i3sway/IpcReplies.h"
#include "core/platform/linux/WindowManagerError.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// A connection to i3 or sway that is held, watched and made again by itself.
///
/// One socket carries requests and events, so that they come in the order in which the window manager did
/// things: a reading holds exactly what the events before it told. Whoever asks waits for a bounded time,
/// once: a window manager that didn't answer in time is taken for hung, and calls fail at once until it
/// greets again. Main thread.
class I3Ipc {
public:
    struct Setup {
        /// The name in failures ("i3").
        std::string windowManager;
        /// Where its socket is now, or nothing; asked before each attempt.
        std::function<std::optional<std::string>()> findSocket;
        /// The events to subscribe to; one that the window manager doesn't know is done without.
        std::vector<std::string> events;
        /// The longest wait for an answer, in seconds.
        double patience = 1.0;
        /// Seconds before the second attempt to connect; doubled from attempt to attempt up to the longest.
        double firstRetry = 0.05;
        double longestRetry = 2.0;
    };

    /// What the owner hears of the connection. Called in the midst of reading, also inside request():
    /// for book-keeping only, not for asking.
    struct Listener {
        virtual ~Listener() = default;
        /// The connection stands, to a window manager that may be another one than before.
        virtual void onConnected() = 0;
        virtual void onLost() = 0;
        /// An event. May throw IpcProtocolError, which ends the connection.
        virtual void onEvent(const IpcFrame& event) = 0;
    };

    /// Tries to connect at once. The listener has to outlive the connection.
    I3Ipc(async::Loop& loop, Setup setup, Listener& listener);
    I3Ipc(const I3Ipc&) = delete;
    ~I3Ipc();

    /// Whether somebody listens at a socket.
    static bool accepts(const std::string& socketPath);

    const std::string& windowManager() const { return setup_.windowManager; }
    bool connected() const { return state_ == State::connected; }

    /// Asks and waits for the answer, which `read` turns into a value. Throws WindowManagerError; an answer
    /// that `read` refuses with IpcProtocolError ends the connection. `onAnswered` is called like the
    /// listener, between the events of what happened before the answer and those of what happened since.
    template <class T>
    T ask(
        IpcType type, std::string_view payload, T (*read)(std::string_view),
        const std::function<void()>& onAnswered = [] {}) {
        const std::string answer = request(type, payload, onAnswered);
        try {
            return read(answer);
        } catch (const IpcProtocolError&) {
            lose();
            throw lost();
        }
    }

    /// Takes in what has reached us, without asking: the listener has heard of whatever happened before
    /// something that another program has told us since.
    void takeArrived() {
        if (socket_ >= 0) readAvailable();
    }

    /// The outcomes of a command that is sent without waiting; null when the connection went before they
    /// came. Called like the listener.
    using OnOutcomes = std::function<void(const std::vector<IpcOutcome>*)>;
    /// Sends commands. Throws WindowManagerError when they can't be sent; `onOutcomes` is then not called.
    void run(std::string_view commands, OnOutcomes onOutcomes);
    /// Asks without waiting. `onAnswer` may throw IpcProtocolError, which ends the connection; it gets null
    /// when the connection went before the answer came. Called like the listener. Throws like run().
    void askAhead(IpcType type, std::function<void(const std::string* answer)> onAnswer);

private:
    enum class State {
        away,     ///< no socket; another attempt is due
        greeting, ///< a socket that has not answered yet
        connected,
    };
    /// A request on its way; null is told when the connection is lost. Throws IpcProtocolError.
    struct Pending {
        std::uint32_t type;
        std::function<void(const std::string*)> onReply;
    };

    void connect();
    void greet();
    void greeted();
    void retryLater();
    void lose();
    void loseAsHung();
    WindowManagerError lost() const;
    WindowManagerError hung() const;
    void checkReachable() const;

    std::string request(IpcType type, std::string_view payload, const std::function<void()>& onAnswered);
    void send(IpcType type, std::string_view payload, std::function<void(const std::string*)> onReply);
    bool waitReadable(async::Nanos deadline) const;
    void readAvailable();
    void take(const IpcFrame& frame);

    async::Loop& loop_;
    Setup setup_;
    Listener& listener_;
    State state_ = State::away;
    /// It let us wait in vain and has not answered since.
    bool hung_ = false;
    int socket_ = -1;
    FrameReader frames_;
    std::deque<Pending> pending_;
    std::unique_ptr<async::FdWatch> watch_;
    double retryAfter_;
    std::unique_ptr<async::Delayed> retry_;
};

} // namespace lumnara
