#pragma once

#include "core/async/Loop.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumnara {

/// Tells when a file was written and closed, or renamed into its place, by any process, this one included.
/// A file that goes or is half written is not told of. Several changes may come as one call.
///
/// Watches the folder, since whoever replaces a file by renaming leaves a watch on the file itself behind,
/// and the folder behind a symbolic link too. Where the folder doesn't exist or the kernel has no watch left,
/// it stays silent. Main thread; it is not destroyed from inside its own call.
class FileWatch {
public:
    FileWatch(async::Loop& loop, std::filesystem::path file, std::function<void()> onChange);
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;
    ~FileWatch();

    /// Finds the folder anew: for after it has been made, or made again.
    void renew();

private:
    struct Place {
        int watch;
        std::string name;
    };
    void watchFolderOf(const std::filesystem::path& file);
    void read();
    bool isMeant(int watch, const char* name) const;

    const std::filesystem::path file_;
    const std::function<void()> onChange_;
    int inotify_;
    std::vector<Place> places_;
    std::unique_ptr<async::FdWatch> readable_;
};

} // namespace lumnara
