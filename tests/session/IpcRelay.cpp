#include "tests/session/IpcRelay.h"

#include <array>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace lumnara::testing {

namespace {

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

} // namespace

IpcRelay::IpcRelay(const std::filesystem::path& socket, std::string windowManager)
    : windowManager_(std::move(windowManager)),
      listening_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)),
      wake_(::eventfd(0, EFD_CLOEXEC)) {
    const sockaddr_un address = addressOf(socket);
    if (::bind(listening_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listening_, 1) != 0)
        throw std::runtime_error("no socket at " + socket.string());
    thread_ = std::thread([this] { run(); });
}

IpcRelay::~IpcRelay() {
    ::eventfd_write(wake_, 1);
    thread_.join();
    ::close(listening_);
    ::close(wake_);
}

void IpcRelay::run() {
    int client = -1;
    int server = -1;
    for (;;) {
        std::array<pollfd, 4> entries{
            {{wake_, POLLIN, 0}, {listening_, POLLIN, 0}, {client, POLLIN, 0}, {server, POLLIN, 0}}};
        ::poll(entries.data(), entries.size(), -1);
        if (entries[0].revents) break;
        if ((entries[2].revents && !passOn(client, server, true)) ||
            (entries[3].revents && !passOn(server, client, false))) {
            ::close(std::exchange(client, -1));
            ::close(std::exchange(server, -1));
        }
        if (client < 0 && entries[1].revents) {
            const sockaddr_un address = addressOf(windowManager_);
            client = ::accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
            server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
            ::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address);
            sent_ = {};
        }
    }
    if (client >= 0) ::close(client);
    if (server >= 0) ::close(server);
}

/// False when one of the two has gone.
bool IpcRelay::passOn(int from, int to, bool counts) {
    std::array<char, 65536> bytes;
    const ssize_t got = ::recv(from, bytes.data(), bytes.size(), 0);
    if (got <= 0) return false;
    if (counts) {
        sent_.append({bytes.data(), static_cast<std::size_t>(got)});
        while (sent_.next()) ++requests_;
    }
    return ::send(to, bytes.data(), static_cast<std::size_t>(got), MSG_NOSIGNAL) == got;
}

} // namespace lumnara::testing
