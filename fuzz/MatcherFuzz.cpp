// Arbitrary bytes as desktops and a query: the matcher has to answer what the plain reading answers.
//
// The first byte chooses the context; the rest is cut at newlines. The first line is the query, each further
// one a desktop, whose phrases lie between tabs. A line's length decides its number and place.

#include "tests/matching/MatcherComparison.h"

#include <cstdio>
#include <cstdlib>

namespace lumnara {
namespace {

std::vector<std::string> cut(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        pieces.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

MatchContext context(unsigned char choice) {
    MatchContext made;
    if (choice & 1) made.cursorDisplay = DisplayID{choice & 2 ? "a" : "B"};
    if (choice & 4) made.menuBarDisplay = DisplayID{choice & 8 ? "b" : "other"};
    return made;
}

Candidate desktop(const std::string& line) {
    const int size = static_cast<int>(line.size());
    Candidate made{line,
                   DisplayID{size % 3 == 0   ? "A"
                             : size % 3 == 1 ? "a"
                                             : "b"},
                   size % 4,
                   {},
                   cut(line, '\t')};
    if (size % 2 == 0) made.userNumber = size % 31;
    if (line.empty()) made.phrases.clear();
    return made;
}

} // namespace
} // namespace lumnara

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumnara;
    if (size == 0 || size > 2000) return 0;
    const std::vector<std::string> lines = cut({reinterpret_cast<const char*>(data) + 1, size - 1}, '\n');
    std::vector<Candidate> candidates;
    for (std::size_t i = 1; i < lines.size(); ++i) candidates.push_back(desktop(lines[i]));
    const std::string differs = testing::difference(lines.front(), candidates, context(data[0]));
    if (differs.empty()) return 0;
    std::fprintf(stderr, "%s differs from the plain reading\n", differs.c_str());
    std::abort();
}
