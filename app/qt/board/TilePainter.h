#pragma once

#include "app/qt/board/BoardContent.h"
#include "app/qt/look/Theme.h"

#include <QCache>
#include <QPixmap>
#include <QRectF>

#include <vector>

class QPainter;

namespace lumnara {

/// How a tile stands out from the others. On a surface without the keyboard the selected one is only marked.
enum class TileStance { resting, marked, selected, lifted };

/// The pictures of tiles that were drawn, for all of the Board's windows together.
class TilePictures {
public:
    TilePictures();
    void clear();

private:
    friend class TilePainter;

    struct Look {
        const Theme* theme = &Theme::of(Appearance::dark);
        double nameSize = 0;
        double devicePixelRatio = 0;
        bool operator==(const Look&) const = default;
    };
    struct Key {
        Look look;
        TileContent tile;
        TileStance stance;
        QSizeF size;
        bool operator==(const Key&) const = default;
        friend std::size_t qHash(const Key& key, std::size_t seed) {
            return qHashMulti(seed, key.tile.name, key.tile.detail, static_cast<int>(key.stance));
        }
    };
    struct Ground {
        Look look;
        TileStance stance;
        QSizeF size;
        QPixmap picture;
    };

    QCache<Key, QPixmap> tiles_; ///< cost in kilobytes
    /// What all tiles of a stance and size have in common, and what takes the longest to draw.
    std::vector<Ground> grounds_;
};

/// Draws tiles, each only once for as long as it looks the same: the pictures are kept and drawn again.
class TilePainter {
public:
    /// The pictures outlive the painter.
    explicit TilePainter(TilePictures& pictures) : pictures_(pictures) {}

    /// The pictures are drawn for this theme, size of name and resolution.
    void setLook(const Theme& theme, double nameSize, double devicePixelRatio);

    void paint(QPainter& painter, const QRectF& place, const TileContent& tile, TileStance stance);
    /// The tile whose name is being edited.
    void paintRenaming(QPainter& painter, const QRectF& place, const TileContent& tile, const QString& text);
    /// The tile over everything, full size.
    void paintExpanded(QPainter& painter, const QRectF& place, const TileContent& tile);

private:
    const QPixmap& ground(TileStance stance, QSizeF size);
    QPixmap blank(QSizeF tileSize) const;
    void drawFace(QPainter& painter, const QRectF& place, const TileContent& tile) const;
    void drawGround(QPainter& painter, const QRectF& place, TileStance stance) const;
    void drawCorner(QPainter& painter, const QRectF& place, const TileContent& tile) const;
    QColor colorOf(const TileContent& tile) const;

    TilePictures& pictures_;
    TilePictures::Look look_;
};

/// A desktop's symbol on a rounded square in its colour, an invalid one standing for none; strong for a
/// desktop that its display shows.
void drawChip(QPainter& painter, const Theme& theme, const QRectF& place, const QString& symbol,
              const QColor& color, bool isCurrent);

/// The outline of a key with its label in the middle.
void drawKeycap(QPainter& painter, const Theme& theme, const QRectF& place, const QString& label);

} // namespace lumnara
