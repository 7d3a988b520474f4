#include "core/platform/ewmh/DesktopMemoryFile.h"

#include "core/base/Files.h"
#include "core/base/Log.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

class DesktopMemoryFileTest : public ::testing::Test {
protected:
    DesktopMemoryFileTest()
        : previous_(setLogSink([this](std::string_view line) { lines.emplace_back(line); })) {}
    ~DesktopMemoryFileTest() override { setLogSink(previous_); }

    testing::TemporaryFolder folder;
    std::filesystem::path path = folder / "ewmh-desktops.json";
    Date now = *Date::fromISO8601("2026-01-05T09:00:00Z");
    std::vector<std::string> lines;

private:
    LogSink previous_;
};

TEST_F(DesktopMemoryFileTest, RemembersAllAndSaysNothing) {
    const std::vector<RememberedDesktop> desktops{{"A", "mail", RememberedDesktop::Renamed{"mail", "one"}},
                                                  {"B", "Büro"}};
    EXPECT_EQ(DesktopMemoryFile(path).load(now), std::vector<RememberedDesktop>{});
    DesktopMemoryFile(path).save(desktops);
    EXPECT_EQ(DesktopMemoryFile(path).load(now), desktops);
    EXPECT_TRUE(lines.empty());
}

TEST_F(DesktopMemoryFileTest, SavesANameThatIsNoUtf8) {
    DesktopMemoryFile(path).save({{"A", "mail", RememberedDesktop::Renamed{"mail", "\xFF"}}});
    EXPECT_EQ(DesktopMemoryFile(path).load(now)[0].renamed->own, "\xEF\xBF\xBD");
}

TEST_F(DesktopMemoryFileTest, MovesADamagedFileAside) {
    for (const char* damaged : {"", "{", "[]", R"({"desktops": [{"uuid": 1}]})", R"({"desktops": [7]})"}) {
        lines.clear();
        replaceFile(path, damaged);
        EXPECT_EQ(DesktopMemoryFile(path).load(now), std::vector<RememberedDesktop>{}) << damaged;
        EXPECT_FALSE(std::filesystem::exists(path)) << damaged;
        EXPECT_EQ(readFile(path.string() + ".corrupt-2026-01-05T09-00-00Z"), damaged);
        std::filesystem::remove(path.string() + ".corrupt-2026-01-05T09-00-00Z");
        EXPECT_EQ(lines.size(), 1U) << damaged;
    }
}

TEST_F(DesktopMemoryFileTest, LeavesAFileAloneThatItCantRead) {
    std::filesystem::create_symlink(path.filename(), path); // leads to itself
    DesktopMemoryFile file(path);
    EXPECT_EQ(file.load(now), std::vector<RememberedDesktop>{});
    file.save({{"A", "mail"}});
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    std::filesystem::remove(path);
    EXPECT_EQ(file.load(now), std::vector<RememberedDesktop>{});
    file.save({{"A", "mail"}});
    EXPECT_EQ(file.load(now).size(), 1U);
}

TEST_F(DesktopMemoryFileTest, OutlivesAFolderThatCannotBeWritten) {
    replaceFile(folder / "plain", "");
    DesktopMemoryFile(folder / "plain" / "x.json").save({{"A", "mail"}});
    EXPECT_EQ(lines.size(), 1U);
}

} // namespace
} // namespace lumnara
