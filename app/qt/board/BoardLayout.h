#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>

namespace lumnara {

/// Where everything stands on one surface of the Board, in logical pixels. The tiles hang in a viewport that
/// scrolls; their rectangles are told as they stand with nothing scrolled.
class BoardLayout {
public:
    struct Input {
        QSizeF surface;
        int tiles = 0;
        int columns = 1;
        /// The most tiles and columns since the Board was opened. What is typed must not make the block of
        /// tiles wander over the screen, so its place follows from these.
        int restingTiles = 0;
        int restingColumns = 1;
        double tileWidth = 196;
        double nameSize = 18;
        bool operator==(const Input&) const = default;
    };

    explicit BoardLayout(const Input& input);

    const QRectF& query() const { return query_; }
    double querySize() const { return querySize_; }
    /// The end of the query line, where the listed displays are told.
    QRectF scope() const;
    const QRectF& error() const { return error_; }
    const QRectF& viewport() const { return viewport_; }
    /// Empty where the surface is too low for hints.
    const QRectF& hints() const { return hints_; }
    QSizeF tileSize() const { return tileSize_; }
    QRectF tile(int position) const;
    /// The full-size tile, over everything.
    QRectF expanded() const;

    double maximumScroll() const { return maximumScroll_; }
    /// The scroll nearest to `scroll` at which the tile stands whole in the viewport.
    double scrollShowing(int position, double scroll) const;
    /// The rows that the viewport holds whole; at least 1.
    int visibleRows() const;
    std::optional<int> tileAt(QPointF point, double scroll) const;
    /// Whether the point is so near to a tile that a click there was meant for it.
    bool isBetweenTiles(QPointF point, double scroll) const;

private:
    Input input_;
    QRectF query_;
    QRectF error_;
    QRectF viewport_;
    QRectF hints_;
    QSizeF tileSize_;
    double querySize_ = 0;
    double maximumScroll_ = 0;
};

} // namespace lumnara
