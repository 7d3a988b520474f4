#pragma once

#include "core/platform/i3sway/IpcFrames.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

namespace lumnara::testing {

/// Stands between one client and a window manager's socket, hands everything on, and counts the requests. On
/// a thread of its own, since a request blocks the thread that asks.
class IpcRelay {
public:
    /// Listens at `socket` until it is destroyed.
    IpcRelay(const std::filesystem::path& socket, std::string windowManager);
    IpcRelay(const IpcRelay&) = delete;
    ~IpcRelay();

    /// How many the client has sent so far.
    int requests() const { return requests_; }

private:
    void run();
    bool passOn(int from, int to, bool counts);

    std::string windowManager_;
    int listening_;
    int wake_;
    FrameReader sent_;
    std::atomic<int> requests_ = 0;
    std::thread thread_;
};

} // namespace lumnara::testing
