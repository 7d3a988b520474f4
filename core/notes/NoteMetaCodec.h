#pragma once

#include "core/notes/NoteMeta.h"

#include <string>
#include <string_view>

namespace lumnara {

/// A note's panel state as text: pretty-printed UTF-8 JSON with sorted keys. `frame` is [[x, y], [width,
/// height]] and is left out when there is none; `updatedAt` is ISO 8601 in whole seconds.
class NoteMetaCodec {
public:
    /// A number that JSON can't express is left out, and the frame with it.
    static std::string encode(const NoteMeta& meta);
    /// A missing member has its default, and `updatedAt` then is `now`. Throws an error of the JSON library
    /// or JsonError for everything else that is not as told.
    static NoteMeta decode(std::string_view text, Date now);
};

} // namespace lumnara
