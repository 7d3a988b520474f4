#include "core/base/Files.h"
#include "core/base/Log.h"
#include "core/base/Uuid.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <vector>

namespace lumnara {
namespace {

TEST(Log, ASinkMayLogAndReplaceItself) {
    std::vector<std::string> lines;
    const LogSink before = setLogSink([&](std::string_view line) {
        lines.emplace_back(line);
        if (line == "first") {
            setLogSink(
                [&](std::string_view later) { lines.push_back("second sink: " + std::string(later)); });
            log("nested");
        }
    });
    log("first");
    log("last");
    setLogSink(before);
    EXPECT_EQ(lines, (std::vector<std::string>{"first", "second sink: nested", "second sink: last"}));
}

TEST(Log, AFileGetsTheLinesWithTheirTimes) {
    const testing::TemporaryFolder folder;
    const LogSink before = setLogSink([](std::string_view) {});
    alsoLogTo(folder / "log", [] { return Date{1'767'603'600'042}; });
    log("one");
    alsoLogTo({}, nullptr);
    log("nowhere");
    setLogSink(before);
    EXPECT_EQ(readFile(folder / "log"), "2026-01-05T09:00:00.042Z one\n");
    EXPECT_THROW(alsoLogTo(folder / "none" / "log", nullptr), std::system_error);
}

TEST(Uuid, IsARandomVersionFourInUpperCase) {
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 200; ++i) {
        const std::string uuid = newUuid();
        EXPECT_TRUE(std::regex_match(uuid, form)) << uuid;
        seen.insert(uuid);
    }
    EXPECT_EQ(seen.size(), 200u);
}

} // namespace
} // namespace lumnara
