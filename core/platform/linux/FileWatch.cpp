#include "core/platform/linux/FileWatch.h"

#include "core/base/Log.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <sys/inotify.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lumnara {

namespace {

void logUnwatched(const std::filesystem::path& file) {
    log(fmt::format("Lumnara: changes of {} are not seen: {}", file.string(),
                    std::generic_category().message(errno)));
}

} // namespace

FileWatch::FileWatch(async::Loop& loop, std::filesystem::path file, std::function<void()> onChange)
    : file_(std::move(file)),
      onChange_(std::move(onChange)),
      inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (inotify_ < 0) {
        logUnwatched(file_);
        return;
    }
    renew();
    readable_ = loop.watchReadable(inotify_, [this] { read(); });
}

FileWatch::~FileWatch() {
    readable_.reset();
    if (inotify_ >= 0) ::close(inotify_);
}

void FileWatch::renew() {
    if (inotify_ < 0) return;
    places_.clear();
    watchFolderOf(file_);
    std::error_code unresolved;
    const auto target = std::filesystem::weakly_canonical(file_, unresolved);
    if (!unresolved && target != file_) watchFolderOf(target);
}

void FileWatch::watchFolderOf(const std::filesystem::path& file) {
    // For a folder that is watched already the kernel returns the watch it has.
    const int watch =
        ::inotify_add_watch(inotify_, file.parent_path().c_str(), IN_CLOSE_WRITE | IN_MOVED_TO | IN_ONLYDIR);
    if (watch >= 0)
        places_.push_back({watch, file.filename().string()});
    else if (errno != ENOENT)
        logUnwatched(file);
}

void FileWatch::read() {
    alignas(inotify_event) char buffer[4096];
    bool changed = false;
    for (;;) {
        const ssize_t count = ::read(inotify_, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        for (ssize_t at = 0; at < count;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
            const bool lost = (event->mask & IN_Q_OVERFLOW) != 0; // it may have been ours
            changed = changed || lost || (event->len > 0 && isMeant(event->wd, event->name));
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
    }
    if (changed) onChange_();
}

bool FileWatch::isMeant(int watch, const char* name) const {
    return std::any_of(places_.begin(), places_.end(),
                       [&](const Place& place) { return place.watch == watch && place.name == name; });
}

} // namespace lumnara
