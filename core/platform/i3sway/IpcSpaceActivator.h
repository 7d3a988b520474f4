#pragma once

#include "core/platform/i3sway/IpcSession.h"
#include "core/seams/SpaceActivator.h"

#include <memory>

namespace lumnara {

/// Shows a desktop by one command to i3 or sway, which answers when it has drawn the change.
class IpcSpaceActivator : public SpaceActivator {
public:
    explicit IpcSpaceActivator(IpcSession& session) : session_(session) {}

    async::Task<std::optional<SpaceID>> activate(const Space& target, const DisplayID& display) override;
    std::shared_ptr<const DisplayID> keepFocusOn(const DisplayID& display) override;

private:
    IpcSession& session_;
    std::weak_ptr<const DisplayID> focusKept_;
};

} // namespace lumnara
