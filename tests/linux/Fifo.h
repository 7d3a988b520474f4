#pragma once

#include "core/platform/linux/OwnedFd.h"

#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace lumnara::testing {

/// Waits for a descriptor, and gives up on a test that hangs.
inline bool awaitReadable(int fd) {
    constexpr int patience = 20'000;
    pollfd waiting{fd, POLLIN, 0};
    return ::poll(&waiting, 1, patience) == 1;
}

/// A named pipe by which a child tells a test how far it is, and the other way round.
class Fifo {
public:
    explicit Fifo(std::filesystem::path path) : path_(std::move(path)) {
        ::mkfifo(path_.c_str(), 0600);
        fd_ = OwnedFd(::open(path_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    }

    std::string path() const { return path_.string(); }
    /// Waits for a line and returns it without its end.
    std::string line() {
        std::string::size_type end = 0;
        while ((end = read_.find('\n')) == std::string::npos) {
            if (!awaitReadable(fd_.get())) throw std::runtime_error("nobody wrote to " + path());
            char buffer[4096];
            const ssize_t count = ::read(fd_.get(), buffer, sizeof buffer);
            if (count > 0) read_.append(buffer, static_cast<std::size_t>(count));
        }
        std::string result = read_.substr(0, end);
        read_.erase(0, end + 1);
        return result;
    }
    void write(const std::string& line) {
        const std::string text = line + "\n";
        if (::write(fd_.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            throw std::runtime_error("can't write to " + path());
    }

private:
    std::filesystem::path path_;
    OwnedFd fd_;
    std::string read_;
};

} // namespace lumnara::testing
