#include "app/links/LinkRequests.h"

#include "core/base/Failure.h"
#include "core/base/Log.h"

#include <exception>
#include <fmt/format.h>
#include <utility>
#include <vector>

namespace lumnara {

namespace {

/// Long enough for a sentence that needs no answer.
constexpr double resultNoticeSeconds = 3.0;

const char* wordFor(LinkRequest::Kind kind) {
    switch (kind) {
    case LinkRequest::Kind::create: return "create";
    case LinkRequest::Kind::with: return "with";
    case LinkRequest::Kind::unlink: break;
    }
    return "unlink";
}

async::Task<std::optional<SpaceID>> createWith(DesktopArranger& arranger, DisplayID display) {
    const auto made = co_await arranger.create(display);
    if (made.size() != 1) co_return std::nullopt;
    co_return made.front();
}

DesktopLinker::DesktopCreator creatorOf(DesktopArranger* arranger) {
    if (!arranger) return {};
    return [arranger](DisplayID display) { return createWith(*arranger, std::move(display)); };
}

} // namespace

LinkRequests::LinkRequests(async::Loop& loop, DesktopCatalog& catalog, Notices& notices,
                           DesktopArranger* arranger, std::function<void(std::string)> onRefused)
    : loop_(loop),
      catalog_(catalog),
      notices_(notices),
      onRefused_(std::move(onRefused)),
      linker_(catalog, creatorOf(arranger)) {}

void LinkRequests::carryOut(LinkRequest request) {
    log(fmt::format("Lumnara link request: {} for {}", wordFor(request.kind), request.desktop.displayName()));
    running_ = async::spawn(loop_, run(std::move(request)));
}

void LinkRequests::linkAll() {
    const std::vector<LinkCandidate> pairs = catalog_.linkCandidates();
    catalog_.linkAll();
    if (pairs.size() == 1) {
        notices_.show(fmt::format("“{}” is now on both screens.", pairs.front().first.displayName()),
                      resultNoticeSeconds);
    } else if (!pairs.empty()) {
        notices_.show(fmt::format("{} pairs of desktops are linked.", pairs.size()), resultNoticeSeconds);
    }
}

async::Task<> LinkRequests::run(LinkRequest request) {
    try {
        const std::string text = co_await linker_.carryOut(request);
        const bool ends = request.kind == LinkRequest::Kind::unlink;
        notices_.show(ends ? fmt::format("“{}” is back to one screen.", request.desktop.displayName()) : text,
                      resultNoticeSeconds);
    } catch (const async::Cancelled&) {
        throw;
    } catch (...) {
        std::string sentence = sentenceOf(std::current_exception());
        if (onRefused_)
            onRefused_(std::move(sentence));
        else
            notices_.show(std::move(sentence));
    }
}

} // namespace lumnara
