#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// A note, or what is known of its panel, could not be written. What stood on disk before still stands.
class NotesError : public Failure {
public:
    enum class Case { folderNotMade, bodyNotSaved, metaNotSaved, notDeleted };

    /// `reason` is the file system's description.
    static NotesError of(Case which, std::string reason);

    Case which() const { return which_; }
    const std::string& reason() const { return reason_; }
    bool operator==(const NotesError& other) const {
        return which_ == other.which_ && reason_ == other.reason_;
    }

private:
    NotesError(Case which, std::string reason);

    Case which_;
    std::string reason_;
};

} // namespace lumnara
