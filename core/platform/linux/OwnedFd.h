#pragma once

#include <unistd.h>
#include <utility>

namespace lumnara {

/// A file descriptor that is closed with its owner; negative for none.
class OwnedFd {
public:
    OwnedFd() = default;
    explicit OwnedFd(int fd) : fd_(fd) {}
    OwnedFd(OwnedFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    OwnedFd& operator=(OwnedFd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~OwnedFd() { reset(); }

    int get() const { return fd_; }
    bool isOpen() const { return fd_ >= 0; }
    void reset() {
        if (isOpen()) ::close(std::exchange(fd_, -1));
    }

private:
    int fd_ = -1;
};

} // namespace lumnara
