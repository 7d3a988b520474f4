#pragma once

#include "app/qt/board/BoardContent.h"
#include "app/qt/board/BoardLayout.h"
#include "app/qt/board/TilePainter.h"

#include <map>
#include <string>

namespace lumnara {

/// What moves: how far the tiles are scrolled and which of them are away from their places.
struct BoardPose {
    double scroll = 0;
    /// The tile in the pointer's hand, with its top left corner on the surface.
    std::optional<std::string> lifted;
    QPointF liftedAt;
    /// By key, how far a tile on its way still is from its place.
    std::map<std::string, QPointF> offsets;
};

/// Draws one surface of the Board.
class BoardPainter {
public:
    /// The pictures outlive the painter.
    explicit BoardPainter(TilePictures& pictures) : tiles_(pictures) {}

    /// With `translucent` the session shows through a little; without a compositor nothing could.
    void setLook(const Theme& theme, bool translucent, double devicePixelRatio);

    void paint(QPainter& painter, const QRectF& surface, const BoardContent& content,
               const BoardLayout& layout, const BoardPose& pose);

private:
    void drawBackdrop(QPainter& painter, const QRectF& surface);
    void drawQuery(QPainter& painter, const BoardContent& content, const BoardLayout& layout);
    void drawScope(QPainter& painter, const QRectF& line, const BoardContent& content, double* width);
    void drawError(QPainter& painter, const BoardContent& content, const BoardLayout& layout);
    void drawTiles(QPainter& painter, const BoardContent& content, const BoardLayout& layout,
                   const BoardPose& pose);
    void drawEdges(QPainter& painter, const BoardLayout& layout, double scroll);
    void drawThumb(QPainter& painter, const BoardLayout& layout, double scroll);
    void drawNothing(QPainter& painter, const BoardContent& content, const BoardLayout& layout);
    void drawHints(QPainter& painter, const BoardContent& content, const BoardLayout& layout);
    void drawTip(QPainter& painter, const BoardLayout& layout);
    QColor backdropAt(double part) const;

    const Theme* theme_ = &Theme::of(Appearance::dark);
    bool translucent_ = false;
    double devicePixelRatio_ = 1;
    QPixmap backdrop_; ///< one strip of the backdrop, as high as the surface
    TilePainter tiles_;
};

} // namespace lumnara
