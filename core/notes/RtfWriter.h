#pragma once

#include "core/notes/RichText.h"

#include <string>

namespace lumnara {

/// Writes the Rich Text Format, in ASCII, with fonts, colours and lists in their tables. Attachments are
/// named as RtfReader tells; their bytes are the package's business.
class RtfWriter {
public:
    /// RtfReader::read() of it has the same paragraphs.
    static std::string write(const RichText& text);
};

} // namespace lumnara
