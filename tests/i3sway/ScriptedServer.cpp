#include "tests/i3sway/ScriptedServer.h"

#include <array>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace lumnara::testing {

ScriptedServer::ScriptedServer(const std::filesystem::path& socket, Script script)
    : script_(std::move(script)),
      listening_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)),
      wake_(::eventfd(0, EFD_CLOEXEC)) {
    std::filesystem::remove(socket);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socket.c_str(), sizeof address.sun_path - 1);
    if (::bind(listening_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listening_, 8) != 0)
        throw std::runtime_error("no socket at " + socket.string());
    thread_ = std::thread([this] { run(); });
}

ScriptedServer::~ScriptedServer() {
    ending_ = true;
    ::eventfd_write(wake_, 1);
    thread_.join();
    closeConnections();
    ::close(listening_);
    ::close(wake_);
}

void ScriptedServer::send(const std::string& bytes) {
    const std::lock_guard lock(mutex_);
    for (const Client& client : clients_)
        if (::send(client.fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) continue;
}

void ScriptedServer::closeConnections() {
    const std::lock_guard lock(mutex_);
    for (const Client& client : clients_) ::close(client.fd);
    clients_.clear();
    ::eventfd_write(wake_, 1);
}

void ScriptedServer::run() {
    while (!ending_) {
        std::vector<pollfd> entries{{listening_, POLLIN, 0}, {wake_, POLLIN, 0}};
        {
            const std::lock_guard lock(mutex_);
            for (const Client& client : clients_) entries.push_back({client.fd, POLLIN, 0});
        }
        ::poll(entries.data(), entries.size(), -1);
        eventfd_t ignored = 0;
        if (entries[1].revents) ::eventfd_read(wake_, &ignored);
        const std::lock_guard lock(mutex_);
        for (std::size_t i = clients_.size(); i-- > 0;) serve(i);
        if (entries[0].revents) {
            clients_.push_back({.fd = ::accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC), .received = {}});
            ++accepted_;
        }
    }
}

void ScriptedServer::serve(std::size_t index) {
    Client& client = clients_[index];
    std::array<char, 4096> bytes;
    const ssize_t got = ::recv(client.fd, bytes.data(), bytes.size(), MSG_DONTWAIT);
    bool open = got != 0;
    if (got > 0) client.received.append(bytes.data(), static_cast<std::size_t>(got));
    while (open && client.received.size() >= 14) {
        std::uint32_t length = 0;
        std::uint32_t type = 0;
        std::memcpy(&length, client.received.data() + 6, 4);
        std::memcpy(&type, client.received.data() + 10, 4);
        if (client.received.size() < 14 + length) break;
        const Answer answer = script_(type, client.received.substr(14, length));
        client.received.erase(0, 14 + length);
        open =
            ::send(client.fd, answer.bytes.data(), answer.bytes.size(), MSG_NOSIGNAL) >= 0 && !answer.close;
    }
    if (open) return;
    ::close(client.fd);
    clients_.erase(clients_.begin() + static_cast<std::ptrdiff_t>(index));
}

std::string frame(std::uint32_t type, const std::string& payload) {
    return encodeFrame(static_cast<IpcType>(type), payload);
}

} // namespace lumnara::testing
