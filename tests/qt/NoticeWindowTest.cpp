#include "app/qt/NoticeWindow.h"

#include "core/async/TestLoop.h"

#include <QScreen>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(NoticeWindow, showsTheLatestNoticeForItsTime) {
    async::TestLoop loop;
    NoticeWindow window(loop);
    window.showNotice({"Short", 6});
    EXPECT_TRUE(window.isVisible());
    const QSize small = window.size();
    loop.advance(4);
    window.showNotice(
        {std::string(4000, 'w') + " and a great many words after it that have to go somewhere", 5});
    EXPECT_GT(window.height(), small.height());
    loop.advance(4); // the first one's time is over
    EXPECT_TRUE(window.isVisible());
    loop.advance(1.1);
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
