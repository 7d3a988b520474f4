#pragma once

#include "core/platform/mac/missioncontrol/SpacesBarButton.h"
#include "core/seams/Accessibility.h"
#include "core/seams/Workspace.h"

#include <memory>
#include <optional>
#include <vector>

namespace lumnara {

/// The elements of the Dock that make up Mission Control, found anew at each call. An attribute that is
/// missing, or of another type than expected, is as good as a missing element. Main thread; each call blocks
/// for as long as the Dock takes.
class DockTree {
public:
    using Element = std::shared_ptr<AccessibilityElement>;
    struct Thumbnail {
        SpacesBarButton button;
        Element element;
    };

    /// Both must outlive the tree.
    DockTree(Accessibility& accessibility, Workspace& workspace)
        : accessibility_(accessibility),
          workspace_(workspace) {}

    /// Null while Mission Control doesn't show.
    Element missionControl();
    /// The thumbnails of the display with this frame, from left to right. Nothing when there is no bar.
    std::optional<std::vector<Thumbnail>> thumbnails(const std::optional<Rect>& displayFrame);
    /// The button that adds a desktop to the display with this frame, or null.
    Element addButton(const std::optional<Rect>& displayFrame);
    /// The first button anywhere in the Dock that describes itself as adding a desktop or a Space, or null.
    Element describedAddButton();

private:
    Element dock();
    /// The element of one display; that of all displays when it can't be told which it is.
    Element displayElement(const std::optional<Rect>& displayFrame);

    Accessibility& accessibility_;
    Workspace& workspace_;
};

/// The system's own names of actions, and what performing one gives when it was taken.
namespace DockActions {
inline constexpr const char* press = "AXPress";
inline constexpr const char* removeDesktop = "AXRemoveDesktop";
inline constexpr int success = 0;
} // namespace DockActions

} // namespace lumnara
