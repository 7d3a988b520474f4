#include "core/platform/i3sway/IpcSpaceActivator.h"

#include "core/async/Task.h"
#include "core/platform/i3sway/IpcAnswer.h"

namespace lumnara {

async::Task<std::optional<SpaceID>> IpcSpaceActivator::activate(const Space& target,
                                                                const DisplayID& display) {
    const auto answer = std::make_shared<IpcAnswer>();
    const auto told = std::make_shared<std::optional<IpcSession::Told>>();
    session_.activate(target.id, display, focusKept_.lock().get(), told, IpcAnswer::into(answer));
    co_await IpcAnswer::arrival(answer, session_.ipc().windowManager());
    co_return *told ? session_.shownOn(display, **told) : std::nullopt;
}

std::shared_ptr<const DisplayID> IpcSpaceActivator::keepFocusOn(const DisplayID& display) {
    auto kept = std::make_shared<const DisplayID>(display);
    focusKept_ = kept;
    return kept;
}

} // namespace lumnara
