#include "app/qt/overlay/OverlayWindow.h"

#include "app/qt/board/BoardContent.h"
#include "app/qt/look/Theme.h"
#include "app/qt/overlay/NoticeWindow.h"
#include "core/async/TestLoop.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QScreen>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

struct OverlayScene {
    const char* name;
    OverlayCard card;
};

OverlayCard cardOf(const std::string& name, const std::string& display = {}) {
    OverlayCard card;
    card.desktop.key = "A-3";
    card.desktop.space.kind = SpaceKind::user;
    card.desktop.userNumber = 3;
    if (!name.empty()) card.desktop.record.emplace().name = name;
    card.displayName = display;
    return card;
}

std::vector<OverlayScene> overlayScenes() {
    std::vector<OverlayScene> scenes = {
        {"short", cardOf("Mail")},
        {"plain", cardOf("Writing", "Dell U2720Q")},
        {"unnamed", cardOf("", "Dell U2720Q")},
        {"long", cardOf("Release notes for the spring and the summer, third draft", "LG HDR 4K")},
        {"longest", cardOf(std::string(4000, 'W'), std::string(4000, 'm'))},
        {"rtl", cardOf("سطح المكتب العربي ذو الاسم الطويل جدا الذي لا ينتهي", "Dell U2720Q")},
        {"shortrtl", cardOf("بريد")},
        {"emoji", cardOf("👨‍👩‍👧‍👦 Family album 🏖", "DP-1")},
        {"cjk", cardOf("日本語のとても長いデスクトップの名前です、まだ続きます", "DP-1")},
        {"linked", cardOf("Music", "Dell U2720Q")},
        {"linkedalone", cardOf("Music")},
    };
    scenes[1].card.desktop.record->icon = "doc.text";
    scenes[7].card.desktop.record->icon = "🏖";
    for (std::size_t i = scenes.size() - 2; i < scenes.size(); ++i)
        scenes[i].card.desktop.key = "link:AB12CD34";
    return scenes;
}

/// What the window's shape leaves of it, on a ground of the other kind.
void leavePicture(OverlayWindow& window, const QString& path, const char* look) {
    qputenv("LUMNARA_APPEARANCE", look);
    QImage picture(window.size(), QImage::Format_RGB32);
    picture.fill(look == std::string("dark") ? Qt::white : Qt::black);
    window.render(&picture, {}, window.mask());
    EXPECT_TRUE(picture.save(path));
}

ScreenInfo screenOfTheTest() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect area = screen->geometry();
    const Rect frame{double(area.x()), double(area.y()), double(area.width()), double(area.height())};
    return {"A", screen->name().toStdString(), "Monitor A", frame, 1};
}

/// With a folder in LUMNARA_PICTURES the cards are left there to be looked at.
TEST(OverlayWindow, staysInTheUpperPartOfItsScreenWhateverTheName) {
    const QString folder = qEnvironmentVariable("LUMNARA_PICTURES");
    if (!folder.isEmpty()) QDir().mkpath(folder);
    async::TestLoop loop;
    NoticeWindow notice(loop);
    notice.showNotice({std::string(20000, 'w'), 1});
    OverlayWindow window;
    for (const OverlayScene& scene : overlayScenes()) {
        SCOPED_TRACE(scene.name);
        window.show(scene.card, screenOfTheTest());
        const QRect screen = window.screen()->geometry();
        EXPECT_TRUE(screen.contains(window.geometry()));
        EXPECT_LT(window.geometry().center().y(), screen.top() + screen.height() / 3);
        EXPECT_NEAR(window.geometry().center().x(), screen.center().x(), 1);
        EXPECT_FALSE(window.geometry().intersects(notice.geometry()));
        if (folder.isEmpty()) continue;
        for (const char* look : {"dark", "light"}) {
            leavePicture(window, QStringLiteral("%1/card-%2-%3.png").arg(folder, scene.name, look), look);
        }
        qputenv("LUMNARA_APPEARANCE", "dark");
    }
    window.hide();
    EXPECT_FALSE(window.isVisible());
}

TEST(OverlayWindow, staysOnAScreenThatIsPartOfAMonitor) {
    OverlayWindow window;
    window.show(cardOf("Mail", "DP-1"), {"A", "", "Drawn", {200, 100, 420, 300}, 1});
    EXPECT_TRUE(QRect(200, 100, 420, 300).contains(window.geometry()));
}

TEST(OverlayWindow, isRoundAndOutOfTheWay) {
    OverlayWindow window;
    window.show(cardOf("Mail", "DP-1"), screenOfTheTest());
    EXPECT_FALSE(window.mask().contains(QPoint(0, 0)));
    EXPECT_FALSE(window.mask().contains(window.rect().bottomRight()));
    EXPECT_TRUE(window.mask().contains(window.rect().center()));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowTransparentForInput));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_FALSE(window.isActiveWindow());
    const int oneLine = window.height();
    window.show(cardOf(std::string(4000, 'W'), "DP-1"), screenOfTheTest());
    EXPECT_GT(window.height(), oneLine);
    EXPECT_TRUE(window.mask().contains(QPoint(window.width() - 1, window.height() / 2)))
        << "the shape follows the size";
}

/// The colour of the chip, to the left of the symbol.
QColor chipColor(OverlayWindow& window) {
    const QImage picture = window.grab().toImage();
    return picture.pixelColor(picture.height() / 4, picture.height() / 2);
}

TEST(OverlayWindow, wearsTheColourOfItsDesktop) {
    OverlayWindow window;
    OverlayCard card = cardOf("Mail");
    window.show(card, screenOfTheTest());
    EXPECT_EQ(chipColor(window), colorOf(card.desktop)) << "the one that the name suggests";
    card.desktop.record->color = "#AA3311";
    window.show(card, screenOfTheTest());
    EXPECT_EQ(chipColor(window), QColor(0xAA, 0x33, 0x11));
    window.show(cardOf(""), screenOfTheTest());
    EXPECT_EQ(chipColor(window), Theme::of(Appearance::dark).neutral);
}

} // namespace
} // namespace lumnara
