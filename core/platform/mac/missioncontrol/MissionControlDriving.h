#pragma once

#include "core/async/TaskFwd.h"
#include "core/model/SpaceSnapshot.h"
#include "core/platform/mac/missioncontrol/SpacesBarButton.h"
#include "core/switching/SwitchError.h"

#include <optional>
#include <string>

namespace lumnara {

/// What a person does in Mission Control, in small steps: everything that touches the Dock and the event
/// stream is behind it. Nothing here throws; what can't be read or done gives nothing or false. Points and
/// frames are in points of the arrangement of all displays, from its top left. Main thread; each call may
/// block for as long as the Dock takes to answer.
class MissionControlDriving {
public:
    virtual ~MissionControlDriving() = default;

    virtual bool isAccessibilityTrusted() = 0;
    /// Whether the system rearranges Spaces by recent use; true when it doesn't say.
    virtual bool mruSpacesEnabled() = 0;
    /// What forbids scripting right now, or nothing.
    virtual std::optional<SwitchError> blockingReason() = 0;
    virtual bool isOpen() = 0;
    /// Of an attached display, else nothing.
    virtual std::optional<Rect> displayFrame(const DisplayID& display) = 0;

    /// Asks for Mission Control; it shows a while later, if at all.
    virtual void open() = 0;
    virtual void pressEscape() = 0;

    /// The thumbnails on that display from left to right, which is the order of its desktops. Nothing when
    /// there is no bar, empty when it has no thumbnails.
    virtual std::optional<SpacesBarButtons> spacesBarButtons(const std::optional<Rect>& displayFrame) = 0;
    /// Asks for the removal of one of the thumbnails of the bar that was read last, which is read again
    /// first. False when the thumbnail at `index` isn't titled exactly so, or when the Dock refuses.
    virtual bool removeDesktop(int index, const std::string& title) = 0;

    virtual void movePointer(Point to) = 0;
    /// Press, drags and release read as one gesture of the left button.
    virtual void pressPointer(Point at) = 0;
    virtual void dragPointer(Point to) = 0;
    virtual void releasePointer(Point at) = 0;
    /// (0, 0) when it can't be told.
    virtual Point pointerLocation() = 0;
    /// Places the pointer without an event.
    virtual void warpPointer(Point to) = 0;

    /// Waits. A cancelled task doesn't wait on, and is told nothing of it: a script that has the screen plays
    /// to its end. The driver must live until then.
    virtual async::Task<> pause(double seconds) = 0;
};

} // namespace lumnara
