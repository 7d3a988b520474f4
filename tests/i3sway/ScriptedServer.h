#pragma once

#include "core/platform/i3sway/IpcFrames.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace lumnara::testing {

/// The other end of the IPC on a thread of its own, since a request blocks the thread that asks. It says what
/// the script tells it to: a reply, nonsense, or nothing.
class ScriptedServer {
public:
    struct Answer {
        std::string bytes;
        /// Close the connection behind them.
        bool close = false;
    };
    using Script = std::function<Answer(std::uint32_t type, const std::string& payload)>;

    ScriptedServer(const std::filesystem::path& socket, Script script);
    ScriptedServer(const ScriptedServer&) = delete;
    ~ScriptedServer();

    /// Sends bytes to all that are connected.
    void send(const std::string& bytes);
    void closeConnections();
    /// How many connections have been accepted so far.
    int accepted() const { return accepted_; }

private:
    void run();
    void serve(std::size_t index);

    Script script_;
    int listening_;
    int wake_;
    std::atomic<int> accepted_ = 0;
    std::atomic<bool> ending_ = false;
    struct Client {
        int fd;
        std::string received;
    };
    std::mutex mutex_;
    std::vector<Client> clients_;
    std::thread thread_;
};

/// A message with any type number, such as an event.
std::string frame(std::uint32_t type, const std::string& payload);

} // namespace lumnara::testing
