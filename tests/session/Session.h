#pragma once

#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

struct xcb_connection_t;

namespace lumnara::testing {

using Variables = std::map<std::string, std::string>;

/// The path of the program as it was built.
std::string programUnderTest();

/// Looks at real state until it is so; false when the seconds have passed.
bool waitUntil(const std::function<bool()>& condition, double seconds = 10);

/// A child process in a process group of its own. It ends with this object, and so does what it has started;
/// it dies with the test program, however that ends.
class Child {
public:
    struct Options {
        Variables environment;
        /// Where standard output and error go; inherited when empty.
        std::string logFile = {};
        /// The descriptor that the child sees under its own number; -1 for none.
        int keepOpen = -1;
        /// Run as this user and group, when the test itself runs as root.
        std::optional<uid_t> unprivileged = std::nullopt;
    };
    Child(std::vector<std::string> arguments, const Options& options);
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child();

    pid_t pid() const { return pid_; }
    bool running() const;
    void send(int signal) const;
    /// The exit status, 128 + n after signal n; nothing when it still runs after the seconds.
    std::optional<int> waitForExit(double seconds = 10);

private:
    bool groupHasEnded() const;

    pid_t pid_ = -1;
    int pidfd_ = -1;
    std::optional<int> status_;
};

/// What every session has: a folder that holds its HOME, XDG folders and configuration, and an
/// environment for the programs that run inside it.
class Session {
public:
    struct Output {
        int status = 0;
        std::string text;
    };

    const Variables& environment() const { return environment_; }
    const std::filesystem::path& folder() const { return folder_.path(); }

    /// Starts a program inside the session; its output goes to "<program>.log" in the folder.
    std::unique_ptr<Child> start(std::vector<std::string> arguments, const Variables& additions = {}) const;
    /// Runs a program inside the session to its end and gives what it printed.
    Output run(std::vector<std::string> arguments, const Variables& additions = {}) const;

protected:
    Session();
    std::string logFile(const std::string& program) const;
    [[noreturn]] void fail(const std::string& what, const std::string& program) const;

    TemporaryFolder folder_;
    Variables environment_;
};

enum class WindowManager { none, i3, openbox, xfwm4 };

/// An X server of its own, 2560x800, with the monitors "L" and "R" side by side, and a window manager.
/// Every constructor and member returns once the change can be seen by any client, or throws.
class XSession : public Session {
public:
    struct Options {
        WindowManager windowManager = WindowManager::none;
        /// openbox and xfwm4: the desktops at the start; openbox names them "one", "two" ...
        int desktops = 4;
        /// Lines added to i3's configuration.
        std::string i3Configuration = {};
    };
    explicit XSession(WindowManager windowManager) : XSession(Options{windowManager}) {}
    explicit XSession(Options options);
    ~XSession();

    const std::string& display() const { return display_; }
    std::string i3Socket() const { return folder() / "i3.sock"; }
    /// For what the helpers below don't offer; the session owns it.
    xcb_connection_t* connection() const { return connection_; }
    std::uint32_t root() const { return root_; }

    /// The pid of the window manager; only while one runs.
    pid_t windowManagerPid() const { return windowManager_->pid(); }
    void killWindowManager(int signal = SIGKILL);
    /// Starts the session's window manager anew, or another; a running one is replaced, which i3 refuses.
    void startWindowManager(std::optional<WindowManager> other = std::nullopt);
    void stopWindowManager() const { windowManager_->send(SIGSTOP); }
    void continueWindowManager() const { windowManager_->send(SIGCONT); }
    void killServer();

    void unplug(const std::string& monitor);
    void plug(const std::string& monitor);

    /// Opens a window with this title and waits until it is mapped; gives its id.
    std::uint32_t openWindow(const std::string& title);
    void closeWindow(std::uint32_t window);

    /// Presses and releases the key that produces the keysym (XK_space), with the modifiers' keys held.
    void pressKey(std::uint32_t keysym, const std::vector<std::uint32_t>& modifiers = {});
    void holdKey(std::uint32_t keysym, bool down);
    /// Waits until no window holds the keyboard for itself: what is typed earlier, on the heels of the key
    /// that closes a surface, still goes there. False when it is held on.
    bool awaitFreeKeyboard() const;
    void movePointer(int x, int y);
    void click(int x, int y, int button = 1);
    /// Takes what stands at the first place to the second, with the left button held.
    void drag(int fromX, int fromY, int toX, int toY);

    /// A property of the root window: its bytes, or its 32-bit items in decimal separated by blanks;
    /// nothing when it isn't there.
    std::optional<std::string> rootProperty(const std::string& name) const;

    /// The colour that the screen shows at a place, as the server's number for it.
    std::uint32_t pixel(int x, int y) const;
    /// Writes the whole screen to a PNG file.
    void screenshot(const std::filesystem::path& file) const;

private:
    std::uint32_t atom(const std::string& name) const;
    bool windowManagerAnswers() const;
    std::optional<std::uint32_t> mapWindow(const std::string& title, double seconds);
    void writeConfiguration(WindowManager kind) const;
    void startBus();
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);

    Options options_;
    std::string display_;
    xcb_connection_t* connection_ = nullptr;
    std::uint32_t root_ = 0;
    std::unique_ptr<Child> server_;
    std::unique_ptr<Child> bus_;
    std::unique_ptr<Child> windowManager_;
};

/// sway without a screen: the outputs "HEADLESS-1" and "HEADLESS-2", 1280x800 side by side. sway refuses
/// to run as root; then it runs as nobody, who owns the folder, and programs inside the session do not.
class SwaySession : public Session {
public:
    explicit SwaySession(std::string configuration = {});
    ~SwaySession();

    std::string socket() const { return folder() / "sway.sock"; }
    pid_t pid() const { return sway_->pid(); }
    void killWindowManager(int signal = SIGKILL);
    void startWindowManager();
    void stopWindowManager() const { sway_->send(SIGSTOP); }
    void continueWindowManager() const { sway_->send(SIGCONT); }
    /// Sends one command ("workspace web") through swaymsg; throws when it fails.
    void command(const std::string& command) const;

private:
    std::unique_ptr<Child> sway_;
};

} // namespace lumnara::testing
