#pragma once

#include "core/base/Failure.h"

namespace lumnara {

/// Why the removal of desktops did not begin; nothing has been changed.
class DesktopRemoveError : public Failure {
public:
    enum class Case { notAUserDesktop, lastOnDisplay, notOnDisplay };

    explicit DesktopRemoveError(Case which);

    Case which() const { return which_; }
    bool operator==(const DesktopRemoveError& other) const { return which_ == other.which_; }

private:
    Case which_;
};

} // namespace lumnara
