#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>

namespace lumnara::testing {

/// The system calls by which files are read and changed, by what they are for.
enum class CallKind { open, read, write, sync, rename, remove, makeFolder, truncate, status, mode };
inline constexpr std::size_t callKindCount = 10;
const char* nameOf(CallKind kind);

/// One call of a kind that fails, counted from 0, and with `lasts` all of that kind behind it.
struct CallFault {
    CallKind kind = CallKind::write;
    int number = 0;
    int error = 0;
    bool lasts = false;
};

/// Watches, through the kernel, the calls of one thread, and of those that it starts, that touch files below
/// a folder; it counts them and makes one fail as on a bad disk.
class FileCalls {
public:
    explicit FileCalls(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// Runs `work` on a thread of its own and waits; passes on what it throws.
    void run(const std::function<void()>& work);

    // From inside the work.

    /// Counts anew, and has this fault come about from now on.
    void arm(std::optional<CallFault> fault);
    /// From now on nothing is counted and nothing fails.
    void disarm();

    /// How many calls of the kind there were while it was armed last.
    int count(CallKind kind) const;
    /// How many calls were made to fail since it was armed last.
    int failures() const;

private:
    void answer(int listener);
    bool isArmed() const;
    /// The error of the call; 0 to let it through.
    int errorOf(CallKind kind);

    const std::filesystem::path folder_;
    mutable std::mutex lock_;
    bool armed_ = false;
    std::optional<CallFault> fault_;
    std::array<int, callKindCount> counts_{};
    int failures_ = 0;
};

} // namespace lumnara::testing
