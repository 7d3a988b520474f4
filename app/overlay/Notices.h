#pragma once

#include "core/async/Signal.h"

#include <functional>
#include <string>
#include <vector>

namespace lumnara {

/// A short text shown on screen for a while.
struct Notice {
    std::string text;
    double seconds = 0;
    bool operator==(const Notice&) const = default;
};

/// How long a sentence about something that did not work stays on screen.
inline constexpr double failureNoticeSeconds = 6.0;

/// The same of one beside which all else went on.
inline constexpr double briefNoticeSeconds = 2.2;

/// The one place that shows a notice. Main thread.
class Notices {
public:
    void show(Notice notice);
    void show(std::string text, double seconds = failureNoticeSeconds) {
        show(Notice{std::move(text), seconds});
    }

    /// Hands each notice to `onNotice`. What was shown while nobody listened, as at start-up, waits for the
    /// first listener and goes to it before this returns.
    [[nodiscard]] async::Subscription subscribe(std::function<void(const Notice&)> onNotice);

private:
    async::Signal<const Notice&> shown_;
    std::vector<Notice> waiting_;
    bool listened_ = false;
};

} // namespace lumnara
