#include "core/platform/i3sway/IpcSpaceActivator.h"

#include "core/platform/i3sway/IpcAnswer.h"

namespace lumnara {

async::Task<> IpcSpaceActivator::activate(const Space& target, const DisplayID& display) {
    const auto answer = std::make_shared<IpcAnswer>();
    session_.activate(target.id, display, focusKept_.lock().get(), IpcAnswer::into(answer));
    co_await IpcAnswer::arrival(answer, session_.ipc().windowManager());
}

std::shared_ptr<const DisplayID> IpcSpaceActivator::keepFocusOn(const DisplayID& display) {
    auto kept = std::make_shared<const DisplayID>(display);
    focusKept_ = kept;
    return kept;
}

} // namespace lumnara
