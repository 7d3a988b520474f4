#include "core/automation/AutomationStore.h"
#include "core/async/TestLoop.h"
#include "core/automation/AutomationCodec.h"
#include "core/automation/AutomationPresets.h"
#include "core/base/Files.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

namespace lumnara {
namespace {

namespace fs = std::filesystem;

Automation everyAction() {
    return {.id = "A",
            .spaceKey = "link:1",
            .name = "Ärger\n“x”",
            .icon = "moon.fill",
            .trigger = AutomationTrigger::onExit,
            .isEnabled = false,
            .actions = {OpenAppAction{"a.b", "B"}, OpenAppAction{"a.b", {}}, OpenPathAction{"~/x"},
                        OpenURLAction{"https://example.org"}, RunShortcutAction{"S"}, RunShellAction{"true"},
                        AppleScriptAction{"beep"}, PomodoroAction{25, -1},
                        SessionAction{SessionOp::pause, {}}, SessionAction{SessionOp::stop, ""},
                        WaitAction{0.25}}};
}

std::string withAction(const std::string& action) {
    return R"({"schemaVersion":1,"automations":[{"id":"A","spaceKey":"k","name":"n","icon":"i",)"
           R"("trigger":"onEnter","isEnabled":true,"actions":[)" +
           action + "]}]}";
}

class AutomationStoreTest : public ::testing::Test {
protected:
    void put(const std::string& text) {
        fs::create_directories(url_.parent_path());
        std::ofstream(url_) << text;
    }

    testing::TemporaryFolder folder_;
    const fs::path url_ = folder_.path() / "data" / "Lumnara" / "automations.json";
    async::TestLoop loop_;
    AutomationStore store_{loop_, url_};
};

TEST(AutomationCodecTest, TheFormIsTheOneTold) {
    const AutomationFile file{.automations = {everyAction()}};
    const std::string text = AutomationCodec::encode(file);
    EXPECT_EQ(AutomationCodec::decode(text), file);
    EXPECT_EQ(text.substr(0, 55), "{\n  \"automations\": [\n    {\n      \"actions\": [\n        {");
    EXPECT_NE(text.find("\"openApp\": {\n            \"bundleID\": \"a.b\"\n          }"), std::string::npos);
    EXPECT_EQ(text.find("null"), std::string::npos);

    const auto wait = AutomationCodec::decode(withAction(R"({"wait":{"seconds":2}})"));
    EXPECT_EQ(wait.automations[0].actions[0], AutomationAction(WaitAction{2}));
    EXPECT_EQ(labelOf(wait.automations[0].actions[0]), "Wait 2s");

    // One value that JSON can't hold must not make the file unreadable.
    AutomationFile bad{.automations = {everyAction()}};
    bad.automations[0].name = "\xFF";
    bad.automations[0].actions = {WaitAction{std::numeric_limits<double>::infinity()}};
    EXPECT_EQ(AutomationCodec::decode(AutomationCodec::encode(bad)).automations[0].actions[0],
              AutomationAction(WaitAction{0}));
}

TEST(AutomationCodecTest, LabelsAreShort) {
    const std::vector<std::pair<AutomationAction, std::string>> labels = {
        {OpenAppAction{"a.b", "B"}, "Open B"},
        {OpenAppAction{"a.b", {}}, "Open app"},
        {OpenPathAction{"~/Documents/plan.pdf"}, "Open plan.pdf"},
        {OpenPathAction{"/srv/data//"}, "Open data"},
        {OpenPathAction{"/"}, "Open /"},
        {OpenURLAction{"https://example.org"}, "Open https://example.org"},
        {RunShortcutAction{"Set Focus"}, "Run Shortcut “Set Focus”"},
        {PomodoroAction{25, 5}, "Pomodoro 25/5 min"},
        {SessionAction{SessionOp::start, "X"}, "start session"},
        {WaitAction{0.5}, "Wait 0.5s"}};
    for (const auto& [action, label] : labels) EXPECT_EQ(labelOf(action), label);
}

TEST_F(AutomationStoreTest, ANewerSchemaIsLeftAlone) {
    for (const char* version : {"2", "99", "18446744073709551615"}) {
        const std::string text = std::string(R"({"schemaVersion":)") + version + R"(,"automations":[7]})";
        put(text);
        store_.load();
        const auto error = AutomationStoreError::unsupportedSchema(std::stoull(version));
        EXPECT_EQ(store_.loadError(), error);
        try {
            store_.upsert(everyAction());
            FAIL() << "was saved";
        } catch (const AutomationStoreError& thrown) {
            EXPECT_EQ(thrown, error);
        }
        EXPECT_EQ(store_.automations("link:1").size(), 1u) << "the change holds in memory";
        EXPECT_EQ(readFile(url_), text);
    }
    // The next load that works lifts the ban.
    put(withAction(""));
    store_.load();
    EXPECT_FALSE(store_.loadError());
    store_.remove("A");
    EXPECT_TRUE(AutomationCodec::decode(readFile(url_)).automations.empty());
}

TEST_F(AutomationStoreTest, WhatCannotBeMovedAsideBlocksSaving) {
    const fs::path longName = folder_.path() / std::string(240, 'x'); // too long with the stamp behind it
    std::ofstream(longName) << "damaged";
    AutomationStore unmovable(loop_, longName);
    unmovable.load();
    ASSERT_TRUE(unmovable.loadError());
    EXPECT_NE(unmovable.loadError()->sentence().find("; could not move it aside: "), std::string::npos);
    EXPECT_THROW(unmovable.upsert(everyAction()), AutomationStoreError);
    EXPECT_EQ(readFile(longName), "damaged");
}

TEST_F(AutomationStoreTest, ChangesAreSavedAtOnceAndInFileOrder) {
    store_.load();
    EXPECT_EQ(store_.file(), AutomationFile{});
    int told = 0;
    const auto subscription = store_.changed.subscribe([&] { ++told; });
    for (Automation& preset : AutomationPresets::all("k")) store_.upsert(std::move(preset));
    store_.insert(everyAction(), 1);
    Automation meeting = store_.automations("k")[1];
    meeting.name = "Standup";
    store_.upsert(meeting);
    EXPECT_EQ(told, 5);
    struct stat status{};
    ASSERT_EQ(::stat(url_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);

    AutomationStore again(loop_, url_);
    again.load();
    EXPECT_EQ(again.file(), store_.file());
    std::vector<std::string> names;
    for (const Automation& each : again.file().automations) names.push_back(each.name);
    EXPECT_EQ(names, (std::vector<std::string>{"Focus", "Ärger\n“x”", "Standup", "Break"}));
    EXPECT_EQ(again.automations("k").size(), 3u);

    fs::remove(url_);
    store_.removeAll("nobody");
    EXPECT_FALSE(fs::exists(url_)) << "nothing changed, nothing is written";
    store_.removeAll("k");
    EXPECT_EQ(AutomationCodec::decode(readFile(url_)).automations, std::vector{everyAction()});
}

} // namespace
} // namespace lumnara
