#include "core/platform/x11/X11Monitors.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <xcb/randr.h>

namespace lumnara {

namespace {

/// The base block of an EDID in 32-bit units.
constexpr std::uint32_t edidBlockUnits = 32;

std::string humanName(const ConnectedMonitor& monitor) {
    if (!monitor.edid) return monitor.connector;
    // The name of a model holds its maker; a bare product code doesn't.
    return monitor.edid->name.empty() ? monitor.edid->maker + " " + monitor.edid->model()
                                      : monitor.edid->name;
}

} // namespace

X11Monitors::X11Monitors(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {
    changes_.push_back(connection_->arrived.subscribe([this](const xcb_generic_event_t& event) {
        if (connection_->isMonitorChange(event)) isFresh_ = false;
    }));
    changes_.push_back(connection_->lost.subscribe([this] { isFresh_ = false; }));
}

const std::vector<ScreenInfo>& X11Monitors::screens() {
    connection_->takeArrived();
    if (std::exchange(isFresh_, true)) return kept_;
    try {
        kept_ = read();
    } catch (...) {
        isFresh_ = false;
        throw;
    }
    // Without any there is nothing to show, and no event may follow.
    if (kept_.empty()) isFresh_ = false;
    return kept_;
}

std::vector<ScreenInfo> X11Monitors::read() {
    const auto found = monitors();
    std::vector<ConnectedMonitor> connected;
    for (const auto& monitor : found) connected.push_back(monitor.connected);
    const auto identities = monitorIdentities(connected);
    std::vector<ScreenInfo> screens;
    for (std::size_t i = 0; i < found.size(); ++i)
        screens.push_back({.uuid = identities[i],
                           .connector = connected[i].connector,
                           .name = humanName(connected[i]),
                           .frame = found[i].frame,
                           .isBuiltIn = isPanelConnector(connected[i].connector)});
    std::sort(screens.begin(), screens.end(), [](const ScreenInfo& a, const ScreenInfo& b) {
        return std::tie(a.frame.x, a.frame.y) < std::tie(b.frame.x, b.frame.y);
    });
    return distinctlyNamed(std::move(screens));
}

std::vector<X11Monitors::Monitor> X11Monitors::monitors() {
    auto* xcb = connection_->xcb();
    const auto list = connection_->reply<xcb_randr_get_monitors_reply_t>(
        xcb_randr_get_monitors(xcb, connection_->root(), 1));
    std::vector<Monitor> monitors;
    if (!list) return monitors;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(list.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        const auto& info = *it.data;
        Monitor monitor{{atomName(info.name), std::nullopt},
                        {static_cast<double>(info.x), static_cast<double>(info.y),
                         static_cast<double>(info.width), static_cast<double>(info.height)}};
        // A monitor of several outputs is a tiled one, whose tiles tell the same.
        if (info.nOutput > 0) monitor.connected.edid = edid(*xcb_randr_monitor_info_outputs(it.data));
        monitors.push_back(std::move(monitor));
    }
    return monitors;
}

std::optional<Edid> X11Monitors::edid(std::uint32_t output) {
    const auto property =
        connection_->reply<xcb_randr_get_output_property_reply_t>(xcb_randr_get_output_property(
            connection_->xcb(), output, connection_->atoms().edid, XCB_ATOM_ANY, 0, edidBlockUnits, 0, 0));
    if (!property || property->format != 8) return std::nullopt;
    const auto* bytes = xcb_randr_get_output_property_data(property.get());
    return parseEdid({reinterpret_cast<const char*>(bytes),
                      static_cast<std::size_t>(xcb_randr_get_output_property_data_length(property.get()))});
}

std::string X11Monitors::atomName(xcb_atom_t atom) {
    const auto name =
        connection_->reply<xcb_get_atom_name_reply_t>(xcb_get_atom_name(connection_->xcb(), atom));
    if (!name) return {};
    return {xcb_get_atom_name_name(name.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get()))};
}

} // namespace lumnara
