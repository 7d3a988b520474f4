#include "app/qt/board/BoardContent.h"

#include "app/board/QuickSwitcherModel.h"
#include "core/catalog/DesktopAppearance.h"

#include <QStringList>

namespace lumnara {
namespace {

/// The most digits that lead to a tile.
constexpr std::size_t digitKeys = 9;

QString text(const std::string& utf8) { return QString::fromStdString(utf8); }

QString detailOf(const Desktop& desktop, const QuickSwitcherModel& model) {
    QStringList parts;
    if (desktop.isCurrent) {
        parts << QStringLiteral("Current");
    } else if (desktop.space.kind == SpaceKind::fullscreen) {
        parts << QStringLiteral("Full screen");
    } else if (!desktop.isNamed()) {
        parts << QStringLiteral("No name yet");
    } else if (desktop.userNumber) {
        parts << QStringLiteral("Desktop %1").arg(*desktop.userNumber);
    }
    if (model.multipleDisplays() && !model.scope()) parts << text(model.displayName(desktop.display));
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

TileContent tileOf(const Desktop& desktop, const QuickSwitcherModel& model) {
    TileContent tile;
    tile.key = desktop.key;
    tile.name = text(desktop.displayName());
    tile.detail = detailOf(desktop, model);
    if (desktop.record && !desktop.record->aliases.empty()) {
        QStringList aliases;
        for (const std::string& alias : desktop.record->aliases) aliases << text(alias);
        tile.aliases = QStringLiteral("Also called %1").arg(aliases.join(QStringLiteral(", ")));
    }
    tile.symbol = text(DesktopAppearance::symbol(desktop));
    tile.color = colorOf(desktop);
    tile.isNamed = desktop.isNamed();
    tile.isCurrent = desktop.isCurrent;
    tile.isDimmed = desktop.record && desktop.record->isDimmed;
    tile.isLinked = desktop.isLinked();
    return tile;
}

QString scopeOf(const QuickSwitcherModel& model) {
    if (!model.multipleDisplays()) return {};
    if (!model.scope()) return QStringLiteral("All displays");
    return text(model.displayName(DisplayID{*model.scope()}));
}

} // namespace

BoardContent contentOf(const QuickSwitcherModel& model) {
    BoardContent content;
    content.query = text(model.query());
    content.error = text(model.errorText().value_or(std::string()));
    content.columns = model.gridColumns();
    content.tileWidth = model.appearance().tileWidth;
    content.nameSize = model.appearance().nameSize;
    content.renameText = text(model.renameText());
    content.scope = scopeOf(model);
    content.canCycleScope = model.canCycleScope();
    content.hasOtherBoards = model.scopeFixed();
    content.linksAcross = model.linksAcross();
    std::optional<std::string> target;
    if (const auto& incoming = model.incomingLink()) {
        content.incoming = tileOf(incoming->desktop, model);
        content.incomingAt = {incoming->point.x, incoming->point.y};
        target = incoming->targetKey;
    }
    for (const Desktop* desktop : model.results()) {
        const std::size_t position = content.tiles.size();
        content.tiles.push_back(tileOf(*desktop, model));
        TileContent& tile = content.tiles.back();
        if (model.query().empty() && position < digitKeys) tile.digit = static_cast<int>(position) + 1;
        if (model.selectedKey() == tile.key) content.selected = position;
        if (model.renamingKey() == tile.key) content.renaming = position;
        if (model.expandedKey() == tile.key) content.expanded = position;
        if (target == tile.key) content.target = position;
    }
    return content;
}

QColor colorOf(const Desktop& desktop) {
    if (!desktop.record) return {};
    if (desktop.record->color) {
        if (const QColor chosen = colorNamed(*desktop.record->color); chosen.isValid()) return chosen;
    }
    const auto suggested = DesktopAppearance::suggestedColor(desktop.record->name);
    return suggested ? colorNamed(std::string(*suggested)) : QColor();
}

QColor colorNamed(const std::string& name) { return QColor(text(name)); }

} // namespace lumnara
