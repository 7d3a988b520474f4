#include "core/platform/Platform.h"

#include "core/arranging/DesktopArranger.h"
#include "core/model/SpaceProvider.h"
#include "core/seams/DesktopNamePublisher.h"
#include "core/seams/GlobalShortcuts.h"
#include "core/seams/IdleSource.h"
#include "core/seams/Screens.h"
#include "core/seams/SessionProbe.h"
#include "core/seams/SpaceActivator.h"
#include "core/seams/Workspace.h"
#include "core/switching/GestureSwitching.h"
#include "core/switching/HelperWindowSwitching.h"
#include "core/switching/SwitchError.h"

#include <memory>
#include <utility>

namespace lumnara {

Platform::Platform() = default;
Platform::Platform(Platform&&) noexcept = default;
Platform::~Platform() = default;

Platform& Platform::operator=(Platform&& other) noexcept {
    if (this == &other) return *this;
    // Member by member, what the others use would go before them.
    std::destroy_at(this);
    return *std::construct_at(this, std::move(other));
}

} // namespace lumnara
