#include "app/qt/board/BoardLayout.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

/// The columns that the model would choose.
int columnsFor(double width, int tiles) {
    return std::max(1, std::min({tiles, 6, static_cast<int>((width - 96 + 20) / 216)}));
}

BoardLayout layoutFor(QSizeF surface, int tiles) {
    const int columns = columnsFor(surface.width(), tiles);
    return BoardLayout({.surface = surface,
                        .tiles = tiles,
                        .columns = columns,
                        .restingTiles = tiles,
                        .restingColumns = columns});
}

TEST(BoardLayout, keepsEverythingOnSurfacesOfAllSizes) {
    const QSizeF surfaces[] = {{200, 200},  {240, 320},   {480, 320},   {800, 480},   {1024, 600},
                               {1280, 800}, {1080, 1920}, {1920, 1080}, {2560, 1440}, {5120, 1440}};
    for (const QSizeF& surface : surfaces) {
        for (const int tiles : {0, 1, 2, 5, 7, 60, 500}) {
            SCOPED_TRACE(::testing::Message() << surface.width() << "x" << surface.height() << ", " << tiles);
            const BoardLayout layout = layoutFor(surface, tiles);
            const QRectF whole({}, surface);
            EXPECT_TRUE(whole.contains(layout.query()));
            EXPECT_TRUE(whole.contains(layout.expanded()));
            EXPECT_GE(layout.viewport().top(), layout.query().bottom());
            if (!layout.hints().isEmpty()) {
                EXPECT_TRUE(whole.contains(layout.hints()));
                EXPECT_GE(layout.hints().top(), layout.viewport().bottom());
            }
            EXPECT_GE(layout.visibleRows(), 1);
            for (int position = 0; position < tiles; ++position) {
                const double scroll = layout.scrollShowing(position, 0);
                EXPECT_LE(scroll, layout.maximumScroll());
                const QRectF place = layout.tile(position).translated(0, -scroll);
                EXPECT_GE(place.left(), 0);
                EXPECT_LE(place.right(), surface.width());
                if (layout.viewport().height() >= place.height()) {
                    EXPECT_GE(place.top(), layout.viewport().top());
                    EXPECT_LE(place.bottom(), layout.viewport().bottom());
                }
                const QPointF visible(place.center().x(), std::max(place.top(), layout.viewport().top()) + 5);
                EXPECT_EQ(layout.tileAt(visible, scroll), position);
            }
        }
    }
}

TEST(BoardLayout, keepsItsPlaceWhileTilesAreFilteredAway) {
    BoardLayout::Input input{
        .surface = {1920, 1080}, .tiles = 14, .columns = 6, .restingTiles = 14, .restingColumns = 6};
    const BoardLayout all(input);
    for (const int left : {5, 1, 0}) {
        input.tiles = left;
        input.columns = std::max(1, left);
        const BoardLayout some(input);
        EXPECT_EQ(some.query(), all.query());
        EXPECT_EQ(some.tileSize(), all.tileSize());
        EXPECT_EQ(some.tile(0), all.tile(0));
    }
}

TEST(BoardLayout, makesTilesNarrowerWhenTheSurfaceIsNarrowerThanTheModelWasTold) {
    // A screen of 2560 pixels at twice the size is 1280 points wide.
    const BoardLayout layout(
        {.surface = {1280, 720}, .tiles = 6, .columns = 6, .restingTiles = 6, .restingColumns = 6});
    EXPECT_GE(layout.tile(0).left(), 40);
    EXPECT_LE(layout.tile(5).right(), 1240);
    EXPECT_EQ(layout.tile(5).top(), layout.tile(0).top());
}

TEST(BoardLayout, tellsTilesFromTheGapsBetween) {
    const BoardLayout layout = layoutFor({1280, 800}, 4);
    const QPointF gap = layout.tile(0).center() + QPointF(layout.tile(0).width() / 2 + 10, 0);
    EXPECT_FALSE(layout.tileAt(gap, 0));
    EXPECT_TRUE(layout.isBetweenTiles(gap, 0));
    const QPointF far = layout.tile(3).bottomRight() + QPointF(60, 60);
    EXPECT_FALSE(layout.tileAt(far, 0));
    EXPECT_FALSE(layout.isBetweenTiles(far, 0));
}

} // namespace
} // namespace lumnara
