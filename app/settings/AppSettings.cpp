#include "app/settings/AppSettings.h"

#include "core/base/Log.h"
#include "core/base/StrictJson.h"
#include "core/text/Text.h"

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace lumnara {

namespace {

using nlohmann::json;

constexpr const char* tileWidthKey = "tileWidth";
constexpr const char* nameSizeKey = "nameSize";
constexpr const char* appIconSizeKey = "appIconSize";
constexpr const char* showAppNamesKey = "showAppNames";

double points(const json& value) {
    if (!value.is_number()) throw JsonError("expected a number");
    return value.get<double>();
}

auto ofDisplay(std::string_view displayKey) {
    return [displayKey](const auto& entry) { return text::equalsIgnoringCase(entry.first, displayKey); };
}

} // namespace

std::optional<AppSettings::BoardAppearances>
AppSettings::BoardAppearancesCoding::read(const DefaultsStore& defaults, std::string_view key) {
    const auto data = defaults.get<DefaultsData>(key);
    if (!data) return std::nullopt;
    try {
        BoardAppearances appearances;
        const json parsed = StrictJson::parse(data->bytes);
        for (const auto& [displayKey, value] : StrictJson::object(parsed).items())
            appearances[displayKey] = {.tileWidth = points(StrictJson::member(value, tileWidthKey)),
                                       .nameSize = points(StrictJson::member(value, nameSizeKey)),
                                       .appIconSize = points(StrictJson::member(value, appIconSizeKey)),
                                       .showAppNames =
                                           StrictJson::boolean(StrictJson::member(value, showAppNamesKey))};
        return appearances;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void AppSettings::BoardAppearancesCoding::write(DefaultsStore& defaults, std::string_view key,
                                                const BoardAppearances& value) {
    json object = json::object();
    for (const auto& [displayKey, appearance] : value)
        object[displayKey] = {{tileWidthKey, appearance.tileWidth},
                              {nameSizeKey, appearance.nameSize},
                              {appIconSizeKey, appearance.appIconSize},
                              {showAppNamesKey, appearance.showAppNames}};
    defaults.set(key, DefaultsData{object.dump(-1, ' ', false, json::error_handler_t::replace)});
}

AppSettings::AppSettings(DefaultsStore& defaults, LoginItem* loginItem)
    : d_(defaults),
      loginItem_(loginItem) {}

AppSettings::BoardAppearance AppSettings::boardAppearance(std::string_view displayKey) const {
    const auto own = std::find_if(boardPerDisplay->begin(), boardPerDisplay->end(), ofDisplay(displayKey));
    if (own != boardPerDisplay->end()) return own->second;
    return {*boardTileWidth, *boardNameSize, *boardAppIconSize, *boardShowAppNames};
}

void AppSettings::setBoardAppearance(const std::optional<std::string>& displayKey,
                                     const BoardAppearance& value) {
    if (!displayKey) {
        boardTileWidth.set(value.tileWidth);
        boardNameSize.set(value.nameSize);
        boardAppIconSize.set(value.appIconSize);
        boardShowAppNames.set(value.showAppNames);
        return;
    }
    BoardAppearances appearances = *boardPerDisplay;
    const auto own = std::find_if(appearances.begin(), appearances.end(), ofDisplay(*displayKey));
    if (own != appearances.end())
        own->second = value;
    else
        appearances[*displayKey] = value;
    boardPerDisplay.set(appearances);
}

bool AppSettings::launchAtLogin() const { return loginItem_ && loginItem_->isRegistered(); }

void AppSettings::setLaunchAtLogin(bool launch) {
    try {
        if (!loginItem_) throw std::runtime_error("this session can't start programs at login");
        loginItem_->setRegistered(launch);
    } catch (const std::exception& error) {
        log(fmt::format("Launch at login change failed: {}", error.what()));
    }
    launchAtLoginChanged.emit();
}

} // namespace lumnara
