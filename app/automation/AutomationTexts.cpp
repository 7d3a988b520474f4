#include "app/automation/AutomationTexts.h"

#include "core/base/Failure.h"
#include "core/text/Text.h"

#include <utility>

namespace lumnara {
namespace {

constexpr std::array<std::string_view, std::variant_size_v<AutomationAction>> actionSymbols = {
    "macwindow", "folder", "globe", "square.stack", "terminal", "doc.text", "timer", "clock", "hourglass"};

/// The first line that isn't blank.
std::string firstLine(std::string_view script) {
    script = text::trim(script);
    return std::string(text::trim(script.substr(0, script.find('\n'))));
}

struct Detail {
    std::string operator()(const OpenAppAction& action) const { return action.bundleID; }
    std::string operator()(const OpenPathAction& action) const { return action.path; }
    std::string operator()(const RunShellAction& action) const { return firstLine(action.script); }
    std::string operator()(const AppleScriptAction& action) const { return firstLine(action.source); }
    std::string operator()(const SessionAction& action) const { return action.name.value_or(""); }
    template <class Other> std::string operator()(const Other&) const { return {}; }
};

} // namespace

std::string_view symbolOf(const AutomationAction& action) { return actionSymbols.at(action.index()); }

std::string detailOf(const AutomationAction& action) { return std::visit(Detail{}, action); }

RunResult resultOf(const AutomationRunReport& report) {
    const std::size_t all = static_cast<std::size_t>(report.succeeded) + report.failures.size();
    if (all == 0) return {"There was no action to carry out.", {}};
    if (report.failures.empty())
        return {all == 1 ? "The action succeeded." : "All " + std::to_string(all) + " actions succeeded.",
                {}};
    if (all == 1) return {"The action failed.", report.failures};
    return {std::to_string(report.succeeded) + " of " + std::to_string(all) + " actions succeeded.",
            report.failures};
}

RunResult cancelledResult() { return {"The run was cancelled.", {}}; }

std::optional<Notice> failureNotice(const AutomationRunReport& report) {
    if (report.failures.empty()) return std::nullopt;
    const std::string& failure = report.failures.front();
    return Notice{report.automation + ": " + (failure.empty() ? "failed" : failure), briefNoticeSeconds};
}

std::optional<AutomationsNotice> noticeOf(const AutomationStore& store) {
    AutomationsNotice notice;
    const auto add = [&](const std::string& sentence) {
        notice.text += (notice.text.empty() ? "" : "\n") + sentence;
    };
    if (store.loadError()) {
        add(store.loadError()->sentence());
        notice.remedy = AutomationsNotice::Remedy::load;
        notice.canEdit = false;
    } else if (store.unsaved()) {
        add("The automations could not be saved: " + sentenceOf(store.unsaved()) +
            ". The changes hold until Lumnara quits.");
        notice.remedy = AutomationsNotice::Remedy::save;
    }
    if (store.recoveredFromCorruptFile())
        add("The automations' file was damaged, so the automations begin anew. The damaged file is kept as " +
            store.recoveredFromCorruptFile()->string());
    if (notice.text.empty()) return std::nullopt;
    return notice;
}

} // namespace lumnara
