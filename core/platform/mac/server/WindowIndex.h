#pragma once

#include "core/model/Geometry.h"
#include "core/seams/WindowServer.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace lumnara {

/// A window that lives on a desktop.
struct DesktopWindow {
    WindowNumber id = 0;
    std::int32_t ownerPID = 0;
    std::string ownerName;
    std::string title;
    /// In points, from the top left corner of the first screen.
    Rect bounds;
    /// Front first: 0 is foremost.
    int zOrder = 0;

    bool operator==(const DesktopWindow&) const = default;
};

/// Tells of all windows and of the Spaces that hold them. Called on one thread at a time.
class WindowSource {
public:
    virtual ~WindowSource() = default;

    /// Front to back; empty when the list can't be read.
    virtual std::vector<DesktopWindow> windows() = 0;
    virtual std::vector<SpaceID> spaces(WindowNumber windowID) = 0;
};

/// The window server's own list: ordinary windows that can be seen and have bounds, on any Space.
class CGWindowSource : public WindowSource {
public:
    /// The window server outlives the source.
    explicit CGWindowSource(WindowServer& windowServer) : windowServer_(windowServer) {}

    std::vector<DesktopWindow> windows() override;
    std::vector<SpaceID> spaces(WindowNumber windowID) override;

private:
    WindowServer& windowServer_;
};

namespace WindowIndex {

/// The windows of each wanted Space that has any, front first, without palettes and slivers. One that is on
/// several of the Spaces is listed under each.
std::map<SpaceID, std::vector<DesktopWindow>> windows(const std::set<SpaceID>& onSpaces,
                                                      WindowSource& source);

} // namespace WindowIndex

} // namespace lumnara
