#include "tests/session/Session.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <grp.h>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

namespace lumnara::testing {

namespace {

constexpr uid_t nobody = 65534;

template <class T> using Reply = std::unique_ptr<T, decltype(&std::free)>;
template <class T> Reply<T> owned(T* reply) { return {reply, &std::free}; }

/// The whole of a small file; empty when there is none.
std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void write(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

std::string programOf(const std::vector<std::string>& arguments) {
    return std::filesystem::path(arguments.at(0)).filename();
}

bool accepts(const std::string& socketPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= sizeof address.sun_path) return false;
    std::strcpy(address.sun_path, socketPath.c_str());
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool accepted = ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    ::close(fd);
    return accepted;
}

std::string desktopName(int index) {
    static const std::array names{"one", "two",   "three", "four", "five",
                                  "six", "seven", "eight", "nine", "ten"};
    return names.at(static_cast<std::size_t>(index));
}

std::string openboxConfiguration(int desktops) {
    std::string names;
    for (int i = 0; i < desktops; ++i) names += "<name>" + desktopName(i) + "</name>";
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus>
  <desktops><number>)" +
           std::to_string(desktops) + "</number><firstdesk>1</firstdesk><names>" + names +
           R"(</names><popupTime>0</popupTime></desktops>
  <keyboard>
    <keybind key="A-Tab"><action name="NextWindow"/></keybind>
    <keybind key="A-space"><action name="ShowMenu"><menu>client-menu</menu></action></keybind>
  </keyboard>
</openbox_config>
)";
}

std::string xfwmConfiguration(int desktops) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfwm4" version="1.0"><property name="general" type="empty">
  <property name="workspace_count" type="int" value=")" +
           std::to_string(desktops) + "\"/>\n</property></channel>\n";
}

std::string i3Configuration(const std::string& socket, const std::string& additions) {
    return "# i3 config file (v4)\nipc-socket " + socket +
           "\nmouse_warping none\nfocus_follows_mouse no\nworkspace_auto_back_and_forth no\n" + additions;
}

} // namespace

std::string programUnderTest() { return LUMNARA_PROGRAM; }

bool waitUntil(const std::function<bool()>& condition, double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (Clock::now() > deadline) return false;
        ::poll(nullptr, 0, 2);
    }
    return true;
}

Child::Child(std::vector<std::string> arguments, const Options& options) {
    // Everything that allocates comes before the fork: another thread may hold the heap's lock.
    std::vector<char*> argv;
    for (auto& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    std::vector<std::string> variables;
    for (const auto& [name, value] : options.environment) variables.push_back(name + "=" + value);
    std::vector<char*> envp;
    for (auto& variable : variables) envp.push_back(variable.data());
    envp.push_back(nullptr);
    const pid_t parent = ::getpid();
    ::prctl(PR_SET_CHILD_SUBREAPER, 1); // what a child leaves behind becomes ours to end

    pid_ = ::fork();
    if (pid_ < 0) throw std::runtime_error("fork failed");
    if (pid_ == 0) {
        ::setpgid(0, 0);
        if (options.unprivileged && ::geteuid() == 0 &&
            (::setgroups(0, nullptr) != 0 || ::setgid(*options.unprivileged) != 0 ||
             ::setuid(*options.unprivileged) != 0))
            ::_exit(126);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // after the change of user, which clears it
        if (::getppid() != parent) ::_exit(126);
        if (options.keepOpen >= 0) ::fcntl(options.keepOpen, F_SETFD, 0);
        if (!options.logFile.empty()) {
            const int log = ::open(options.logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
            ::dup2(log, STDOUT_FILENO);
            ::dup2(log, STDERR_FILENO);
        }
        ::execvpe(argv[0], argv.data(), envp.data());
        ::_exit(127);
    }
    ::setpgid(pid_, pid_);
    pidfd_ = static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0));
}

Child::~Child() {
    send(SIGCONT);
    send(SIGTERM);
    if (!waitForExit(3)) {
        send(SIGKILL);
        waitForExit(3);
    }
    // What it has started may still write into the session's folder. As long as there is a child of ours in
    // the group, the group's number can't belong to anybody else.
    if (!groupHasEnded()) ::kill(-pid_, SIGTERM);
    if (!waitUntil([this] { return groupHasEnded(); }, 3)) {
        ::kill(-pid_, SIGKILL);
        waitUntil([this] { return groupHasEnded(); }, 3);
    }
    ::close(pidfd_);
}

bool Child::groupHasEnded() const {
    pid_t ended = 0;
    while ((ended = ::waitpid(-pid_, nullptr, WNOHANG)) > 0) {
    }
    return ended < 0;
}

bool Child::running() const {
    pollfd end{pidfd_, POLLIN, 0};
    return !status_ && ::poll(&end, 1, 0) == 0;
}

void Child::send(int signal) const {
    if (!status_) ::kill(-pid_, signal);
}

std::optional<int> Child::waitForExit(double seconds) {
    if (status_) return status_;
    pollfd end{pidfd_, POLLIN, 0};
    int status = 0;
    if (::poll(&end, 1, static_cast<int>(seconds * 1000)) != 1 || ::waitpid(pid_, &status, 0) != pid_)
        return std::nullopt;
    status_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return status_;
}

Session::Session() {
    for (const char* name : {"PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"})
        if (const char* value = std::getenv(name)) environment_[name] = value;
    environment_["LANG"] = "C.UTF-8";
    environment_["HOME"] = folder();
    // No bus unless a session brings its own: without an address libraries start one that nobody ends.
    environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (folder() / "no-bus").string();
    for (const auto& [name, below] : std::map<std::string, std::string>{{"XDG_RUNTIME_DIR", "run"},
                                                                        {"XDG_CONFIG_HOME", "config"},
                                                                        {"XDG_DATA_HOME", "data"},
                                                                        {"XDG_STATE_HOME", "state"},
                                                                        {"XDG_CACHE_HOME", "cache"}}) {
        environment_[name] = folder() / below;
        std::filesystem::create_directory(folder() / below);
        std::filesystem::permissions(folder() / below, std::filesystem::perms::owner_all);
    }
}

std::string Session::logFile(const std::string& program) const { return folder() / (program + ".log"); }

void Session::fail(const std::string& what, const std::string& program) const {
    throw std::runtime_error(what + "\n" + contents(logFile(program)));
}

std::unique_ptr<Child> Session::start(std::vector<std::string> arguments, const Variables& additions) const {
    Child::Options options{.environment = additions, .logFile = logFile(programOf(arguments))};
    options.environment.insert(environment_.begin(), environment_.end());
    return std::make_unique<Child>(std::move(arguments), options);
}

Session::Output Session::run(std::vector<std::string> arguments, const Variables& additions) const {
    const std::string program = programOf(arguments);
    std::filesystem::remove(logFile(program));
    const auto child = start(std::move(arguments), additions);
    const auto status = child->waitForExit(20);
    if (!status) fail(program + " doesn't end", program);
    return {*status, contents(logFile(program))};
}

XSession::XSession(Options options) : options_(std::move(options)) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
    server_ = std::make_unique<Child>(
        std::vector<std::string>{"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0", "2560x800x24",
                                 "-nolisten", "tcp", "-noreset"},
        Child::Options{.environment = environment_, .logFile = logFile("Xvfb"), .keepOpen = ends[1]});
    ::close(ends[1]);
    std::string number;
    pollfd told{ends[0], POLLIN, 0};
    for (char c = 0; c != '\n' && ::poll(&told, 1, 10'000) == 1 && ::read(ends[0], &c, 1) == 1;) number += c;
    ::close(ends[0]);
    if (number.empty() || number.back() != '\n') fail("Xvfb doesn't start", "Xvfb");
    number.pop_back();
    display_ = ":" + number;
    environment_["DISPLAY"] = display_;

    connection_ = xcb_connect(display_.c_str(), nullptr);
    if (xcb_connection_has_error(connection_)) fail("no connection to " + display_, "Xvfb");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    plug("L");
    plug("R");
    movePointer(100, 100); // on L, where i3 then starts
    if (options_.windowManager != WindowManager::none) startWindowManager();
}

XSession::~XSession() {
    windowManager_.reset();
    bus_.reset();
    xcb_disconnect(connection_);
}

void XSession::startBus() {
    const std::string address = "unix:path=" + (folder() / "bus").string();
    environment_["DBUS_SESSION_BUS_ADDRESS"] = address;
    bus_ = start({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address});
    if (!waitUntil([this] { return accepts(folder() / "bus"); }))
        fail("dbus-daemon doesn't start", "dbus-daemon");
}

void XSession::writeConfiguration(WindowManager kind) const {
    if (kind == WindowManager::openbox)
        write(folder() / "openbox.xml", openboxConfiguration(options_.desktops));
    if (kind == WindowManager::xfwm4)
        write(folder() / "config/xfce4/xfconf/xfce-perchannel-xml/xfwm4.xml",
              xfwmConfiguration(options_.desktops));
    if (kind == WindowManager::i3)
        write(folder() / "i3.conf", i3Configuration(i3Socket(), options_.i3Configuration));
}

void XSession::startWindowManager(std::optional<WindowManager> other) {
    if (other) options_.windowManager = *other;
    const WindowManager kind = options_.windowManager;
    if (kind == WindowManager::none) throw std::logic_error("no window manager chosen");
    writeConfiguration(kind);
    if (kind == WindowManager::xfwm4 && !bus_) startBus();
    std::vector<std::string> arguments;
    if (kind == WindowManager::i3) arguments = {"i3", "-c", folder() / "i3.conf"};
    if (kind == WindowManager::openbox)
        arguments = {"openbox", "--replace", "--sm-disable", "--config-file", folder() / "openbox.xml"};
    if (kind == WindowManager::xfwm4) arguments = {"xfwm4", "--replace", "--compositor=off"};

    auto former = std::move(windowManager_);
    windowManager_ = start(arguments);
    // A replaced window manager has to be gone before the properties can be the new one's.
    if (former && !former->waitForExit()) fail("not replaced by " + arguments[0], arguments[0]);
    const auto answers = [&] {
        return !windowManager_->running() ||
               (windowManagerAnswers() && (kind != WindowManager::i3 || accepts(i3Socket())));
    };
    if (!waitUntil(answers, 30) || !windowManager_->running())
        fail(arguments[0] + " doesn't start", arguments[0]);
    // Requests that arrive while a window manager starts may be lost; one that manages windows is through.
    for (double seconds = 0.2; seconds < 10; seconds *= 2) {
        if (const auto probe = mapWindow("probe", seconds)) return closeWindow(*probe);
    }
    fail(arguments[0] + " doesn't manage windows", arguments[0]);
}

void XSession::killWindowManager(int signal) {
    windowManager_->send(signal);
    if (!windowManager_->waitForExit()) throw std::runtime_error("the window manager doesn't end");
    windowManager_.reset();
}

void XSession::killServer() {
    server_->send(SIGKILL);
    server_->waitForExit();
}

std::uint32_t XSession::atom(const std::string& name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

std::optional<std::string> XSession::rootProperty(const std::string& name) const {
    const auto cookie = xcb_get_property(connection_, 0, root_, atom(name), XCB_ATOM_ANY, 0, 1 << 16);
    const auto reply = owned(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    const auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    const auto* bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
    if (reply->format != 32) return std::string(bytes, length);
    std::string text;
    for (std::size_t i = 0; i + 4 <= length; i += 4) {
        std::uint32_t item = 0;
        std::memcpy(&item, bytes + i, 4);
        text += (text.empty() ? "" : " ") + std::to_string(item);
    }
    return text;
}

bool XSession::windowManagerAnswers() const {
    const auto check = rootProperty("_NET_SUPPORTING_WM_CHECK");
    if (!check || !rootProperty("_NET_NUMBER_OF_DESKTOPS") || !rootProperty("_NET_CURRENT_DESKTOP"))
        return false;
    // A window manager that was killed leaves the root's property behind, and its window not.
    const auto cookie = xcb_get_property(connection_, 0, static_cast<xcb_window_t>(std::stoul(*check)),
                                         atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1);
    const auto reply = owned(xcb_get_property_reply(connection_, cookie, nullptr));
    return reply && xcb_get_property_value_length(reply.get()) == 4;
}

void XSession::plug(const std::string& monitor) {
    const std::string place = "1280/300x800/200+" + std::string(monitor == "R" ? "1280" : "0") + "+0";
    // The one output of the server can belong to one monitor only.
    const std::string output = monitor == "L" ? "screen" : "none";
    if (run({"xrandr", "--setmonitor", monitor, place, output}).status != 0) fail("not plugged", "xrandr");
}

void XSession::unplug(const std::string& monitor) {
    if (run({"xrandr", "--delmonitor", monitor}).status != 0) fail("not unplugged", "xrandr");
}

std::optional<std::uint32_t> XSession::mapWindow(const std::string& title, double seconds) {
    const xcb_window_t window = xcb_generate_id(connection_);
    // Nobody draws the window: without a ground it would go on showing what covered it.
    const std::uint32_t ground = 0x303840;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 50, 50, 300, 200, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &ground);
    const auto length = static_cast<std::uint32_t>(title.size());
    for (const char* name : {"WM_NAME", "_NET_WM_NAME"})
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), atom("UTF8_STRING"), 8,
                            length, title.data());
    const std::string instanceAndClass = std::string("window\0", 7) + title + '\0';
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(instanceAndClass.size()), instanceAndClass.data());
    xcb_map_window(connection_, window);
    const auto mapped = [&] {
        const auto cookie = xcb_get_window_attributes(connection_, window);
        const auto reply = owned(xcb_get_window_attributes_reply(connection_, cookie, nullptr));
        return reply && reply->map_state != XCB_MAP_STATE_UNMAPPED;
    };
    if (waitUntil(mapped, seconds)) return window;
    closeWindow(window);
    return std::nullopt;
}

std::uint32_t XSession::openWindow(const std::string& title) {
    const auto window = mapWindow(title, 10);
    if (!window) throw std::runtime_error("the window \"" + title + "\" isn't mapped");
    return *window;
}

void XSession::closeWindow(std::uint32_t window) {
    free(xcb_request_check(connection_, xcb_destroy_window_checked(connection_, window)));
}

void XSession::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
    const auto refused = owned(xcb_request_check(
        connection_,
        xcb_test_fake_input_checked(connection_, type, detail, XCB_CURRENT_TIME, root_,
                                    static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0)));
    if (refused) throw std::runtime_error("the X server refuses synthetic input");
}

void XSession::holdKey(std::uint32_t keysym, bool down) {
    const std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> symbols(
        xcb_key_symbols_alloc(connection_), &xcb_key_symbols_free);
    const auto codes = owned(xcb_key_symbols_get_keycode(symbols.get(), keysym));
    if (!codes || codes.get()[0] == XCB_NO_SYMBOL) throw std::runtime_error("no key gives this keysym");
    fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, codes.get()[0]);
}

void XSession::pressKey(std::uint32_t keysym, const std::vector<std::uint32_t>& modifiers) {
    for (const auto modifier : modifiers) holdKey(modifier, true);
    holdKey(keysym, true);
    holdKey(keysym, false);
    for (auto modifier = modifiers.rbegin(); modifier != modifiers.rend(); ++modifier)
        holdKey(*modifier, false);
}

bool XSession::awaitFreeKeyboard() const {
    return waitUntil([this] {
        const auto grab =
            owned(xcb_grab_keyboard_reply(connection_,
                                          xcb_grab_keyboard(connection_, 0, root_, XCB_CURRENT_TIME,
                                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                          nullptr));
        const bool free = grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
        if (free) xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
        xcb_flush(connection_);
        return free;
    });
}

void XSession::movePointer(int x, int y) { fake(XCB_MOTION_NOTIFY, 0, x, y); }

void XSession::click(int x, int y, int button) {
    movePointer(x, y);
    fake(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
    fake(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
}

void XSession::drag(int fromX, int fromY, int toX, int toY) {
    movePointer(fromX, fromY);
    fake(XCB_BUTTON_PRESS, 1);
    constexpr int steps = 20;
    for (int step = 1; step <= steps; ++step)
        movePointer(fromX + (toX - fromX) * step / steps, fromY + (toY - fromY) * step / steps);
    fake(XCB_BUTTON_RELEASE, 1);
}

std::uint32_t XSession::pixel(int x, int y) const {
    const auto cookie = xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_,
                                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 1, 1, ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(connection_, cookie, nullptr), &std::free);
    if (!reply || xcb_get_image_data_length(reply.get()) < 4)
        throw std::runtime_error("no picture of the screen");
    std::uint32_t value = 0;
    std::memcpy(&value, xcb_get_image_data(reply.get()), sizeof value);
    return value;
}

void XSession::screenshot(const std::filesystem::path& file) const {
    if (run({"import", "-window", "root", file}).status != 0) fail("no screenshot", "import");
}

SwaySession::SwaySession(std::string configuration) {
    write(folder() / "sway.conf", "output HEADLESS-1 resolution 1280x800 position 0 0\n"
                                  "output HEADLESS-2 resolution 1280x800 position 1280 0\n"
                                  "focus_follows_mouse no\nmouse_warping none\n"
                                  "focus output HEADLESS-1\n"
                                  "exec touch " +
                                      (folder() / "ready").string() + "\n" + configuration);
    environment_["SWAYSOCK"] = socket();
    // The toolkit's Wayland plugin frees less than it takes; our own leaks show under X11.
    environment_["LSAN_OPTIONS"] = "detect_leaks=0";
    if (::geteuid() == 0)
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder()))
            if (::chown(entry.path().c_str(), nobody, nobody) != 0) fail("chown failed", "sway");
    if (::geteuid() == 0 && ::chown(folder().c_str(), nobody, nobody) != 0) fail("chown failed", "sway");
    startWindowManager();
}

SwaySession::~SwaySession() = default;

void SwaySession::startWindowManager() {
    std::filesystem::remove(folder() / "ready");
    Child::Options options{.environment = environment_, .logFile = logFile("sway"), .unprivileged = nobody};
    options.environment.erase("WAYLAND_DISPLAY");
    options.environment.insert({{"WLR_BACKENDS", "headless"},
                                {"WLR_LIBINPUT_NO_DEVICES", "1"},
                                {"WLR_RENDERER", "pixman"},
                                {"WLR_HEADLESS_OUTPUTS", "2"}});
    sway_ = std::make_unique<Child>(std::vector<std::string>{"sway", "-c", folder() / "sway.conf"}, options);
    const bool ready = waitUntil([this] {
        return !sway_->running() || (std::filesystem::exists(folder() / "ready") && accepts(socket()));
    });
    if (!ready || !sway_->running()) fail("sway doesn't start", "sway");
    for (const auto& entry : std::filesystem::directory_iterator(folder() / "run"))
        if (entry.is_socket() && entry.path().filename().string().starts_with("wayland-"))
            environment_["WAYLAND_DISPLAY"] = entry.path().filename();
}

void SwaySession::killWindowManager(int signal) {
    sway_->send(signal);
    if (!sway_->waitForExit()) throw std::runtime_error("sway doesn't end");
    // What a killed sway leaves behind would be taken for the next one's.
    std::filesystem::remove(socket());
    for (const auto& entry : std::filesystem::directory_iterator(folder() / "run"))
        std::filesystem::remove_all(entry.path());
}

void SwaySession::command(const std::string& command) const {
    if (run({"swaymsg", "--", command}).status != 0) fail("sway refuses: " + command, "swaymsg");
}

} // namespace lumnara::testing
