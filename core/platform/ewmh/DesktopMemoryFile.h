#pragma once

#include "core/base/KeptFile.h"
#include "core/platform/ewmh/RememberedDesktop.h"

#include <filesystem>
#include <vector>

namespace lumnara {

/// The remembered desktops on disk ("ewmh-desktops.json"): JSON, in the order of the desktops. It matters
/// only when the X server is new and its properties are gone, so a failure is a log line and no more.
class DesktopMemoryFile {
public:
    explicit DesktopMemoryFile(std::filesystem::path path) : file_(std::move(path)) {}

    /// Nothing remembered when there is no file or it can't be read. One that can't be decoded is moved
    /// aside. A file that can't be read or moved is left as it is: nothing is saved until the next load.
    std::vector<RememberedDesktop> load(Date now);
    void save(const std::vector<RememberedDesktop>& desktops);

private:
    KeptFile file_;
    bool isLeftAlone_ = false;
};

} // namespace lumnara
