#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// The layout of displays and Spaces can't be read.
class SpaceKitError : public Failure {
public:
    enum class Case { malformed, privateAPIUnavailable, enumerationFailed };

    static SpaceKitError malformed(std::string detail);
    static SpaceKitError privateAPIUnavailable();
    static SpaceKitError enumerationFailed();

    Case which() const { return which_; }
    /// What is wrong with the data, for `malformed`.
    const std::string& detail() const { return detail_; }
    bool operator==(const SpaceKitError& other) const {
        return which_ == other.which_ && detail_ == other.detail_;
    }

private:
    SpaceKitError(Case which, std::string sentence, std::string detail);

    Case which_;
    std::string detail_;
};

} // namespace lumnara
