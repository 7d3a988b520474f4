#pragma once

#include <QColor>
#include <QFont>

class QPalette;

namespace lumnara {

enum class Appearance { light, dark };

Appearance appearanceOf(const QPalette& palette);

/// The session's colour scheme, told by the toolkit's palette; "light" or "dark" in LUMNARA_APPEARANCE
/// overrules it.
Appearance sessionAppearance();

/// The colours of all surfaces, in one place.
struct Theme {
    Appearance appearance;
    QColor backdropTop;
    QColor backdropBottom;
    QColor text;
    QColor secondaryText;
    QColor faintText;
    QColor hairline;
    QColor tile;
    QColor tileBorder;
    QColor selectedTile;
    QColor selectionRing;
    QColor shadow;
    QColor neutral; ///< stands in for the colour of a desktop that has none
    QColor field;   ///< the ground of a name that is being edited
    QColor error;
    QColor notice;
    QColor noticeBorder;

    static const Theme& of(Appearance appearance);

    /// A desktop's colour strong enough to be read as text or a thin line on a tile.
    QColor legible(const QColor& color) const;
};

/// Stands out from light and dark panels and menus alike.
QColor trayNeutral();

/// Lengths in logical pixels.
namespace metrics {
inline constexpr double margin = 48;
inline constexpr double gap = 20;
inline constexpr double tileRadius = 16;
inline constexpr double tilePadding = 16;
inline constexpr double chip = 44; ///< the square that holds a desktop's symbol
/// How far a tile's ring and shadow reach beyond it.
inline constexpr double tileBleed = 10;
} // namespace metrics

/// The interface's typeface at a size in logical pixels: the first installed of a short list.
QFont interfaceFont(double pixels, QFont::Weight weight = QFont::Normal);

} // namespace lumnara
