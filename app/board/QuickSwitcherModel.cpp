#include "app/board/QuickSwitcherModel.h"

#include "app/DisplayName.h"
#include "core/base/Failure.h"
#include "core/base/Log.h"
#include "core/catalog/DesktopCandidates.h"
#include "core/catalog/DesktopOrder.h"
#include "core/text/Text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <string_view>
#include <utility>

namespace lumnara {

namespace {

constexpr double boardMargin = 48;
constexpr double tileGap = 20;
constexpr int maximumColumns = 6;

/// Leaves one member of each link group: the one on the preferred display, else the first.
std::vector<Desktop> withEachGroupOnce(std::vector<Desktop> tiles,
                                       const std::optional<DisplayID>& preferred) {
    std::map<std::string, const Desktop*> standing;
    for (const Desktop& tile : tiles) {
        if (!tile.isLinked()) continue;
        const Desktop*& standsIn = standing[tile.key];
        if (!standsIn || (preferred && text::equalsIgnoringCase(tile.display.uuid, preferred->uuid)))
            standsIn = &tile;
    }
    std::vector<Desktop> kept;
    for (const Desktop& tile : tiles)
        if (!tile.isLinked() || standing[tile.key] == &tile) kept.push_back(tile);
    return kept;
}

/// The tails of the keys, short enough for a log line.
std::string shortKeys(const std::vector<std::string>& keys) {
    std::string joined;
    for (const std::string& key : keys) {
        if (!joined.empty()) joined += ',';
        joined += text::last(key, 8);
    }
    return joined;
}

} // namespace

QuickSwitcherModel::QuickSwitcherModel(DesktopCatalog& catalog, const AppSettings& settings)
    : catalog_(catalog),
      settings_(settings),
      appearance_(settings.boardAppearance({})) {}

std::optional<std::string> QuickSwitcherModel::errorText() const {
    if (errorText_) return errorText_;
    if (const auto& unreadable = catalog_.lastError.get()) return unreadable->sentence;
    return std::nullopt;
}

std::string QuickSwitcherModel::displayName(const DisplayID& display) const {
    return displayNameIn(catalog_, display);
}

void QuickSwitcherModel::open(std::optional<DisplayID> display, double screenWidth, bool scopeFixed) {
    boardDisplay_ = std::move(display);
    appearance_ = settings_.boardAppearance(boardDisplay_ ? boardDisplay_->uuid : std::string());
    boardScreenWidth_ = boardDisplay_ ? screenWidth : 0;
    scopeFixed_ = scopeFixed;
    scope_.reset();
    if (scopeFixed_ && boardDisplay_) scope_ = boardDisplay_->uuid;
    displaysChanged_ = catalog_.displays.subscribe([this](const auto&) { recompute(); });
    errorChanged_ = catalog_.lastError.subscribe([this](const auto&) { changed.emit(); });
    linksChanged_ = catalog_.activeLinkCount.subscribe([this](int) { changed.emit(); });
    recompute();
}

void QuickSwitcherModel::close() {
    displaysChanged_ = {};
    errorChanged_ = {};
    linksChanged_ = {};
    incomingLink_.reset();
    menuTracking_ = recomputeDeferred_ = false;
}

void QuickSwitcherModel::reset() {
    query_.clear();
    endRename();
    expandedKey_.reset();
    errorText_.reset();
    incomingLink_.reset();
    recompute();
    const auto current = std::ranges::find_if(results_, [](const Desktop* tile) { return tile->isCurrent; });
    selectAt(current == results_.end() ? 0 : static_cast<std::size_t>(current - results_.begin()));
    changed.emit();
}

void QuickSwitcherModel::setQuery(std::string text) {
    query_ = std::move(text);
    if (menuTracking_) {
        recomputeDeferred_ = true;
    } else {
        applyQuery();
        if (!query_.empty()) selectAt(0);
    }
    changed.emit();
}

void QuickSwitcherModel::recompute() {
    if (menuTracking_) {
        recomputeDeferred_ = true;
        return;
    }
    collectTiles();
    applyQuery();
    changed.emit();
}

void QuickSwitcherModel::collectTiles() {
    const std::vector<DisplayDesktops>& displays = catalog_.displays.get();
    multipleDisplays_ = displays.size() >= 2;
    focusedDisplay_ = catalog_.focusedDisplay();
    tiles_.clear();
    for (const DisplayDesktops& shown : displays) {
        if (scope_ && !text::equalsIgnoringCase(*scope_, shown.display.uuid)) continue;
        tiles_.insert(tiles_.end(), shown.desktops.begin(), shown.desktops.end());
    }
    tiles_ = withEachGroupOnce(std::move(tiles_), boardDisplay_);
    // A change of desktop leaves the names alone, and making the index is the dear part.
    if (auto now = candidates(tiles_); now != candidates_) {
        candidates_ = std::move(now);
        index_ = MatchIndex(candidates_);
    }
}

MatchContext QuickSwitcherModel::matchContext() const {
    MatchContext context;
    context.mode = MatchContext::Mode::filter;
    // Among the desktops of one display its rank decides nothing. The one Board for all of them stands where
    // the pointer is.
    if (scope_) return context;
    context.cursorDisplay = boardDisplay_;
    context.menuBarDisplay = focusedDisplay_;
    return context;
}

void QuickSwitcherModel::applyQuery() {
    results_.clear();
    if (query_.empty()) {
        for (const Desktop& tile : tiles_) results_.push_back(&tile);
    } else {
        for (const MatchIndex::Hit& hit : FuzzyMatcher::filter(query_, index_, matchContext()))
            results_.push_back(&tiles_[hit.position]);
    }
    if (!selectedKey_ || !isListed(*selectedKey_)) selectAt(0);
    if (expandedKey_ && !isListed(*expandedKey_)) expandedKey_.reset();
    if (renamingKey_ && !isListed(*renamingKey_)) endRename();
    updateGridColumns();
}

void QuickSwitcherModel::updateGridColumns() {
    double fit = maximumColumns;
    if (boardScreenWidth_ > 0)
        fit = std::floor((boardScreenWidth_ - 2 * boardMargin + tileGap) / (appearance_.tileWidth + tileGap));
    const double tiles = static_cast<double>(results_.size());
    // The bound comes first in each pair, so that no tile width, however odd, gets past it.
    gridColumns_ = static_cast<int>(std::max(1.0, std::min(tiles, std::min<double>(maximumColumns, fit))));
}

std::optional<std::size_t> QuickSwitcherModel::position(const std::string& key) const {
    const auto found = std::ranges::find_if(results_, [&](const Desktop* tile) { return tile->key == key; });
    if (found == results_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - results_.begin());
}

void QuickSwitcherModel::selectAt(std::size_t position) {
    if (position < results_.size())
        selectedKey_ = results_[position]->key;
    else
        selectedKey_.reset();
}

std::optional<Desktop> QuickSwitcherModel::selectedDesktop() const {
    if (!selectedKey_) return std::nullopt;
    if (const Desktop* listed = tile(*selectedKey_)) return *listed;
    if (const Desktop* live = catalog_.desktop(*selectedKey_)) return *live;
    return std::nullopt;
}

bool QuickSwitcherModel::selectionCanBeDeleted() const {
    const auto selected = selectedDesktop();
    if (!selected || selected->space.kind != SpaceKind::user) return false;
    const std::vector<Desktop> beside = catalog_.desktops(selected->display.uuid);
    return std::ranges::count_if(beside, [](const Desktop& d) { return d.space.kind == SpaceKind::user; }) >
           1;
}

const Desktop* QuickSwitcherModel::tile(const std::string& key) const {
    const auto at = position(key);
    return at ? results_[*at] : nullptr;
}

void QuickSwitcherModel::select(const std::string& key) {
    if (selectedKey_ == key || !isListed(key)) return;
    selectedKey_ = key;
    changed.emit();
}

void QuickSwitcherModel::moveSelection(int dx, int dy) {
    if (results_.empty()) return;
    const int count = static_cast<int>(results_.size());
    const int from = selectedPosition();
    int next = from + dx + dy * gridColumns_;
    if (dy > 0 && next >= count && from / gridColumns_ < (count - 1) / gridColumns_) next = count - 1;
    if (next >= 0 && next < count) moveSelectionTo(next);
}

void QuickSwitcherModel::selectFirst() {
    if (!results_.empty()) moveSelectionTo(0);
}

void QuickSwitcherModel::selectLast() {
    if (!results_.empty()) moveSelectionTo(static_cast<int>(results_.size()) - 1);
}

void QuickSwitcherModel::movePage(int direction) {
    if (results_.empty()) return;
    const int last = static_cast<int>(results_.size()) - 1;
    const int from = selectedPosition();
    const int row = std::clamp(from / gridColumns_ + direction * visibleRows_, 0, last / gridColumns_);
    moveSelectionTo(std::min(row * gridColumns_ + from % gridColumns_, last));
}

void QuickSwitcherModel::setVisibleRows(int rows) { visibleRows_ = std::max(rows, 1); }

int QuickSwitcherModel::selectedPosition() const {
    const auto at = selectedKey_ ? position(*selectedKey_) : std::nullopt;
    return static_cast<int>(at.value_or(0));
}

/// The full-size tile follows, so that the keys page through the tiles one by one.
void QuickSwitcherModel::moveSelectionTo(int position) {
    selectAt(static_cast<std::size_t>(position));
    if (expandedKey_) expandedKey_ = selectedKey_;
    changed.emit();
}

std::optional<Desktop> QuickSwitcherModel::desktopAtDigit(int n) const {
    if (n < 1 || n > 9 || static_cast<std::size_t>(n) > results_.size()) return std::nullopt;
    return *results_[static_cast<std::size_t>(n) - 1];
}

void QuickSwitcherModel::toggleExpanded() {
    if (expandedKey_)
        expandedKey_.reset();
    else
        expandedKey_ = selectedKey_;
    changed.emit();
}

void QuickSwitcherModel::beginRename(const std::string& key) {
    const Desktop* named = tile(key);
    if (!named) return;
    selectedKey_ = key;
    renamingKey_ = key;
    renameText_ = named->record ? named->record->name : std::string();
    changed.emit();
}

void QuickSwitcherModel::setRenameText(std::string text) {
    renameText_ = std::move(text);
    changed.emit();
}

void QuickSwitcherModel::cancelRename() {
    endRename();
    changed.emit();
}

void QuickSwitcherModel::endRename() {
    renamingKey_.reset();
    renameText_.clear();
}

void QuickSwitcherModel::commitRename() {
    if (!renamingKey_) return;
    const std::string key = *renamingKey_;
    const std::string name = renameText_;
    endRename();
    try {
        catalog_.enterName(key, name);
        errorText_.reset();
    } catch (const std::exception&) {
        errorText_ = sentenceOf(std::current_exception());
    }
    changed.emit();
}

void QuickSwitcherModel::toggleDimmed() {
    if (const auto desktop = selectedDesktop())
        catalog_.setDimmed(desktop->key, !(desktop->record && desktop->record->isDimmed));
}

bool QuickSwitcherModel::canCycleScope() const {
    return catalog_.displays.get().size() >= 2 && !scopeFixed_ && catalog_.activeLinkCount.get() == 0;
}

void QuickSwitcherModel::cycleScope() {
    if (!canCycleScope()) return;
    const std::vector<DisplayDesktops>& displays = catalog_.displays.get();
    std::size_t next = 0;
    if (scope_) {
        while (next < displays.size() && !text::equalsIgnoringCase(displays[next].display.uuid, *scope_))
            ++next;
        ++next;
    }
    if (next < displays.size())
        scope_ = displays[next].display.uuid;
    else
        scope_.reset();
    recompute();
    if (onScopeChanged) onScopeChanged();
}

void QuickSwitcherModel::moveTile(const std::string& key, const std::string& toKey) {
    const auto from = position(key);
    const auto to = position(toKey);
    // Under a query the tiles stand in the matcher's order, which is nobody's wish.
    if (!from || !to || !query_.empty()) return;
    if (!text::equalsIgnoringCase(results_[*from]->display.uuid, results_[*to]->display.uuid)) {
        errorText_ = "A desktop stays on its display";
    } else {
        errorText_.reset();
        const Desktop* tile = results_[*from];
        results_.erase(results_.begin() + static_cast<std::ptrdiff_t>(*from));
        results_.insert(results_.begin() + static_cast<std::ptrdiff_t>(*to), tile);
    }
    changed.emit();
}

void QuickSwitcherModel::commitOrder() {
    if (!query_.empty()) return;
    std::vector<NewOrder> orders = newOrders();
    std::vector<std::string> displays;
    for (const NewOrder& order : orders) {
        log(fmt::format("Lumnara Board: saving order for display {}: {} -> {}", order.display,
                        shortKeys(order.before), shortKeys(order.after)));
        catalog_.commitOrder(order.after, order.display);
        displays.push_back(order.display);
    }
    letOthersFollow(displays);
    errorText_.reset();
    changed.emit();
    if (!displays.empty() && onOrderCommitted) onOrderCommitted(displays);
}

/// Displays that share link groups with a changed one have them in its order, and are changed with it.
void QuickSwitcherModel::letOthersFollow(std::vector<std::string>& changed) {
    const std::vector<std::string> leaders = changed;
    for (const DisplayDesktops& shown : std::vector(catalog_.displays.get())) {
        const std::string& follower = shown.display.uuid;
        for (const std::string& leader : leaders) {
            if (std::ranges::find(changed, follower) != changed.end()) break;
            const auto order = catalog_.orderFollowing(leader, follower);
            if (!order) continue;
            log(fmt::format("Lumnara Board: display {} follows {}: {}", follower, leader, shortKeys(*order)));
            catalog_.commitOrder(*order, follower);
            changed.push_back(follower);
        }
    }
}

/// Read before anything is stored: storing one display's order lays out all tiles again.
std::vector<QuickSwitcherModel::NewOrder> QuickSwitcherModel::newOrders() const {
    std::vector<NewOrder> orders;
    for (const DisplayDesktops& shown : catalog_.displays.get()) {
        std::vector<std::string> listed;
        for (const Desktop* tile : results_)
            if (text::equalsIgnoringCase(tile->display.uuid, shown.display.uuid)) listed.push_back(tile->key);
        // Of a link group only one member is listed; the others keep their places.
        NewOrder order{shown.display.uuid, DesktopOrder::keysOf(shown.desktops), {}};
        order.after = DesktopOrder::rearranged(order.before, listed);
        if (order.after != order.before) orders.push_back(std::move(order));
    }
    return orders;
}

void QuickSwitcherModel::setIncomingLink(std::optional<IncomingLink> incoming) {
    if (incomingLink_ == incoming) return;
    incomingLink_ = std::move(incoming);
    changed.emit();
}

void QuickSwitcherModel::showError(std::string sentence) {
    errorText_ = std::move(sentence);
    changed.emit();
}

void QuickSwitcherModel::setMenuTracking(bool tracking) {
    menuTracking_ = tracking;
    if (!tracking && std::exchange(recomputeDeferred_, false)) recompute();
}

} // namespace lumnara
