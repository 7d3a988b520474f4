#include "app/menu/DesktopMenuCommands.h"

#include "core/arranging/DesktopArranger.h"
#include "core/async/Task.h"
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

} // namespace

DesktopMenuCommands::DesktopMenuCommands(AppState& state, std::function<void(std::string)> onRefused)
    : state_(state),
      onRefused_(std::move(onRefused)),
      linker_(state.catalog(), state.platform().arranger.get(), state.platform().kind) {}

bool DesktopMenuCommands::carryOut(const DesktopMenuItem& chosen) {
    using Kind = DesktopMenuItem::Kind;
    switch (chosen.kind) {
    case Kind::desktop: state_.switchTo(*chosen.desktop); return true;
    case Kind::dim: state_.catalog().setDimmed(chosen.desktop->key, !chosen.isChecked); return true;
    case Kind::linkMode:
        state_.settings().displayLinkMode.set(chosen.isChecked ? DisplayLinkMode::independent
                                                               : DisplayLinkMode::linked);
        return true;
    case Kind::link: carryOut(*chosen.request); return true;
    case Kind::linkAll: linkAll(); return true;
    case Kind::header:
    case Kind::message:
    case Kind::separator:
    case Kind::submenu:
    case Kind::rename:
    case Kind::openBoard:
    case Kind::settings:
    case Kind::quit: break;
    }
    return false;
}

void DesktopMenuCommands::carryOut(LinkRequest request) {
    log(fmt::format("Lumnara link request: {} for {}", wordFor(request.kind), request.desktop.displayName()));
    running_ = async::spawn(state_.loop(), run(std::move(request)));
}

/// All desktops of the same name.
void DesktopMenuCommands::linkAll() {
    const std::vector<LinkCandidate> pairs = state_.catalog().linkCandidates();
    state_.catalog().linkAll();
    if (pairs.size() == 1) {
        state_.notices().show(fmt::format("“{}” is now on both screens.", pairs.front().first.displayName()),
                              resultNoticeSeconds);
    } else if (!pairs.empty()) {
        state_.notices().show(fmt::format("{} pairs of desktops are linked.", pairs.size()),
                              resultNoticeSeconds);
    }
}

async::Task<> DesktopMenuCommands::run(LinkRequest request) {
    try {
        const std::string text = co_await linker_.carryOut(request);
        const bool ends = request.kind == LinkRequest::Kind::unlink;
        state_.notices().show(ends ? fmt::format("“{}” is back to one screen.", request.desktop.displayName())
                                   : text,
                              resultNoticeSeconds);
    } catch (const async::Cancelled&) {
        throw;
    } catch (const std::exception&) {
        std::string sentence = sentenceOf(std::current_exception());
        if (onRefused_)
            onRefused_(std::move(sentence));
        else
            state_.notices().show(std::move(sentence));
    }
}

} // namespace lumnara
