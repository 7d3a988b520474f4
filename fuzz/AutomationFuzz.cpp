// Arbitrary bytes as automations.json, as the actions of an automation in it, and as the texts of actions:
// what is written has to read back as it was, and nothing but an exception may come of what can't be read.
// The first byte chooses.

#include "core/automation/ActionRules.h"
#include "core/automation/AutomationCodec.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

namespace lumnara {
namespace {

void requireSame(bool isSame, const std::string& text) {
    if (isSame) return;
    std::fprintf(stderr, "comes back different from:\n%s\n", text.c_str());
    std::abort();
}

void read(const std::string& text) {
    std::optional<AutomationFile> file;
    try {
        file = AutomationCodec::decode(text);
    } catch (const std::exception&) {
        return;
    }
    const std::string written = AutomationCodec::encode(*file);
    requireSame(AutomationCodec::decode(written) == *file, written);
}

/// Any texts, well-formed or not, must make a file that can be read.
void write(const std::string& text) {
    AutomationFile file;
    Automation automation{.id = text, .spaceKey = text, .name = text, .icon = text, .actions = {}};
    automation.actions = {OpenAppAction{text, text},
                          OpenPathAction{text},
                          OpenURLAction{text},
                          RunShortcutAction{text},
                          RunShellAction{text},
                          AppleScriptAction{text},
                          SessionAction{SessionOp::pause, text},
                          WaitAction{std::strtod(text.c_str(), nullptr)}};
    file.automations.push_back(automation);
    const std::string written = AutomationCodec::encode(file);
    requireSame(AutomationCodec::encode(AutomationCodec::decode(written)) == written, written);
    for (const AutomationAction& action : automation.actions) {
        labelOf(action);
        try {
            ActionRules::checked(action, 30);
        } catch (const std::exception&) {
            continue;
        }
    }
}

} // namespace
} // namespace lumnara

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumnara;
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string around = R"({"schemaVersion":1,"automations":[{"id":"A","spaceKey":"k","name":"n",)"
                               R"("icon":"i","trigger":"onEnter","isEnabled":true,"actions":[)";
    if (data[0] % 3 == 0) read(text);
    if (data[0] % 3 == 1) read(around + text + "]}]}");
    if (data[0] % 3 == 2) write(text);
    return 0;
}
