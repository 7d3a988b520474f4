#include "tests/mac/ScriptedMissionControl.h"

#include "core/model/SpaceKitError.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace lumnara::testing {

namespace {

DisplaySpaces* displayIn(SpaceSnapshot& layout, const std::string& uuid) {
    const auto found = std::ranges::find(layout.displays, uuid,
                                         [](const DisplaySpaces& shown) { return shown.display.uuid; });
    return found == layout.displays.end() ? nullptr : &*found;
}

bool happens(int& count) { return count > 0 && count-- > 0; }

} // namespace

ScriptedMissionControl::ScriptedMissionControl(async::TestLoop& loop, SpaceSnapshot layout) : loop_(loop) {
    double x = 0;
    for (const DisplaySpaces& shown : layout.displays) {
        frames[shown.display.uuid] = {x, 0, 1440, 900};
        x += 1440;
    }
    history_.push_back({now(), std::move(layout)});
}

void ScriptedMissionControl::called() {
    ++calls;
    if (onCall) onCall();
}

double ScriptedMissionControl::now() const { return async::secondsOf(loop_.now()); }

bool ScriptedMissionControl::showsNow() const {
    return opensAt_ && now() >= *opensAt_ && !(closesAt_ && now() >= *closesAt_);
}

std::vector<SpaceID> ScriptedMissionControl::order(const std::string& display) const {
    const SpaceSnapshot layout = this->layout();
    std::vector<SpaceID> ids;
    if (const DisplaySpaces* shown = layout.spacesOnDisplay(display))
        for (const Space& space : shown->spaces) ids.push_back(space.id);
    return ids;
}

void ScriptedMissionControl::change(const std::function<void(SpaceSnapshot&)>& by) {
    SpaceSnapshot layout = this->layout();
    by(layout);
    for (DisplaySpaces& shown : layout.displays)
        for (std::size_t i = 0; i < shown.spaces.size(); ++i)
            shown.spaces[i].indexOnDisplay = static_cast<int>(i);
    history_.push_back({now(), std::move(layout)});
}

void ScriptedMissionControl::closeByItself() {
    if (showsNow()) closesAt_ = now();
}

SpaceSnapshot ScriptedMissionControl::snapshot() {
    called();
    lastReading.reset();
    if (happens(failingReadings)) throw SpaceKitError::enumerationFailed();
    auto told = history_.rbegin();
    while (told + 1 != history_.rend() && told->since > now() - readingLag) ++told;
    lastReading = told->layout;
    if (!firstReading) firstReading = lastReading;
    return *lastReading;
}

std::optional<Rect> ScriptedMissionControl::displayFrame(const DisplayID& display) {
    called();
    const auto found = frames.find(display.uuid);
    return found == frames.end() ? std::nullopt : std::optional(found->second);
}

void ScriptedMissionControl::open() {
    called();
    ++opens;
    opensAt_ = now() + opensAfter;
    closesAt_.reset();
    expandsAt_.reset();
    approach_ = rounds_ = 0;
}

void ScriptedMissionControl::pressEscape() {
    called();
    ++escapes;
    if (showsNow() && !happens(lostEscapes) && !closesAt_) closesAt_ = now() + closesAfter;
}

std::string ScriptedMissionControl::displayAt(Point point) const {
    for (const auto& [uuid, frame] : frames)
        if (frame.contains(point)) return uuid;
    return {};
}

std::string ScriptedMissionControl::displayOf(const std::optional<Rect>& frame) const {
    for (const auto& [uuid, each] : frames)
        if (frame == each) return uuid;
    return {};
}

/// Where the thumbnails stand. The tree shows a gap as the thumbnail that is dragged there.
std::vector<Rect> ScriptedMissionControl::slots(const std::string& display, std::size_t count) const {
    const Rect& screen = frames.at(display);
    const double pitch = std::min(180.0, (screen.width - 40) / static_cast<double>(count));
    const bool shifted = grip_ && grip_->lifted && grip_->drags >= shiftAtDrag;
    const double left =
        screen.x + (screen.width - pitch * static_cast<double>(count)) / 2 + (shifted ? shift : 0);
    std::vector<Rect> made;
    for (std::size_t i = 0; i < count; ++i)
        made.push_back({left + pitch * static_cast<double>(i), screen.y + (isExpanded() ? 30 : 8),
                        pitch * 0.85, isExpanded() ? 100.0 : 18.0});
    return made;
}

/// The place that the held thumbnail would take here, among all that show.
std::size_t ScriptedMissionControl::dropPlace(const std::string& display) const {
    const std::vector<SpaceID> ids = order(display);
    const std::vector<Rect> places = slots(display, ids.size());
    std::size_t before = 0;
    for (std::size_t i = 0; i < ids.size(); ++i)
        before += ids[i] != grip_->space && places[i].x + places[i].width / 2 < pointer.x;
    return before;
}

std::vector<Space> ScriptedMissionControl::shownOrder(const std::string& display) const {
    const SpaceSnapshot layout = this->layout();
    const DisplaySpaces* shown = layout.spacesOnDisplay(display);
    std::vector<Space> spaces = shown == nullptr ? std::vector<Space>() : shown->spaces;
    if (!grip_ || !grip_->lifted || grip_->display != display) return spaces;
    const auto dragged = std::ranges::find(spaces, grip_->space, &Space::id);
    if (dragged == spaces.end()) return spaces;
    const Space space = *dragged;
    spaces.erase(dragged);
    spaces.insert(spaces.begin() + static_cast<std::ptrdiff_t>(dropPlace(display)), space);
    return spaces;
}

std::optional<SpacesBarButtons> ScriptedMissionControl::bar(const std::string& display) const {
    if (!showsNow() || !trusted || !frames.contains(display)) return std::nullopt;
    const SpaceSnapshot layout = this->layout();
    std::map<SpaceID, int> numbers;
    for (const Space& space : layout.userSpaces(display))
        numbers[space.id] = firstNumber + static_cast<int>(numbers.size());
    const std::vector<Space> spaces = shownOrder(display);
    const std::vector<Rect> places = slots(display, spaces.size());
    SpacesBarButtons buttons;
    for (std::size_t i = 0; i < spaces.size(); ++i) {
        const auto number = numbers.find(spaces[i].id);
        buttons.push_back(
            {number == numbers.end() ? "Some App" : titlePrefix + std::to_string(number->second), places[i]});
    }
    return buttons;
}

std::optional<SpacesBarButtons>
ScriptedMissionControl::spacesBarButtons(const std::optional<Rect>& displayFrame) {
    called();
    lastBarDisplay_ = displayOf(displayFrame);
    lastBar = happens(missingBars) ? std::nullopt : bar(lastBarDisplay_);
    if (lastBar && !lastBar->empty() && happens(damagedBars))
        lastBar->back().frame.x = std::numeric_limits<double>::quiet_NaN();
    return lastBar;
}

bool ScriptedMissionControl::removeDesktop(int index, const std::string& title) {
    // Nothing happens between the last look and this: no caller could see it.
    ++calls;
    const auto buttons = bar(lastBarDisplay_);
    const auto place = static_cast<std::size_t>(index);
    if (!buttons || place >= buttons->size() || (*buttons)[place].title != title) return false;
    if (happens(refusedRemovals)) return false;
    if (happens(ignoredRemovals)) return true;
    change([&](SpaceSnapshot& layout) {
        std::vector<Space>& spaces = displayIn(layout, lastBarDisplay_)->spaces;
        removed.push_back(spaces[place].id);
        spaces.erase(spaces.begin() + index);
    });
    return true;
}

void ScriptedMissionControl::movePointer(Point to) {
    called();
    ++moves;
    restsAfterWarp = false;
    pointer = to;
    const auto frame = frames.find(displayAt(to));
    if (!showsNow() || frame == frames.end()) return;
    const double fromTop = to.y - frame->second.y;
    if (fromTop >= 100)
        approach_ = 1;
    else if (approach_ > 0 && fromTop < 48)
        ++approach_;
    if (approach_ == 3 && ++rounds_ >= expandsInRound && !expandsAt_) expandsAt_ = now() + expandsAfter;
}

void ScriptedMissionControl::pressPointer(Point at) {
    called();
    ++presses;
    restsAfterWarp = false;
    held = true;
    pointer = at;
    const std::string display = displayAt(at);
    if (!isExpanded() || display.empty() || happens(lostPresses)) return;
    const SpaceSnapshot layout = this->layout();
    const DisplaySpaces* shown = layout.spacesOnDisplay(display);
    if (shown == nullptr) return;
    const std::vector<Rect> places = slots(display, shown->spaces.size());
    for (std::size_t i = 0; i < places.size(); ++i)
        if (places[i].contains(at)) grip_ = Grip{display, shown->spaces[i].id, now(), at};
}

void ScriptedMissionControl::dragPointer(Point to) {
    called();
    ++drags;
    restsAfterWarp = false;
    pointer = to;
    if (!grip_) return;
    if (grip_->drags++ == 0 && now() - grip_->since < 0.3) grip_.reset(); // a flick, not a hold
    if (!grip_) return;
    grip_->lastDrag = now();
    grip_->lifted = grip_->lifted || std::abs(to.x - grip_->at.x) >= 8;
}

void ScriptedMissionControl::releasePointer(Point at) {
    called();
    ++releases;
    restsAfterWarp = false;
    held = false;
    pointer = at;
    const auto grip = grip_;
    const bool settled = grip && grip->lifted && grip->drags > 20 && now() - grip->lastDrag >= 0.1;
    if (settled && isExpanded() && frames.contains(grip->display) && !happens(lostDrops)) {
        const std::size_t place = dropPlace(grip->display);
        change([&](SpaceSnapshot& layout) {
            DisplaySpaces* shown = displayIn(layout, grip->display);
            const auto from = std::ranges::find(shown->spaces, grip->space, &Space::id);
            if (from == shown->spaces.end()) return;
            const Space space = *from;
            shown->spaces.erase(from);
            shown->spaces.insert(shown->spaces.begin() + static_cast<std::ptrdiff_t>(place), space);
            dropped.push_back(space.id);
        });
    }
    grip_.reset();
}

Point ScriptedMissionControl::pointerLocation() {
    called();
    asked.push_back(pointer);
    return pointer;
}

void ScriptedMissionControl::warpPointer(Point to) {
    called();
    pointer = to;
    warped.push_back(to);
    restsAfterWarp = true;
}

async::Task<> ScriptedMissionControl::pause(double seconds) {
    called();
    pauses.push_back(seconds);
    co_await async::sleepUnlessCancelled(seconds);
}

bool ScriptedMissionControl::add(const std::string& display) {
    const auto frame = frames.find(display);
    if (!showsNow() || !addButtonShows || frame == frames.end()) return false;
    const Rect& screen = frame->second;
    if (pointer.x < screen.x + screen.width - 20 || pointer.y > screen.y + 80) return false;
    change([&](SpaceSnapshot& layout) {
        Space space;
        space.id = {++lastID_};
        space.uuid = "new " + space.id.text();
        space.kind = SpaceKind::user;
        added.push_back(space.id);
        displayIn(layout, display)->spaces.push_back(space);
    });
    return true;
}

bool ScriptedMissionControl::addDesktop(const std::optional<Rect>& displayFrame) {
    called();
    return addButtonHasIdentifier && add(displayOf(displayFrame));
}

bool ScriptedMissionControl::addDesktopByDescription() {
    called();
    return add(displayAt(pointer));
}

} // namespace lumnara::testing
