#pragma once

#include "core/platform/mac/server/MacSession.h"
#include "core/platform/mac/server/WindowServer.h"
#include "core/seams/Accessibility.h"
#include "core/seams/EventServices.h"
#include "core/seams/Screens.h"

#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <utility>
#include <vector>

namespace lumnara::testing {

struct ScriptedTrust : Accessibility {
    bool isTrusted() override { return trusted; }
    bool trusted = true;
};

/// Keeps what is posted, and where the pointer was put.
struct RecordingEvents : EventServices {
    void post(const SyntheticEvent& event, EventTap tap) override {
        EXPECT_EQ(tap, EventTap::session);
        posted.push_back(event);
        if (onPost) onPost();
    }
    std::optional<Point> pointer() override { return at; }
    void warpPointer(Point to) override {
        warps.push_back(to);
        at = to;
    }

    std::vector<SyntheticEvent> posted;
    std::vector<Point> warps;
    std::optional<Point> at = Point{5, 6};
    std::function<void()> onPost;
};

/// "D1" left of "D2".
struct TwoScreens : Screens {
    std::vector<ScreenInfo> screens() override { return list; }
    std::optional<Point> pointer() override { return std::nullopt; }
    std::optional<std::string> displayUnderPointer() override { return std::nullopt; }

    std::vector<ScreenInfo> list{
        {.uuid = "D1", .connector = "1", .name = "One", .frame = {0, 0, 100, 80}},
        {.uuid = "D2", .connector = "2", .name = "Two", .frame = {100, 0, 300, 200}}};
};

struct ScriptedSession : MacSession {
    std::optional<PropertyDictionary> currentDictionary() override { return dictionary; }
    std::optional<PropertyDictionary> dictionary;
};

/// Tells the windows that a test sets, and remembers which windows were put on which Spaces.
struct ScriptedWindowServer : WindowServer {
    PropertyList managedDisplaySpaces() override { return {}; }
    std::optional<SpaceID> currentSpace(const DisplayID&) override { return std::nullopt; }
    std::optional<bool> isAnimating(const DisplayID&) override { return std::nullopt; }
    std::optional<std::string> activeMenuBarDisplay() override { return menuBar; }
    std::optional<PropertyList> windowList(WindowListOption option) override {
        EXPECT_EQ(option, expectedOption);
        return list;
    }

    std::optional<PropertyList> list;
    std::optional<std::string> menuBar;
    WindowListOption expectedOption = WindowListOption::onScreenOnly;
};

} // namespace lumnara::testing
