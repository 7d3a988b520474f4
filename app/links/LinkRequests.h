#pragma once

#include "app/links/DesktopLinker.h"
#include "app/overlay/Notices.h"
#include "core/arranging/DesktopArranger.h"
#include "core/async/Loop.h"
#include "core/async/Task.h"

#include <functional>
#include <string>

namespace lumnara {

/// Carries out what the surfaces ask of links, and tells the user what came of it. Main thread.
class LinkRequests {
public:
    /// All outlive this object; `arranger` is null where desktops can't be added. A refusal is told to
    /// `onRefused`, or as a notice without it.
    LinkRequests(async::Loop& loop, DesktopCatalog& catalog, Notices& notices, DesktopArranger* arranger,
                 std::function<void(std::string)> onRefused = {});

    /// A later request takes over from one that is still under way.
    void carryOut(LinkRequest request);
    /// Links all desktops of the same name.
    void linkAll();

private:
    async::Task<> run(LinkRequest request);

    async::Loop& loop_;
    DesktopCatalog& catalog_;
    Notices& notices_;
    const std::function<void(std::string)> onRefused_;
    DesktopLinker linker_;
    async::TaskHandle running_;
};

} // namespace lumnara
