#pragma once

#include "core/notes/RichText.h"

#include <filesystem>
#include <optional>

namespace lumnara {

/// A rich text on disk: a folder that holds the text as "TXT.rtf" and the attachments as files beside it.
class RichTextPackage {
public:
    /// Also reads a single file of rich text. Attachments that can't be read are missing in the result.
    /// Nothing where there is no rich text. Throws std::system_error when the disk fails, which says nothing
    /// of what stands there.
    static std::optional<RichText> read(const std::filesystem::path& path);

    /// Whether a read() would give anything, from the text's beginning. Throws as read() does.
    static bool isReadable(const std::filesystem::path& path);

    /// Replaces the folder as replaceFolder() does, with those attachments that the text shows. One whose
    /// bytes the text lacks stays as the old folder has it. Throws std::system_error.
    static void write(const std::filesystem::path& path, const RichText& text);
};

} // namespace lumnara
