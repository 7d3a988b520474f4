#pragma once

#include <QColor>
#include <QPointF>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

struct Desktop;
class QuickSwitcherModel;

/// What one tile shows.
struct TileContent {
    std::string key;
    QString name;
    QString detail; ///< the quieter line under the name; may be empty
    QString aliases;
    QString symbol;
    QColor color;  ///< invalid for a desktop without a colour
    int digit = 0; ///< the key that goes there, 1 to 9; 0 for none
    bool isNamed = false;
    bool isCurrent = false;
    bool isDimmed = false;
    bool isLinked = false;

    bool operator==(const TileContent&) const = default;
};

/// What one surface of the Board shows, in the toolkit's values.
struct BoardContent {
    QString query;
    QString error;
    std::vector<TileContent> tiles;
    int columns = 1;
    double tileWidth = 196;
    double nameSize = 18;
    /// Positions in `tiles`.
    std::optional<std::size_t> selected;
    std::optional<std::size_t> renaming;
    std::optional<std::size_t> expanded;
    QString renameText;
    /// Which displays are listed; empty where there is only one.
    QString scope;
    bool canCycleScope = false;
    /// Other screens have Boards of their own.
    bool hasOtherBoards = false;
    /// A tile that is dragged to another screen is linked there.
    bool linksAcross = false;
    /// The tile that is dragged in from another screen, where the pointer holds it in the screen's pixels,
    /// and the position in `tiles` of what it would be linked with.
    std::optional<TileContent> incoming;
    QPointF incomingAt;
    std::optional<std::size_t> target;
    /// The keys come to this surface.
    bool hasKeyboard = true;

    bool operator==(const BoardContent&) const = default;
};

BoardContent contentOf(const QuickSwitcherModel& model);

/// The desktop's own colour, else the one that its name suggests; invalid for a desktop without a name.
QColor colorOf(const Desktop& desktop);

/// The colour that a record or the palette names: "#RRGGBB" or a colour name; invalid for any other text.
QColor colorNamed(const std::string& text);

} // namespace lumnara
