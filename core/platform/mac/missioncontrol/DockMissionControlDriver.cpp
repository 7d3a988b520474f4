#include "core/platform/mac/missioncontrol/DockMissionControlDriver.h"

#include "core/async/Sleep.h"
#include "core/async/Task.h"
#include "core/platform/mac/engines/SessionState.h"
#include "core/platform/mac/server/DisplayHelpers.h"

#include <cstddef>
#include <utility>
#include <variant>

namespace lumnara {

namespace {

constexpr const char* missionControlApplication = "/System/Applications/Mission Control.app";

// The window server's numbers of the fields of a mouse event.
constexpr int clickStateField = 1;
constexpr int pressureField = 2;

/// A boolean or a number, as the system reads either.
std::optional<bool> truthOf(const PropertyValue& value) {
    const auto read = [](const auto& stored) -> std::optional<bool> {
        if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(stored)>>)
            return stored != 0;
        else
            return std::nullopt;
    };
    return std::visit(read, value.storage());
}

} // namespace

bool DockMissionControlDriver::mruSpacesEnabled() {
    const auto value = seams_.preferences.value("mru-spaces", "com.apple.dock");
    return !value || truthOf(*value).value_or(true);
}

std::optional<SwitchError> DockMissionControlDriver::blockingReason() {
    return SessionState::blockingReason(seams_.session, seams_.windowServer);
}

std::optional<Rect> DockMissionControlDriver::displayFrame(const DisplayID& display) {
    const auto screen = display.isMain() ? DisplayHelpers::mainScreen(seams_.screens.screens())
                                         : DisplayHelpers::screen(seams_.screens, display.uuid);
    return screen ? std::optional(screen->frame) : std::nullopt;
}

void DockMissionControlDriver::open() { seams_.workspace.openFile(missionControlApplication); }

void DockMissionControlDriver::pressEscape() {
    for (const bool isDown : {true, false})
        seams_.events.post({.origin = KeyEvent{KeyCode::escape, isDown}}, EventTap::hid);
}

std::optional<SpacesBarButtons>
DockMissionControlDriver::spacesBarButtons(const std::optional<Rect>& displayFrame) {
    lastDisplayFrame_ = displayFrame;
    const auto thumbnails = tree_.thumbnails(displayFrame);
    if (!thumbnails) return std::nullopt;
    SpacesBarButtons buttons;
    for (const DockTree::Thumbnail& thumbnail : *thumbnails) buttons.push_back(thumbnail.button);
    return buttons;
}

bool DockMissionControlDriver::removeDesktop(int index, const std::string& title) {
    if (!lastDisplayFrame_) return false;
    const auto thumbnails = tree_.thumbnails(*lastDisplayFrame_);
    if (!thumbnails || index < 0 || static_cast<std::size_t>(index) >= thumbnails->size()) return false;
    const DockTree::Thumbnail& thumbnail = (*thumbnails)[static_cast<std::size_t>(index)];
    return thumbnail.button.title == title &&
           thumbnail.element->perform(DockActions::removeDesktop) == DockActions::success;
}

void DockMissionControlDriver::movePointer(Point to) { postMouse(MouseEventType::moved, to); }
void DockMissionControlDriver::pressPointer(Point at) { postMouse(MouseEventType::leftDown, at); }
void DockMissionControlDriver::dragPointer(Point to) { postMouse(MouseEventType::leftDragged, to); }
void DockMissionControlDriver::releasePointer(Point at) { postMouse(MouseEventType::leftUp, at); }

/// Press, drags and release carry what makes them one gesture.
void DockMissionControlDriver::postMouse(MouseEventType type, Point at) {
    SyntheticEvent event{.origin = MouseEvent{type, at, MouseButton::left}, .source = source_};
    if (type != MouseEventType::moved) event.set(clickStateField, std::int64_t{1});
    if (type == MouseEventType::leftDown || type == MouseEventType::leftDragged)
        event.set(pressureField, 1.0);
    seams_.events.post(event, EventTap::hid);
}

Point DockMissionControlDriver::pointerLocation() { return seams_.events.pointer().value_or(Point{}); }

async::Task<> DockMissionControlDriver::pause(double seconds) {
    co_await async::sleepUnlessCancelled(seconds);
}

bool DockMissionControlDriver::addDesktop(const std::optional<Rect>& displayFrame) {
    const auto button = tree_.addButton(displayFrame);
    return button && button->perform(DockActions::press) == DockActions::success;
}

bool DockMissionControlDriver::addDesktopByDescription() {
    const auto button = tree_.describedAddButton();
    return button && button->perform(DockActions::press) == DockActions::success;
}

} // namespace lumnara
