#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// A note, or what is known of its panel, could not be written. What stood on disk before still stands.
class NotesError : public FailureOf<NotesError, std::string> {
public:
    enum class Case { folderNotMade, bodyNotSaved, metaNotSaved, notDeleted };
    static constexpr Sentence<Case> sentences[] = {
        {Case::folderNotMade, "The folder of the notes could not be made: {}."},
        {Case::bodyNotSaved, "The note could not be saved: {}."},
        {Case::metaNotSaved, "The place of the note could not be saved: {}."},
        {Case::notDeleted, "The note could not be deleted: {}."},
    };

    /// `reason` is the file system's description.
    static NotesError of(Case which, std::string reason) { return NotesError(which, std::move(reason)); }

    const std::string& reason() const { return payload<0>(); }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
