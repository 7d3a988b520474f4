#include "core/base/Files.h"
#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace lumnara {
namespace {

namespace fs = std::filesystem;

mode_t modeOf(const fs::path& path) {
    struct stat status{};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

std::size_t filesIn(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
    return names;
}

TEST(Files, ReplacesWholeFilesAndLeavesNothingBeside) {
    testing::TemporaryFolder folder;
    const std::string large(100'000, 'x');
    replaceFile(folder / "a", large);
    EXPECT_EQ(readFile(folder / "a"), large);
    replaceFile(folder / "a", std::string("b\0c", 3));
    EXPECT_EQ(readFile(folder / "a"), std::string("b\0c", 3));
    EXPECT_EQ(filesIn(folder.path()), 1u);
}

TEST(Files, KeepsNewFilesAndFoldersPrivateAndTheModeOfOldFiles) {
    testing::TemporaryFolder folder;
    const fs::path file = folder.path() / "new" / "deep" / "names.json";
    replaceFile(file, "1");
    EXPECT_EQ(modeOf(file), 0600u);
    EXPECT_EQ(modeOf(file.parent_path()), 0700u);
    EXPECT_EQ(modeOf(file.parent_path().parent_path()), 0700u);

    fs::permissions(file, fs::perms(0640));
    replaceFile(file, "2");
    EXPECT_EQ(modeOf(file), 0640u);
}

TEST(Files, WritesThroughSymbolicLinks) {
    testing::TemporaryFolder folder;
    fs::create_directory(folder / "real");
    fs::create_symlink("real/file", folder / "middle");
    fs::create_symlink(folder / "middle", folder / "link");
    replaceFile(folder / "link", "through a link that dangles");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_TRUE(fs::is_symlink(folder / "middle"));
    EXPECT_EQ(readFile(folder.path() / "real" / "file"), "through a link that dangles");

    fs::create_symlink("circle", folder / "circle");
    EXPECT_THROW(replaceFile(folder / "circle", "x"), std::system_error);
}

TEST(Files, AFailedReplacementLeavesTheOldStateAndNoTemporaryFile) {
    testing::TemporaryFolder folder;
    fs::create_directory(folder / "taken");
    replaceFile(folder.path() / "taken" / "inside", "kept");
    EXPECT_THROW(replaceFile(folder / "taken", "x"), std::system_error); // a folder stands in its place
    EXPECT_EQ(readFile(folder.path() / "taken" / "inside"), "kept");
    EXPECT_EQ(filesIn(folder.path()), 1u);

    try {
        readFile(folder / "missing");
        FAIL() << "a missing file was read";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
}

TEST(Files, PutsInterruptedReplacementsInOrderAndTouchesNothingElse) {
    testing::TemporaryFolder folder;
    const auto lay = [&](const char* name) { replaceFolder(folder / name, {{"file", name}}); };
    for (const char* name : {".a.new-x1Y2z3", ".b.replaced", "c", ".c.replaced", ".d.new-long-name",
                             ".new-123456", ".replaced", ".profile", "e.new-123456"})
        lay(name);
    finishReplacements(folder.path());
    EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"b", "c", ".d.new-long-name", ".new-123456",
                                                             ".replaced", ".profile", "e.new-123456"}));
    EXPECT_EQ(readFile(folder.path() / "b" / "file"), ".b.replaced");
    EXPECT_EQ(readFile(folder.path() / "c" / "file"), "c");
    finishReplacements(folder / "missing");
}

TEST(Files, ClearsAwayWhatACrashLeftOfOneFileAndNoWritersWork) {
    testing::TemporaryFolder folder;
    for (const char* name : {"a", ".a.new-x1Y2z3", ".a.new-held00", ".b.new-x1Y2z3", ".a.new-long-name"})
        replaceFile(folder / name, name);
    fs::create_directory(folder / "links");
    const fs::path link = folder.path() / "links" / "link";
    fs::create_symlink("../a", link);
    const int writer = ::open((folder / ".a.new-held00").c_str(), O_WRONLY);
    ASSERT_EQ(::flock(writer, LOCK_EX), 0);
    finishReplacement(link);
    const std::set<std::string> kept = {"a", ".b.new-x1Y2z3", ".a.new-long-name", "links"};
    std::set<std::string> withWriters = kept;
    withWriters.insert(".a.new-held00");
    EXPECT_EQ(namesIn(folder.path()), withWriters);
    ::close(writer);
    finishReplacement(link);
    EXPECT_EQ(namesIn(folder.path()), kept);

    fs::create_symlink("circle", folder / "circle");
    finishReplacement(folder / "circle");
    finishReplacement(folder / "missing/file");
}

} // namespace
} // namespace lumnara
