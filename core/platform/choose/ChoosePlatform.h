#pragma once

#include "core/async/Loop.h"
#include "core/platform/Platform.h"
#include "core/platform/linux/Environment.h"

#include <filesystem>
#include <memory>

namespace lumnara {

class SimulatedMac;

/// What a session draws on.
enum class WindowSystem { x11, sway };

/// Which window system to draw on. Waits a moment for a session that has just begun to bring its window
/// manager up. Throws WindowManagerError::noDisplay when none answers, and std::runtime_error for a platform
/// that can't be asked for.
WindowSystem chooseWindowSystem(const Environment& environment);

/// What the program runs on.
struct ChosenPlatform {
    /// The Mac, which has no screens yet, where one is simulated; else null.
    std::shared_ptr<SimulatedMac> simulatedMac;
    /// Where the program keeps what it knows of this platform.
    std::filesystem::path folder;
    Platform platform;
};

/// The best platform that the session offers, or a simulated Mac where there is none or the user asks for it.
/// `folder` is where the names of desktops are kept. Throws as chooseWindowSystem().
ChosenPlatform choosePlatform(async::Loop& loop, WindowSystem windowSystem, const Environment& environment,
                              const std::filesystem::path& folder);

} // namespace lumnara
