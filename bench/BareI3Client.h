#pragma once

#include "core/platform/i3sway/IpcFrames.h"
#include "core/platform/i3sway/IpcReplies.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace lumnara::bench {

/// The least that a verified switch under i3 costs: a command and a reading in one write, and their answers.
class BareI3Client {
public:
    explicit BareI3Client(const std::string& path)
        : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        if (::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("i3 does not listen at " + path);
    }
    BareI3Client(const BareI3Client&) = delete;
    ~BareI3Client() { ::close(socket_); }

    void switchTo(const std::string& workspace) {
        send(encodeFrame(IpcType::command, "workspace \"" + workspace + "\"") +
             encodeFrame(IpcType::workspaces, ""));
        answer();
        if (!isShown(answer(), workspace)) throw std::runtime_error("the bare switch did not land");
    }
    bool shows(const std::string& workspace) {
        send(encodeFrame(IpcType::workspaces, ""));
        return isShown(answer(), workspace);
    }

private:
    void send(const std::string& bytes) {
        if (::send(socket_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("i3 does not read");
    }
    std::string answer() {
        for (;;) {
            if (auto frame = frames_.next()) return frame->payload;
            char bytes[65536];
            const ssize_t got = ::recv(socket_, bytes, sizeof bytes, 0);
            if (got <= 0) throw std::runtime_error("i3 has gone");
            frames_.append({bytes, static_cast<std::size_t>(got)});
        }
    }
    static bool isShown(const std::string& json, const std::string& workspace) {
        const auto workspaces = parseWorkspaces(json);
        return std::ranges::any_of(workspaces,
                                   [&](const auto& each) { return each.visible && each.name == workspace; });
    }

    int socket_;
    FrameReader frames_;
};

} // namespace lumnara::bench
