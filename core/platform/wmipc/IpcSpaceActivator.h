#pragma once

#include "core/platform/wmipc/IpcSession.h"
#include "core/switching/SpaceActivator.h"

#include <memory>

namespace lumnara {

struct ActivationAnswer;

/// Shows a desktop by one command to i3 or sway, which answers when it has drawn the change.
class IpcSpaceActivator : public SpaceActivator {
public:
    explicit IpcSpaceActivator(IpcSession& session) : session_(session) {}

    async::Task<> activate(const Space& target, const DisplayID& display) override;
    async::Task<> focus(const DisplayID& display) override;

private:
    async::Task<> arrivalOf(std::shared_ptr<ActivationAnswer> answer);

    IpcSession& session_;
};

} // namespace lumnara
