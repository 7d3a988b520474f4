#include "app/qt/look/Theme.h"
#include "app/qt/look/Symbols.h"
#include "core/catalog/DesktopAppearance.h"

#include <QImage>
#include <QPainter>
#include <cmath>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// The contrast of WCAG 2: from 1, no difference, to 21, black on white.
double contrast(const QColor& a, const QColor& b) {
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

TEST(Theme, keepsTextLegibleInBothAppearances) {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        const Theme& theme = Theme::of(appearance);
        for (const QColor& ground :
             {theme.tile, theme.selectedTile, theme.backdropTop, theme.backdropBottom}) {
            EXPECT_GE(contrast(theme.text, ground), 7) << ground.name().toStdString();
            EXPECT_GE(contrast(theme.secondaryText, ground), 4.5) << ground.name().toStdString();
            EXPECT_GE(contrast(theme.faintText, ground), 3) << ground.name().toStdString();
            EXPECT_GE(contrast(theme.error, ground), 4.5) << ground.name().toStdString();
            EXPECT_GE(contrast(theme.selectionRing, ground), 7) << ground.name().toStdString();
        }
        for (const std::string_view color : DesktopAppearance::palette) {
            const QColor legible = theme.legible(QColor(QLatin1String(color.data(), color.size())));
            for (const QColor& ground : {theme.tile, theme.selectedTile})
                EXPECT_GE(contrast(legible, ground), 4.5) << color << " on " << ground.name().toStdString();
        }
    }
}

QImage drawing(const QString& name) {
    QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawSymbol(painter, name, {8, 8, 48, 48}, Qt::white);
    return image;
}

TEST(Symbols, drawsEveryNameThatDesktopsGetAndFallsBackForOthers) {
    std::vector<QString> names = {"macwindow", "square.dashed", "envelope",       "terminal", "globe",
                                  "doc.text",  "music.note",    "bubble.left",    "hammer",   "folder",
                                  "star",      "house",         "paintbrush",     "film",     "cart",
                                  "book",      "chart.bar",     "gamecontroller", "camera",   "calendar"};
    for (const std::string_view name : DesktopAppearance::symbols)
        names.push_back(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
    std::vector<QImage> seen;
    for (const QString& name : names) {
        EXPECT_TRUE(hasSymbol(name)) << name.toStdString();
        const QImage image = drawing(name);
        EXPECT_EQ(std::count(seen.begin(), seen.end(), image), 0)
            << name.toStdString() << " looks like another";
        seen.push_back(image);
        for (int at = 0; at < 64; ++at) {
            for (const QPoint edge : {QPoint(at, 4), QPoint(at, 59), QPoint(4, at), QPoint(59, at)})
                EXPECT_EQ(qAlpha(image.pixel(edge)), 0) << name.toStdString() << " leaves its square";
        }
    }
    EXPECT_EQ(drawing("envelope.badge.fill"), drawing("envelope"));
    EXPECT_EQ(drawing("no.such.thing"), drawing("square.grid.2x2"));
    EXPECT_EQ(drawing(""), drawing("square.grid.2x2"));
    EXPECT_EQ(drawing("..."), drawing("square.grid.2x2"));
    EXPECT_NE(drawing("木"), drawing("square.grid.2x2"));
}

} // namespace
} // namespace lumnara
