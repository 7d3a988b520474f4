#pragma once

#include "app/settings/AppSettings.h"
#include "core/async/Signal.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/matching/FuzzyMatcher.h"
#include "core/model/Geometry.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumnara {

/// The state of one surface of the Board and its rules: what is typed, which tiles are listed, which one is
/// selected or renamed, how many columns the grid has. Nothing is drawn here and nothing is thrown. Main
/// thread.
class QuickSwitcherModel {
public:
    /// Both outlive the model.
    QuickSwitcherModel(DesktopCatalog& catalog, const AppSettings& settings);
    QuickSwitcherModel(const QuickSwitcherModel&) = delete;
    QuickSwitcherModel& operator=(const QuickSwitcherModel&) = delete;

    /// A desktop that is dragged in from another surface, to be linked with one of this.
    struct IncomingLink {
        Desktop desktop;
        /// In the screen's pixels, from its top left corner.
        Point point;
        /// The tile under the point.
        std::optional<std::string> targetKey;
        bool operator==(const IncomingLink&) const = default;
    };

    /// Something that a view shows has changed.
    async::Signal<> changed;

    const std::string& query() const { return query_; }
    /// The tiles, in display order or, under a query, in the matcher's. Valid until the next change.
    const std::vector<const Desktop*>& results() const { return results_; }
    const std::optional<std::string>& selectedKey() const { return selectedKey_; }
    const std::optional<std::string>& renamingKey() const { return renamingKey_; }
    const std::string& renameText() const { return renameText_; }
    const std::optional<std::string>& expandedKey() const { return expandedKey_; }
    /// The error line: the last refusal, or else why the desktops can't be read at the moment.
    std::optional<std::string> errorText() const;
    const std::optional<IncomingLink>& incomingLink() const { return incomingLink_; }
    /// Whether a tile that is dragged to another surface is linked there.
    bool linksAcross() const { return scopeFixed_ && catalog_.isLinkAvailable(); }
    bool multipleDisplays() const { return multipleDisplays_; }
    const std::optional<DisplayID>& boardDisplay() const { return boardDisplay_; }
    bool scopeFixed() const { return scopeFixed_; }
    /// The uuid of the display that the list is limited to; nothing means all displays.
    const std::optional<std::string>& scope() const { return scope_; }
    int gridColumns() const { return gridColumns_; }
    /// As the settings were at the last open().
    const AppSettings::BoardAppearance& appearance() const { return appearance_; }
    /// The human name of a tile's display, for a list over several displays.
    std::string displayName(const DisplayID& display) const;

    std::function<void()> onScopeChanged;
    /// A drag changed the order of these displays, by uuid.
    std::function<void(const std::vector<std::string>&)> onOrderCommitted;

    /// Puts the surface on a display, whose uuid is also the key of its appearance. The width of the screen
    /// is in points, 0 when it isn't known. With `scopeFixed` the list is that display's for good; otherwise
    /// it starts with all displays.
    void open(std::optional<DisplayID> display, double screenWidth, bool scopeFixed);
    /// The surface is down: the model no longer follows the catalog.
    void close();
    /// A fresh start at each opening: no query, the first current desktop selected, else the first tile.
    void reset();

    void setQuery(std::string text);
    void recompute();
    /// Whether the selected desktop is an ordinary one and not the only such on its display.
    bool selectionCanBeDeleted() const;
    /// The selected tile, or the live desktop under that key, or nothing.
    std::optional<Desktop> selectedDesktop() const;
    /// The listed tile, or null.
    const Desktop* tile(const std::string& key) const;
    /// Selects a tile of `results`; any other key changes nothing.
    void select(const std::string& key);
    /// One step right or left and down or up. A step past an edge is refused; the selection never wraps.
    void moveSelection(int dx, int dy);
    void selectFirst();
    void selectLast();
    /// A screenful of rows down (1) or up (-1), in the same column, at most to the last or first row.
    void movePage(int direction);
    /// How many rows the view shows at once; at least 1.
    void setVisibleRows(int rows);
    /// The n-th tile for 1 to 9, or nothing.
    std::optional<Desktop> desktopAtDigit(int n) const;
    void toggleExpanded();

    void beginRename(const std::string& key);
    void setRenameText(std::string text);
    void cancelRename();
    /// Ends the edit. A refused name leaves the old one and its sentence on the error line.
    void commitRename();

    void toggleDimmed();
    bool canCycleScope() const;
    /// All displays, then each display alone, in catalog order and around again. Not while links hold, since
    /// a linked desktop stands for those of other displays.
    void cycleScope();

    /// One step of a drag: the tile takes the place of `toKey`. Only within a display.
    void moveTile(const std::string& key, const std::string& toKey);
    /// The drag ended: stores the order of each display whose tiles stand in a new one.
    void commitOrder();

    void setIncomingLink(std::optional<IncomingLink> incoming);
    /// Puts a sentence on the error line, until the next edit that succeeds.
    void showError(std::string sentence);

    /// While a menu is open the list stands still; at its end it is recomputed once if it has to be.
    void setMenuTracking(bool tracking);

private:
    /// One display's keys as they stand in the catalog and on the Board.
    struct NewOrder {
        std::string display;
        std::vector<std::string> before;
        std::vector<std::string> after;
    };

    void collectTiles();
    MatchContext matchContext() const;
    void applyQuery();
    void updateGridColumns();
    std::optional<std::size_t> position(const std::string& key) const;
    bool isListed(const std::string& key) const { return position(key).has_value(); }
    void selectAt(std::size_t position);
    int selectedPosition() const;
    void moveSelectionTo(int position);
    void endRename();
    std::vector<NewOrder> newOrders() const;
    void letOthersFollow(std::vector<std::string>& changed);

    DesktopCatalog& catalog_;
    const AppSettings& settings_;
    AppSettings::BoardAppearance appearance_;
    /// What a query chooses from, in catalog order; results_ points into it.
    std::vector<Desktop> tiles_;
    std::vector<Candidate> candidates_;
    MatchIndex index_;
    std::vector<const Desktop*> results_;
    std::string query_;
    std::optional<std::string> selectedKey_;
    std::optional<std::string> renamingKey_;
    std::string renameText_;
    std::optional<std::string> expandedKey_;
    std::optional<std::string> errorText_;
    std::optional<IncomingLink> incomingLink_;
    bool multipleDisplays_ = false;
    std::optional<DisplayID> boardDisplay_;
    /// As the tiles were collected: a key that is pressed waits for no answer.
    std::optional<DisplayID> focusedDisplay_;
    double boardScreenWidth_ = 0;
    bool scopeFixed_ = false;
    std::optional<std::string> scope_;
    int gridColumns_ = 1;
    int visibleRows_ = 3;
    bool menuTracking_ = false;
    bool recomputeDeferred_ = false;
    async::Subscription displaysChanged_;
    async::Subscription errorChanged_;
    async::Subscription linksChanged_;
};

} // namespace lumnara
