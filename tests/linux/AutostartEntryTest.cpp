#include "core/platform/linux/AutostartEntry.h"

#include "core/base/Files.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <system_error>

namespace lumnara {
namespace {

TEST(AutostartEntry, TellsWhatTheSessionWillDo) {
    testing::TemporaryFolder folder;
    const auto file = folder.path() / "autostart" / "lumnara.desktop";
    AutostartEntry entry(file, "/usr/bin/lumnara");
    EXPECT_FALSE(entry.isRegistered());
    entry.setRegistered(true);
    EXPECT_TRUE(entry.isRegistered());

    const std::string written = readFile(file);
    EXPECT_TRUE(written.starts_with("[Desktop Entry]\nType=Application\n"));
    EXPECT_NE(written.find("\nExec=\"/usr/bin/lumnara\"\n"), std::string::npos);

    // The desktops' own settings switch an entry off inside.
    for (const char* line : {"Hidden=true\n", "Hidden = true", "X-GNOME-Autostart-enabled=false\r\n"}) {
        replaceFile(file, written + line);
        EXPECT_FALSE(entry.isRegistered()) << line;
    }
    replaceFile(file, written + "Hidden=false\n# Hidden=true\n[Desktop Action Off]\nHidden=true\n");
    EXPECT_TRUE(entry.isRegistered());

    replaceFile(file, written + "Hidden=true\n");
    entry.setRegistered(true);
    EXPECT_TRUE(entry.isRegistered());
    entry.setRegistered(false);
    entry.setRegistered(false);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(AutostartEntry, QuotesThePathOfTheProgram) {
    testing::TemporaryFolder folder;
    AutostartEntry entry(folder / "lumnara.desktop", R"(/opt/my $apps/100%/"a\b`/lumnara)");
    entry.setRegistered(true);
    const std::string written = readFile(folder / "lumnara.desktop");
    EXPECT_NE(written.find(R"(Exec="/opt/my \\$apps/100%%/\\"a\\\\b\\`/lumnara")"), std::string::npos)
        << written;
}

TEST(AutostartEntry, ThrowsWhatKeptTheFileFromBeingWritten) {
    testing::TemporaryFolder folder;
    replaceFile(folder / "autostart", "a file where the folder should be");
    AutostartEntry entry(folder.path() / "autostart" / "lumnara.desktop", "/usr/bin/lumnara");
    EXPECT_THROW(entry.setRegistered(true), std::system_error);
    EXPECT_FALSE(entry.isRegistered());
}

} // namespace
} // namespace lumnara
