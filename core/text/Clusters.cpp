#include "core/text/Clusters.h"

#include "core/text/Utf8.h"

namespace lumnara::text {
namespace {

using Break = GraphemeBreak;

bool isControl(Break value) { return value == Break::cr || value == Break::lf || value == Break::control; }

} // namespace

bool ClusterBoundary::joins(const CodePointInfo& info) const {
    const Break next = info.graphemeBreak;
    if (last_ == Break::cr && next == Break::lf) return true;
    if (isControl(last_) || isControl(next)) return false;
    const bool toVowel = next == Break::v || next == Break::lv || next == Break::lvt;
    if (last_ == Break::l && (next == Break::l || toVowel)) return true;
    if ((last_ == Break::lv || last_ == Break::v) && (next == Break::v || next == Break::t)) return true;
    if ((last_ == Break::lvt || last_ == Break::t) && next == Break::t) return true;
    if (next == Break::extend || next == Break::zwj || next == Break::spacingMark) return true;
    if (last_ == Break::prepend) return true;
    if (linked_ && info.indicConjunct == IndicConjunct::consonant) return true;
    if (joinedPictograph_ && next == Break::pictographic) return true;
    return oddIndicators_ && next == Break::regionalIndicator;
}

bool ClusterBoundary::startsBefore(const CodePointInfo& info) {
    const Break next = info.graphemeBreak;
    const bool starts = !started_ || !joins(info);
    joinedPictograph_ = pictograph_ && next == Break::zwj;
    pictograph_ = next == Break::pictographic || (pictograph_ && next == Break::extend);
    oddIndicators_ = next == Break::regionalIndicator && !oddIndicators_;
    switch (info.indicConjunct) {
    case IndicConjunct::none: consonant_ = linked_ = false; break;
    case IndicConjunct::consonant:
        consonant_ = true;
        linked_ = false;
        break;
    case IndicConjunct::linker: linked_ = consonant_; break;
    case IndicConjunct::extend: break;
    }
    last_ = next;
    started_ = true;
    return starts;
}

void Clusters::Iterator::advance() {
    const auto ascii = [&](std::size_t i) { return static_cast<unsigned char>(text_[i]) < 0x80; };
    if (end_ >= text_.size()) return;
    // Between two ASCII characters there is always a boundary, but for CR LF.
    if (ascii(end_) && (end_ + 1 == text_.size() || ascii(end_ + 1)) && text_[end_] != '\r') {
        ++end_;
        return;
    }
    const CodePoints& points = CodePoints::shared();
    ClusterBoundary boundary;
    for (std::size_t at = end_; at < text_.size(); end_ = at) {
        if (boundary.startsBefore(points.info(decodeNext(text_, at))) && end_ != begin_) return;
    }
}

std::size_t length(std::string_view text) {
    std::size_t count = 0;
    for (auto i = Clusters(text).begin(), end = Clusters(text).end(); i != end; ++i) ++count;
    return count;
}

std::string_view first(std::string_view text, std::size_t count) {
    auto cluster = Clusters(text).begin();
    const auto end = Clusters(text).end();
    for (; count > 0 && cluster != end; --count) ++cluster;
    return text.substr(0, cluster.offset());
}

std::string_view last(std::string_view text, std::size_t count) {
    const std::size_t all = length(text);
    return count >= all ? text : text.substr(first(text, all - count).size());
}

bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.starts_with(beginning) && first(text, length(beginning)) == beginning;
}

bool endsWith(std::string_view text, std::string_view ending) {
    return text.ends_with(ending) && last(text, length(ending)) == ending;
}

std::string_view withoutLast(std::string_view text) {
    const std::size_t all = length(text);
    return all == 0 ? text : first(text, all - 1);
}

} // namespace lumnara::text
