#include "core/platform/linux/InstalledApps.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

namespace fs = std::filesystem;
using Command = std::optional<std::vector<std::string>>;

Command commandOf(const std::string& exec) {
    const auto entry =
        DesktopEntry::parse("[Desktop Entry]\nType=Application\nName=A b\nIcon=pic\nExec=" + exec, "");
    return entry->command("/apps/a.desktop");
}

TEST(DesktopEntryTest, ExecIsReadAsTheFormatSays) {
    const std::vector<std::pair<std::string, Command>> cases = {
        {"app %U", Command({"app"})},
        {"app --open=%f --new", Command({"app", "--open=", "--new"})},
        {"app %F %u %m  end", Command({"app", "end"})},
        {"app %i", Command({"app", "--icon", "pic"})},
        {"app %c %k", Command({"app", "A b", "/apps/a.desktop"})},
        {"app 100%% \"50%%\"", Command({"app", "100%", "50%"})},
        {R"("/opt/my app/run" "")", Command({"/opt/my app/run", ""})},
        {R"(app "a\\"b" "\\$HOME" "\\\\" "c\\\\d")", Command({"app", "a\"b", "$HOME", "\\", "c\\d"})},
        {R"(sh -c 'echo "$1"' x)", Command({"sh", "-c", "echo \"$1\"", "x"})},
        {R"(app\sone a\\\sb)", Command({"app", "one", "a b"})},
        {"app %", {}},
        {"app %z", {}},
        {"app \"open", {}},
        {"%U", {}},
        {"\"\" x", {}},
    };
    for (const auto& [exec, command] : cases) EXPECT_EQ(commandOf(exec), command) << exec;
}

TEST(DesktopEntryTest, OnlyTheMainGroupCountsAndTheNameIsTheUsers) {
    const std::string text =
        "# comment\n[Other]\nName=No\n[Desktop Entry]\nType=Application\nName = Files\r\n"
        "Name[de]=Dateien\nName[sr@Latn]=Datoteke\nExec=files\nName=Twice\n"
        "[Desktop Action new]\nName=New\nExec=files --new\nHidden=true\n";
    const auto entry = DesktopEntry::parse(text, "C.UTF-8");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "Files");
    EXPECT_EQ(entry->exec, "files");
    EXPECT_FALSE(entry->isHidden);
    EXPECT_EQ(DesktopEntry::parse(text, "de_AT.UTF-8")->name, "Dateien");
    EXPECT_EQ(DesktopEntry::parse(text, "sr_YU.UTF-8@Latn")->name, "Datoteke");
    EXPECT_FALSE(DesktopEntry::parse("[Desktop Entry]\nType=Link\nURL=x:y\n", ""));
    EXPECT_FALSE(DesktopEntry::parse("Type=Application\nExec=x\n", ""));
}

class InstalledAppsTest : public ::testing::Test {
protected:
    void put(const std::string& folder, const std::string& file, const std::string& keys) {
        const fs::path path = folder_.path() / folder / "applications" / file;
        fs::create_directories(path.parent_path());
        std::ofstream(path) << "[Desktop Entry]\nType=Application\nName=" << folder << "\nExec=x\n" << keys;
    }
    /// In which folder the app was found, "-" for none.
    std::string found(const std::string& bundleID) {
        const auto app = apps_.find(bundleID);
        return app ? app->id + " in " + app->entry.name : "-";
    }

    testing::TemporaryFolder folder_;
    InstalledApps apps_{
        Environment({{"XDG_DATA_HOME", folder_ / "own"},
                     {"XDG_DATA_DIRS", (folder_ / "a").string() + "::relative:" + (folder_ / "b").string() +
                                           ":" + (folder_ / "missing").string()},
                     {"PATH", (folder_ / "bin").string()}})};
};

TEST_F(InstalledAppsTest, AnAppIsFoundByItsIdItsWindowClassOrABundleId) {
    put("b", "org.gnome.Notes.desktop", "");
    put("a", "kde4/konsole.desktop", "NoDisplay=true\n");
    put("b", "kde4-konsole.desktop", "");
    put("a", "mail.desktop", "");
    put("own", "mail.desktop", "");
    put("b", "gone.desktop", "");
    put("a", "gone.desktop", "Hidden=true\n");
    put("a", "browser.desktop", "StartupWMClass=Browser-ESR\n");
    put("a", "trial.desktop", "TryExec=trial\n");
    put("a", "link.desktop", "Type=Link\n");

    EXPECT_EQ(found("org.gnome.Notes"), "org.gnome.Notes in b");
    EXPECT_EQ(found("org.gnome.notes.desktop"), "org.gnome.Notes in b");
    EXPECT_EQ(found("com.apple.Notes"), "org.gnome.Notes in b");
    EXPECT_EQ(found("us.zoom.xos"), "-");
    EXPECT_EQ(found("kde4-konsole"), "kde4-konsole in a");
    EXPECT_EQ(found("mail"), "mail in own");
    EXPECT_EQ(found("gone"), "-") << "hidden by the more important folder";
    EXPECT_EQ(found("browser-esr"), "browser in a");
    EXPECT_EQ(found("trial"), "-");
    EXPECT_EQ(found(""), "-");
    EXPECT_EQ(found("../a/applications/mail"), "-");

    const fs::path trial = folder_.path() / "bin" / "trial";
    fs::create_directories(trial.parent_path());
    std::ofstream(trial).flush();
    EXPECT_EQ(found("trial"), "-") << "can't be executed";
    fs::permissions(trial, fs::perms::owner_all);
    EXPECT_EQ(found("trial"), "trial in a");
}

} // namespace
} // namespace lumnara
