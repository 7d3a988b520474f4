#include "core/matching/Words.h"

#include "core/text/Text.h"

namespace lumnara {

void splitWords(std::string_view text, std::vector<std::string_view>& out) {
    out.clear();
    std::size_t start = 0;
    const auto endWord = [&](std::size_t at) {
        if (at > start) out.push_back(text.substr(start, at - start));
        start = at + 1;
    };
    if (text::isAscii(text)) {
        for (std::size_t at = text.find(' '); at != std::string_view::npos; at = text.find(' ', at + 1)) {
            endWord(at);
        }
    } else {
        const text::Clusters clusters(text);
        for (auto cluster = clusters.begin(); cluster != clusters.end(); ++cluster) {
            if (*cluster == " ") endWord(cluster.offset());
        }
    }
    endWord(text.size());
}

} // namespace lumnara
