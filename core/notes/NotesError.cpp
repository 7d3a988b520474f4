#include "core/notes/NotesError.h"

#include <utility>

namespace lumnara {

namespace {

const char* notesSentence(NotesError::Case which) {
    switch (which) {
    case NotesError::Case::folderNotMade: return "The folder of the notes could not be made: ";
    case NotesError::Case::bodyNotSaved: return "The note could not be saved: ";
    case NotesError::Case::metaNotSaved: return "The place of the note could not be saved: ";
    case NotesError::Case::notDeleted: return "The note could not be deleted: ";
    }
    return "";
}

} // namespace

NotesError::NotesError(Case which, std::string reason)
    : Failure(notesSentence(which) + reason + "."),
      which_(which),
      reason_(std::move(reason)) {}

NotesError NotesError::of(Case which, std::string reason) { return {which, std::move(reason)}; }

} // namespace lumnara
