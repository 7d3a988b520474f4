#include "core/platform/linux/XdgFolders.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace lumnara {
namespace {

using Variables = std::map<std::string, std::string>;

TEST(XdgFolders, FollowTheEnvironment) {
    EXPECT_EQ(XdgFolders::of(Environment(Variables{{"HOME", "/home/ann"}})),
              (XdgFolders{.data = "/home/ann/.local/share/Lumnara",
                          .config = "/home/ann/.config/Lumnara",
                          .state = "/home/ann/.local/state/Lumnara"}));
    EXPECT_EQ(XdgFolders::of(Environment(Variables{{"HOME", "/home/ann"},
                                                   {"XDG_DATA_HOME", "/data"},
                                                   {"XDG_CONFIG_HOME", "relative/is/ignored"},
                                                   {"XDG_STATE_HOME", ""}})),
              (XdgFolders{.data = "/data/Lumnara",
                          .config = "/home/ann/.config/Lumnara",
                          .state = "/home/ann/.local/state/Lumnara"}));
    EXPECT_TRUE(XdgFolders::of(Environment({})).data.is_absolute());
}

TEST(Environment, OfTheProcessIsReadOnce) {
    ::setenv("LUMNARA_TEST_VARIABLE", "a=b", 1);
    const Environment environment = Environment::ofProcess();
    ::unsetenv("LUMNARA_TEST_VARIABLE");
    EXPECT_EQ(environment.get("LUMNARA_TEST_VARIABLE"), "a=b");
    EXPECT_EQ(Environment::ofProcess().get("LUMNARA_TEST_VARIABLE"), std::nullopt);
}

} // namespace
} // namespace lumnara
