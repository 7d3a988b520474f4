#include "app/qt/overlay/NoticeWindow.h"

#include "core/async/TestLoop.h"
#include "tests/qt/Pictures.h"

#include <QScreen>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(NoticeWindow, showsEachNoticeForItsTime) {
    async::TestLoop loop;
    NoticeWindow window(loop);
    window.showNotice({"Short", 6});
    EXPECT_TRUE(window.isVisible());
    const int one = window.height();
    loop.advance(4);
    window.showNotice({"Another", 5});
    const int two = window.height();
    EXPECT_GT(two, one) << "none takes the place of another";
    window.showNotice({"Another", 5});
    EXPECT_EQ(window.height(), two) << "the same again";
    testing::savePicture(window, QStringLiteral("notices"));
    loop.advance(3); // the first one's time is over
    EXPECT_EQ(window.height(), one);
    loop.advance(2.1);
    EXPECT_FALSE(window.isVisible());

    for (int i = 0; i < 30; ++i)
        window.showNotice({std::to_string(i) + std::string(4000, 'w') + " and a great many words", 5});
    EXPECT_LT(window.height(), window.screen()->geometry().height() * 0.9);
    loop.advance(5.1);
    EXPECT_FALSE(window.isVisible());
}

TEST(NoticeWindow, staysOnTheScreenAndOutOfTheWay) {
    async::TestLoop loop;
    NoticeWindow window(loop);
    for (const std::string& text : {std::string("Short"), std::string(20000, 'w'), std::string()}) {
        window.showNotice({text, 1});
        EXPECT_TRUE(window.screen()->geometry().contains(window.geometry())) << text.size();
    }
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowTransparentForInput));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
}

} // namespace
} // namespace lumnara
