#include "app/qt/board/BoardLayout.h"

#include "app/qt/look/Theme.h"

#include <algorithm>
#include <cmath>

namespace lumnara {
namespace {

/// The block is at least this many tiles wide where they fit, so that a short list keeps room for the query.
constexpr int leastBlockColumns = 4;
/// Where the block stands in the room that is left above and below it; the eye's middle is above the middle.
constexpr double restingHeight = 0.42;

constexpr double errorHeight = 20;
constexpr double errorDistance = 7;

double gridHeight(int tiles, int columns, double tileHeight) {
    const int rows = (tiles + columns - 1) / columns;
    return rows > 0 ? rows * (tileHeight + metrics::gap) - metrics::gap : 0;
}

} // namespace

BoardLayout::BoardLayout(const Input& input) : input_(input) {
    input_.columns = std::max(1, input.columns);
    input_.restingColumns = std::max(input_.columns, input.restingColumns);
    input_.restingTiles = std::max(input.tiles, input.restingTiles);
    const double width = input.surface.width();
    const double height = input.surface.height();
    const bool low = height < 560;
    const double side = std::min(metrics::margin, width * 0.04);
    const double above = low ? 14 : metrics::margin;
    const double hintHeight = low ? 0 : 26;
    const double below = low ? 14 : hintHeight + 58;
    const double underQuery = low ? 40 : 52;
    querySize_ = low || width < 480 ? 20 : 30;
    const double queryHeight = std::round(querySize_ * 1.65);

    // The model chose the columns for the screen it was told of; on a narrower surface the tiles give way.
    const double room = width - 2 * side;
    const int fitting =
        static_cast<int>((room + metrics::gap) / (std::max(input.tileWidth, 1.0) + metrics::gap));
    const int columns = std::max(input_.restingColumns, std::min(leastBlockColumns, fitting));
    const double widest = (room + metrics::gap) / columns - metrics::gap;
    tileSize_ = {std::floor(std::min(input.tileWidth, widest)),
                 std::ceil(2 * metrics::tilePadding + metrics::chip + 36 + 2.5 * input.nameSize)};
    const double blockWidth = columns * (tileSize_.width() + metrics::gap) - metrics::gap;
    const double left = std::round((width - blockWidth) / 2);

    const double resting = gridHeight(input_.restingTiles, input_.restingColumns, tileSize_.height());
    const double spare = height - below - (queryHeight + underQuery + resting);
    const double top = std::round(std::max(above, spare * restingHeight));
    query_ = {left, top, blockWidth, queryHeight};
    error_ = {left, query_.bottom() + errorDistance, blockWidth, errorHeight};
    const double gridTop = query_.bottom() + underQuery;
    viewport_ = {left, gridTop, blockWidth, std::max(height - below - gridTop, 40.0)};
    if (hintHeight > 0) hints_ = {left, height - hintHeight - 30, blockWidth, hintHeight};
    const double grid = gridHeight(input_.tiles, input_.columns, tileSize_.height());
    // What goes on below may run close to the hints: the cut row tells that there is more.
    if (grid > viewport_.height() && hintHeight > 0) viewport_.setBottom(hints_.top() - 16);
    maximumScroll_ = std::max(0.0, grid - viewport_.height());
}

QRectF BoardLayout::scope() const { return query_.adjusted(query_.width() * 0.6, 0, 0, 0); }

QRectF BoardLayout::tile(int position) const {
    const int row = position / input_.columns;
    const int column = position % input_.columns;
    return {QPointF(viewport_.left() + column * (tileSize_.width() + metrics::gap),
                    viewport_.top() + row * (tileSize_.height() + metrics::gap)),
            tileSize_};
}

QRectF BoardLayout::expanded() const {
    const double width = std::min(560.0, input_.surface.width() - 32);
    const double height = std::min(320.0, input_.surface.height() - 32);
    return {std::round((input_.surface.width() - width) / 2),
            std::round((input_.surface.height() - height) * 0.46), width, height};
}

double BoardLayout::scrollShowing(int position, double scroll) const {
    const QRectF place = tile(position);
    // A little of the next row shows that there is one.
    const double peek = std::min(metrics::gap, (viewport_.height() - place.height()) / 2);
    const double least = place.bottom() - viewport_.bottom() + peek;
    const double most = place.top() - viewport_.top() - peek;
    // A tile that comes to rest between two pixels has blurred edges.
    return std::round(std::clamp(std::clamp(scroll, std::min(least, most), most), 0.0, maximumScroll_));
}

int BoardLayout::visibleRows() const {
    return std::max(
        1, static_cast<int>((viewport_.height() + metrics::gap) / (tileSize_.height() + metrics::gap)));
}

std::optional<int> BoardLayout::tileAt(QPointF point, double scroll) const {
    if (!viewport_.contains(point)) return std::nullopt;
    const double x = point.x() - viewport_.left();
    const double y = point.y() - viewport_.top() + scroll;
    const int column = static_cast<int>(x / (tileSize_.width() + metrics::gap));
    const int row = static_cast<int>(y / (tileSize_.height() + metrics::gap));
    const int position = row * input_.columns + column;
    if (column >= input_.columns || position >= input_.tiles) return std::nullopt;
    if (!tile(position).translated(0, -scroll).contains(point)) return std::nullopt;
    return position;
}

bool BoardLayout::isBetweenTiles(QPointF point, double scroll) const {
    for (int position = 0; position < input_.tiles; ++position) {
        const QRectF reach = tile(position)
                                 .translated(0, -scroll)
                                 .adjusted(-metrics::gap, -metrics::gap, metrics::gap, metrics::gap);
        if (reach.contains(point)) return true;
    }
    return false;
}

} // namespace lumnara
