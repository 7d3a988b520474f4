#include "core/platform/i3sway/WorkspaceOrder.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>
#include <utility>

namespace lumnara::WorkspaceOrder {

namespace {

using Desktops = std::vector<const RegisteredDesktop*>;

const std::string passingPrefix = std::to_string(passingNumber) + " passing ";

/// Whether the number is its own: that of a title ("2nd floor") goes with the title.
bool isNumbered(const RegisteredDesktop& desktop) {
    const std::uint64_t number = sortNumber(desktop.nextName());
    return number != noNumber && number == sortNumber(desktop.ownName);
}

/// The names in this order of desktops, with the numbers handed out anew.
std::vector<std::string> namesIn(const Desktops& order) {
    std::vector<std::string> numbers;
    for (const RegisteredDesktop* desktop : order)
        if (isNumbered(*desktop)) numbers.emplace_back(leadingDigits(desktop->nextName()));
    std::ranges::sort(numbers, {}, sortNumber);
    std::vector<std::string> names;
    auto next = numbers.begin();
    for (const RegisteredDesktop* desktop : order)
        names.push_back(isNumbered(*desktop) ? renumbered(desktop->nextName(), *next++)
                                             : desktop->nextName());
    return names;
}

Desktops unnumbered(Desktops desktops) {
    std::erase_if(desktops, [](const RegisteredDesktop* desktop) {
        return !desktop->handle || sortNumber(desktop->nextName()) != noNumber;
    });
    return desktops;
}

} // namespace

std::uint64_t sortNumber(const std::string& name) {
    const std::string_view digits = leadingDigits(name);
    std::uint64_t number = noNumber;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

std::string renumbered(const std::string& name, const std::string& like) {
    const std::string_view digits = leadingDigits(like);
    const std::string_view own = leadingDigits(name);
    if (digits.empty() || own.empty()) return name;
    return std::string(digits) + name.substr(own.size());
}

std::vector<SpaceID> keepable(const Desktops& desired) {
    const std::vector<std::string> names = namesIn(desired);
    std::vector<std::pair<std::uint64_t, std::size_t>> sorted;
    for (std::size_t place = 0; place < desired.size(); ++place)
        sorted.emplace_back(sortNumber(names[place]), place);
    std::ranges::sort(sorted);
    std::vector<SpaceID> ids;
    for (const auto& [number, place] : sorted) ids.push_back(desired[place]->id);
    return ids;
}

std::vector<Step> steps(const Desktops& current, const Desktops& order, IpcDialect dialect) {
    std::set<std::string> present;
    for (const RegisteredDesktop* desktop : order)
        if (desktop->handle) present.insert(workspaceKey(desktop->nextName()));

    std::vector<Step> passing;
    std::vector<Step> last;
    const auto give = [&](const RegisteredDesktop& desktop, const std::string& name) {
        if (desktop.handle && present.contains(workspaceKey(name)))
            passing.push_back({desktop.uuid, passingPrefix + std::to_string(passing.size())});
        last.push_back({desktop.uuid, name});
    };
    const std::vector<std::string> names = namesIn(order);
    for (std::size_t place = 0; place < order.size(); ++place)
        if (names[place] != order[place]->nextName()) give(*order[place], names[place]);
    Desktops loose = unnumbered(order);
    if (loose == unnumbered(current)) loose.clear();
    if (dialect == IpcDialect::sway) std::ranges::reverse(loose);
    for (const RegisteredDesktop* desktop : loose) give(*desktop, desktop->nextName());
    passing.insert(passing.end(), last.begin(), last.end());
    return passing;
}

bool isPassing(const std::string& name) { return name.starts_with(passingPrefix); }

} // namespace lumnara::WorkspaceOrder
