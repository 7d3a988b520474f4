#pragma once

#include "core/async/Task.h"
#include "tests/session/EwmhFixture.h"
#include "tests/session/IpcFixture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace lumnara::testing {

/// What came of one call of an arranger.
template <class T> struct Arranged {
    T value = {};
    std::string failure = {};
    bool done = false;
};
template <class T> async::Task<> keepArranged(async::Task<T> task, Arranged<T>& result) {
    try {
        result.value = co_await std::move(task);
    } catch (const Failure& failure) {
        result.failure = failure.sentence();
    }
    result.done = true;
}
template <class T> Arranged<T> arranged(async::PollLoop& loop, async::Task<T> task) {
    Arranged<T> result;
    const auto handle = async::spawn(loop, keepArranged(std::move(task), result));
    EXPECT_TRUE(loop.runUntil([&] { return result.done; }, 10));
    return result;
}

/// A display with desktops that the user has called "a", "b" ... and one window on each, under a real window
/// manager. "a" is shown, and its window has the keyboard. Where windows are and what shows, the window
/// manager's own properties tell.
class ArrangerSession {
public:
    explicit ArrangerSession(WindowManager windowManager, int desktops = 5) {
        if (windowManager == WindowManager::i3)
            ipc_ = std::make_unique<IpcFixture>(IpcWindowManager::i3);
        else
            ewmh_ = std::make_unique<EwmhFixture>(windowManager, desktops);
        display = {ipc_ ? "L" : "Main"};
        for (int place = desktops - 1; place >= 0; --place) {
            show(place);
            windows[titleAt(place)] = x().openWindow(titleAt(place));
        }
        const DisplaySpaces all = shown();
        for (std::size_t place = 0; place < all.spaces.size(); ++place)
            titles[all.spaces[place].uuid] = titleAt(static_cast<int>(place));
        publish();
        EXPECT_TRUE(waitFor([&] { return ownOrder() == order(); })) << ownOrder();
        EXPECT_TRUE(waitFor([&] { return activeWindow() == windows.at("a"); }));
    }

    XSession& x() { return ipc_ ? ipc_->x() : ewmh_->session; }
    Platform& platform() { return ipc_ ? ipc_->platform() : ewmh_->platform; }
    async::PollLoop& loop() { return ipc_ ? ipc_->loop : ewmh_->loop; }
    DesktopArranger& arranger() { return *platform().arranger; }
    bool waitFor(const std::function<bool()>& condition) { return loop().runUntil(condition, 10); }
    /// Lets what has been announced arrive.
    void settle() {
        loop().runUntil([] { return false; }, 0.05);
    }

    bool answers() { return ipc_ ? !ipc_->failure() : ewmh_->answers(); }
    SpaceSnapshot snapshot() { return platform().spaceProvider->snapshot(); }
    DisplaySpaces shown() { return *snapshot().spacesOnDisplay(display.uuid); }
    /// The titles in the order that we read, the shown one with a star; "?" for one without.
    std::string order() {
        std::string text;
        const DisplaySpaces now = shown();
        for (const Space& space : now.spaces)
            text += titleOf(space) + (space.id == now.currentID ? "* " : " ");
        return text;
    }
    /// The same by the window manager's own account.
    std::string ownOrder() {
        std::string text;
        const std::vector<std::string> names = ownTitles();
        const std::string current = x().rootProperty("_NET_CURRENT_DESKTOP").value_or("");
        for (std::size_t index = 0; index < names.size(); ++index)
            if (!names[index].empty()) text += names[index] + (std::to_string(index) == current ? "* " : " ");
        return text;
    }
    /// The title of the desktop that a window is on, "everywhere", or nothing for one that is gone.
    std::string titleOfDesktop(std::uint32_t window) {
        const auto index = item(window, "_NET_WM_DESKTOP");
        if (!index) return {};
        const std::vector<std::string> names = ownTitles();
        return *index < names.size() ? names[*index] : "everywhere";
    }
    /// The titles of the desktops that the windows "a", "b" ... are on: "a a c ".
    std::string homes() {
        std::string text;
        for (const auto& [title, window] : windows) text += titleOfDesktop(window) + " ";
        return text;
    }
    std::uint32_t activeWindow() { return item(x().root(), "_NET_ACTIVE_WINDOW").value_or(0); }

    SpaceID id(const std::string& title) {
        for (const Space& space : shown().spaces)
            if (titleOf(space) == title) return space.id;
        return {};
    }
    std::vector<SpaceID> ids(const std::vector<std::string>& wanted) {
        std::vector<SpaceID> found;
        for (const std::string& title : wanted) found.push_back(id(title));
        return found;
    }
    void publish() {
        std::vector<PublishedDesktop> published;
        for (const auto& [uuid, title] : titles)
            published.push_back({.spaceKey = uuid, .space = {}, .display = display, .name = title});
        platform().namePublisher->publish(published);
    }

    ReorderOutcome reorder(const std::vector<SpaceID>& wish) {
        return run<ReorderOutcome>(arranger().reorder(display, wish));
    }
    RemoveOutcome remove(const std::vector<SpaceID>& ids) {
        return run<RemoveOutcome>(arranger().remove(ids, display));
    }
    std::vector<SpaceID> create() { return run<std::vector<SpaceID>>(arranger().create(display)); }
    /// What the last call failed with.
    std::string failure;

    DisplayID display;
    std::map<std::string, std::uint32_t> windows;
    /// By uuid.
    std::map<std::string, std::string> titles;

private:
    static std::string titleAt(int place) { return std::string(1, static_cast<char>('a' + place)); }
    /// i3 has "2" on the other monitor.
    void show(int place) {
        if (ipc_) {
            ipc_->command("focus output L; workspace " + std::to_string(place == 0 ? 1 : place + 2));
        } else {
            ewmh_->runTool({"wmctrl", "-s", std::to_string(place)});
            EXPECT_TRUE(
                waitFor([&] { return x().rootProperty("_NET_CURRENT_DESKTOP") == std::to_string(place); }));
        }
    }
    std::string titleOf(const Space& space) {
        const auto found = titles.find(space.uuid);
        return found == titles.end() ? "?" : found->second;
    }
    /// By index; nothing for the desktop of another display.
    std::vector<std::string> ownTitles() {
        std::vector<std::string> names;
        std::string name;
        for (const char c : x().rootProperty("_NET_DESKTOP_NAMES").value_or("")) {
            if (c != '\0') {
                name += c;
                continue;
            }
            if (const auto colon = name.find(": "); ipc_ && colon != std::string::npos)
                name = name.substr(colon + 2);
            else if (ipc_)
                name.clear();
            names.push_back(std::exchange(name, {}));
        }
        const auto count = x().rootProperty("_NET_NUMBER_OF_DESKTOPS").value_or("0");
        names.resize(std::min<std::size_t>(names.size(), std::stoul(count)));
        return names;
    }
    std::optional<std::uint32_t> item(std::uint32_t window, const std::string& name) {
        xcb_connection_t* xcb = x().connection();
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
            xcb_intern_atom_reply(
                xcb, xcb_intern_atom(xcb, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr),
            &std::free);
        const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> property(
            xcb_get_property_reply(xcb, xcb_get_property(xcb, 0, window, atom->atom, XCB_ATOM_ANY, 0, 1),
                                   nullptr),
            &std::free);
        if (!property || xcb_get_property_value_length(property.get()) < 4) return std::nullopt;
        std::uint32_t value = 0;
        std::memcpy(&value, xcb_get_property_value(property.get()), sizeof value);
        return value;
    }

    template <class T> T run(async::Task<T> task) {
        const Arranged<T> result = arranged(loop(), std::move(task));
        failure = result.failure;
        return result.value;
    }

    std::unique_ptr<IpcFixture> ipc_;
    std::unique_ptr<EwmhFixture> ewmh_;
};

} // namespace lumnara::testing
