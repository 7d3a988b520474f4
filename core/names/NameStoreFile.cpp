#include "core/names/NameStoreFile.h"

#include "core/text/Text.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

using Order = NameStoreFile::Map<std::vector<std::string>>;

/// The display's entry, spelled exactly so if there is one.
Order::const_iterator findDisplay(const Order& order, std::string_view displayUuid) {
    if (const auto exact = order.find(displayUuid); exact != order.end()) return exact;
    return std::find_if(order.begin(), order.end(), [&](const auto& entry) {
        return text::equalsIgnoringCase(entry.first, displayUuid);
    });
}

} // namespace

const DesktopRecord* NameStoreFile::record(std::string_view key) const {
    const auto found = desktops.find(key);
    return found == desktops.end() ? nullptr : &found->second;
}

DesktopRecord* NameStoreFile::record(std::string_view key) {
    return const_cast<DesktopRecord*>(std::as_const(*this).record(key));
}

const std::vector<std::string>* NameStoreFile::orderOf(std::string_view displayUuid) const {
    if (!order) return nullptr;
    const auto found = findDisplay(*order, displayUuid);
    return found == order->end() ? nullptr : &found->second;
}

void NameStoreFile::setOrder(std::string_view displayUuid, std::vector<std::string> keys) {
    if (!order) order.emplace();
    const auto found = findDisplay(*order, displayUuid);
    const std::string spelling = found == order->end() ? std::string(displayUuid) : found->first;
    order->insert_or_assign(spelling, std::move(keys));
}

void NameStoreFile::rekey(std::string_view oldKey, const std::string& newKey, std::string_view displayUuid) {
    const auto found = desktops.find(oldKey);
    if (found == desktops.end() || desktops.contains(newKey)) return;
    auto node = desktops.extract(found);
    const std::string previous = std::exchange(node.key(), newKey);
    desktops.insert(std::move(node));

    if (const std::vector<std::string>* keys = orderOf(displayUuid)) {
        std::vector<std::string> changed = *keys;
        std::replace(changed.begin(), changed.end(), previous, newKey);
        setOrder(displayUuid, std::move(changed));
    }
}

} // namespace lumnara
