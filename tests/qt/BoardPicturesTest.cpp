#include "app/qt/board/BoardPainter.h"

#include "core/catalog/DesktopAppearance.h"

#include <QDir>
#include <QPainter>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

struct Scene {
    const char* name;
    BoardContent content;
    QSize size{1280, 800};
    int restingTiles = 0;
};

TileContent tile(const QString& name, const char* symbol, int number) {
    TileContent tile;
    tile.key = std::to_string(number);
    tile.name = name;
    tile.detail = QStringLiteral("Desktop %1 · DP-%2").arg(number).arg(number % 2 + 1);
    tile.symbol = symbol;
    const auto color = DesktopAppearance::suggestedColor(name.toStdString());
    if (color) tile.color = colorNamed(std::string(*color));
    tile.digit = number <= 9 ? number : 0;
    tile.isNamed = true;
    return tile;
}

BoardContent contentOf(std::vector<TileContent> tiles, int width) {
    BoardContent content;
    content.tiles = std::move(tiles);
    const int fitting = (width - 96 + 20) / 216;
    content.columns = std::max(1, std::min({fitting, static_cast<int>(content.tiles.size()), 6}));
    if (!content.tiles.empty()) content.selected = 0;
    return content;
}

BoardContent fewTiles() {
    BoardContent content = contentOf({tile("Mail", "envelope", 1), tile("Writing", "doc.text", 2),
                                      tile("Desktop 3", "square.dashed", 3), tile("Music", "music.note", 4)},
                                     1280);
    content.tiles[0].isCurrent = true;
    content.tiles[0].detail = "Current · DP-1";
    content.tiles[2].isNamed = false;
    content.tiles[2].color = QColor();
    content.tiles[3].isDimmed = true;
    content.tiles[1].isLinked = true;
    content.tiles[1].aliases = "Also called novel, book";
    content.scope = "All displays";
    content.canCycleScope = true;
    return content;
}

BoardContent hardNames() {
    const QStringList names = {"Release notes for the spring and the summer, third draft",
                               "Donaudampfschifffahrtsgesellschaftskapitän",
                               "日本語のとても長いデスクトップの名前です、まだ続きます",
                               "سطح المكتب العربي ذو الاسم الطويل جدا الذي لا ينتهي",
                               "Family " + QStringLiteral("👨‍👩‍👧‍👦").repeated(10) +
                                   " album",
                               "Z̷̢̛a̴͚̓l̵͖̈́g̶͙̈o̷͎͐ \n\t two\nlines",
                               QString(300, 'W')};
    std::vector<TileContent> tiles;
    for (const QString& name : names) tiles.push_back(tile(name, "book", static_cast<int>(tiles.size()) + 1));
    tiles[3].detail = QString(200, QChar('w'));
    return contentOf(std::move(tiles), 1280);
}

BoardContent manyTiles() {
    std::vector<TileContent> tiles;
    for (int number = 1; number <= 60; ++number)
        tiles.push_back(tile(QStringLiteral("Project %1").arg(number), "hammer", number));
    return contentOf(std::move(tiles), 1920);
}

BoardLayout layoutOf(const Scene& scene) {
    const int tiles = static_cast<int>(scene.content.tiles.size());
    return BoardLayout({.surface = scene.size,
                        .tiles = tiles,
                        .columns = scene.content.columns,
                        .restingTiles = std::max(tiles, scene.restingTiles),
                        .restingColumns = std::max(scene.content.columns, scene.restingTiles)});
}

std::vector<Scene> scenes() {
    std::vector<Scene> scenes = {
        {"few", fewTiles()}, {"many", manyTiles(), {1920, 1080}}, {"names", hardNames()}};
    scenes.push_back({"one", contentOf({tile("Home", "house", 1)}, 1280)});
    scenes.push_back({"small", contentOf(manyTiles().tiles, 480), {480, 320}});
    scenes.push_back({"tiny", contentOf(fewTiles().tiles, 240), {240, 240}});
    BoardContent nothing = contentOf({}, 1280);
    nothing.query = "xyz";
    scenes.push_back({"nothing", nothing, {1280, 800}, 4});
    BoardContent longQuery = nothing;
    longQuery.query = QString(400, QChar('q')) + "end";
    scenes.push_back({"longquery", longQuery, {1280, 800}, 4});
    BoardContent renaming = fewTiles();
    renaming.renaming = renaming.selected = 1;
    renaming.renameText = "Writing and thinking";
    scenes.push_back({"rename", renaming});
    renaming.renameText = QString(200, QChar('m'));
    scenes.push_back({"longrename", renaming});
    BoardContent refused = fewTiles();
    refused.error = "Another desktop is already called “Mail”.";
    scenes.push_back({"error", refused});
    BoardContent expanded = fewTiles();
    expanded.expanded = expanded.selected = 1;
    scenes.push_back({"expanded", expanded});
    BoardContent linking = fewTiles();
    linking.scope = "DELL U2720Q";
    linking.canCycleScope = linking.hasKeyboard = false;
    linking.linksAcross = linking.hasOtherBoards = true;
    linking.incoming = tile("Release planning", "hammer", 12);
    linking.target = 2;
    linking.incomingAt = layoutOf({"linking", linking}).tile(2).center();
    scenes.push_back({"linking", linking});
    return scenes;
}

QImage draw(const Scene& scene, Appearance appearance, double devicePixelRatio) {
    QImage image(scene.size * devicePixelRatio, QImage::Format_RGB32);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::magenta);
    TilePictures pictures;
    BoardPainter board(pictures);
    board.setLook(Theme::of(appearance), false, devicePixelRatio);
    QPainter painter(&image);
    board.paint(painter, QRectF({}, scene.size), scene.content, layoutOf(scene), {});
    return image;
}

/// How many pixels of a row, from `from` up to `to` in points, show more than the backdrop, whose gradient
/// and noise are allowed for.
int strayPixels(const QImage& image, int y, double from, double to, const Theme& theme) {
    const double part = static_cast<double>(y) / image.height();
    const auto differs = [part](int top, int bottom, int seen) {
        return std::abs(top + (bottom - top) * part - seen) > 1.5;
    };
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    const double scale = image.devicePixelRatio();
    const int end = std::min(static_cast<int>(to * scale), image.width());
    int strays = 0;
    for (int x = std::max(0, static_cast<int>(from * scale)); x < end; ++x) {
        strays += differs(theme.backdropTop.red(), theme.backdropBottom.red(), qRed(row[x])) ||
                  differs(theme.backdropTop.green(), theme.backdropBottom.green(), qGreen(row[x])) ||
                  differs(theme.backdropTop.blue(), theme.backdropBottom.blue(), qBlue(row[x]));
    }
    return strays;
}

/// Beside the block of tiles, and between two tiles in the first row, only the backdrop may show.
void expectNothingSpills(const Scene& scene, const QImage& image, const Theme& theme) {
    const BoardLayout layout = layoutOf(scene);
    const double left = layout.query().left() - metrics::tileBleed - 2;
    const double right = layout.query().right() + metrics::tileBleed + 12;
    const bool hasGap = scene.content.columns >= 3 && scene.content.selected == 0u;
    for (int y = 0; y < image.height(); ++y) {
        EXPECT_EQ(strayPixels(image, y, 0, left, theme), 0) << "row " << y;
        EXPECT_EQ(strayPixels(image, y, right, scene.size.width(), theme), 0) << "row " << y;
        const double point = y / image.devicePixelRatio();
        if (!hasGap || point < layout.tile(0).top() || point > layout.tile(0).bottom()) continue;
        const double gap = layout.tile(1).right() + metrics::gap / 2;
        EXPECT_EQ(strayPixels(image, y, gap - 1, gap + 1, theme), 0) << "row " << y;
    }
}

/// Draws every scene in both appearances and at two resolutions. With a folder in LUMNARA_PICTURES the
/// pictures are left there to be looked at.
TEST(BoardPictures, keepTextsInTheirPlacesWhateverTheyAre) {
    const QString folder = qEnvironmentVariable("LUMNARA_PICTURES");
    if (!folder.isEmpty()) QDir().mkpath(folder);
    for (const Scene& scene : scenes()) {
        for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
            for (const int scale : {1, 2}) {
                SCOPED_TRACE(scene.name);
                const QImage image = draw(scene, appearance, scale);
                const bool covered = scene.content.expanded || scene.size.width() < 400;
                if (!covered) expectNothingSpills(scene, image, Theme::of(appearance));
                if (folder.isEmpty()) continue;
                const QString look = appearance == Appearance::dark ? "dark" : "light";
                EXPECT_TRUE(image.save(
                    QStringLiteral("%1/%2-%3-%4x.png").arg(folder, QString(scene.name), look).arg(scale)));
            }
        }
    }
}

TEST(BoardPictures, tellTheCurrentAndTheSelectedTile) {
    const Scene scene{"few", fewTiles()};
    const BoardLayout layout(
        {.surface = scene.size, .tiles = 4, .columns = 4, .restingTiles = 4, .restingColumns = 4});
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        const QImage image = draw(scene, appearance, 1);
        const auto chipColor = [&](int position) {
            return image.pixelColor((layout.tile(position).topLeft() + QPointF(22, 36)).toPoint());
        };
        EXPECT_EQ(chipColor(0), scene.content.tiles[0].color) << "the current one in its own colour";
        EXPECT_NE(chipColor(1), scene.content.tiles[1].color);
        const auto ringColor = [&](int position) {
            return image.pixelColor(
                (layout.tile(position).center() - QPointF(layout.tile(position).width() / 2 + 4, 0))
                    .toPoint());
        };
        EXPECT_EQ(ringColor(0), Theme::of(appearance).selectionRing);
        EXPECT_NE(ringColor(1), Theme::of(appearance).selectionRing);
    }
}

} // namespace
} // namespace lumnara
