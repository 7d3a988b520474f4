#include "core/async/PollSet.h"

#include <poll.h>
#include <stdexcept>
#include <string>
#include <utility>

namespace lumnara::async {

class PollSet::Watch final : public FdWatch {
public:
    explicit Watch(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}
    ~Watch() override { entry_->watched = false; }

private:
    std::shared_ptr<Entry> entry_;
};

std::unique_ptr<FdWatch> PollSet::watch(int fd, std::function<void()> onReadable) {
    entries_.push_back(std::make_shared<Entry>(Entry{fd, std::move(onReadable)}));
    return std::make_unique<Watch>(entries_.back());
}

bool PollSet::poll(std::optional<Nanos> timeout) {
    std::erase_if(entries_, [](const auto& entry) { return !entry->watched; });
    // A copy: a callback may add and end watches, and keeps its own entry until it returns.
    const auto entries = entries_;
    std::vector<pollfd> fds;
    fds.reserve(entries.size());
    for (const auto& entry : entries) fds.push_back({entry->fd, POLLIN, 0});

    timespec limit{};
    if (timeout) {
        const auto whole = std::chrono::floor<std::chrono::seconds>(*timeout);
        limit = {static_cast<time_t>(whole.count()), static_cast<long>((*timeout - whole).count())};
    }
    // An interruption by a signal reads as "nothing yet"; the caller's loop comes round again.
    if (::ppoll(fds.data(), fds.size(), timeout ? &limit : nullptr, nullptr) <= 0) return false;

    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (fds[i].revents == 0 || !entries[i]->watched) continue;
        if ((fds[i].revents & POLLNVAL) != 0)
            throw std::logic_error("watched file descriptor " + std::to_string(fds[i].fd) + " is closed");
        entries[i]->onReadable();
    }
    return true;
}

} // namespace lumnara::async
