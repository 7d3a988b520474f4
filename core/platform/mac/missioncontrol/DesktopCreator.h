#pragma once

#include "core/platform/mac/missioncontrol/DesktopAdding.h"
#include "core/platform/mac/missioncontrol/MissionControlSession.h"

#include <optional>

namespace lumnara {

/// Adds a desktop to a display by Mission Control's own button: a fixed script, in which time does the
/// waiting. Main thread; one run at a time.
class DesktopCreator {
public:
    /// Desktops that macOS allows on a display.
    static constexpr int desktopsPerDisplay = 16;

    class Failure : public FailureOf<Failure, int> {
    public:
        enum class Case {
            accessibility,
            atCap,
            buttonMissing ///< the one case after which Mission Control has been on the screen
        };
        static constexpr Sentence<Case> sentences[] = {
            {Case::accessibility, "Adding a desktop needs Accessibility permission for Lumnara."},
            {Case::atCap, "macOS allows {0} desktops per display, and this display has {0}."},
            {Case::buttonMissing,
             "Mission Control did not offer an Add Desktop button. Add one from Mission Control, then reopen "
             "the Board."},
        };

        explicit Failure(Case which) : FailureOf(which, desktopsPerDisplay) {}
    };

    /// Both must outlive the creator, and the creator its tasks.
    DesktopCreator(MissionControlDriving& driver, DesktopAdding& adding)
        : driver_(driver),
          adding_(adding),
          session_(driver) {}

    /// Presses the button on the screen with this frame, which holds so many desktops. `displayFrame` tells
    /// the Dock's part for that screen, where it is known. A run that ends well has pressed the button; that
    /// a desktop came of it has to be read. Throws Failure; in every case Mission Control is asked to go and
    /// the pointer back at the end.
    async::Task<> create(Rect screen, std::optional<Rect> displayFrame, int existingCount);

private:
    bool pressAddButton(const std::optional<Rect>& displayFrame);

    MissionControlDriving& driver_;
    DesktopAdding& adding_;
    MissionControlSession session_;
};

} // namespace lumnara
