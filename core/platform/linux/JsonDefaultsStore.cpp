#include "core/platform/linux/JsonDefaultsStore.h"

#include "core/base/Files.h"
#include "core/base/Log.h"
#include "core/base/StrictJson.h"
#include "core/text/Utf8.h"

#include <cmath>
#include <exception>
#include <nlohmann/json.hpp>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

namespace lumnara {

namespace {

using nlohmann::json;

constexpr const char* dataMember = "data";

json encodedData(const DefaultsData& data) {
    std::string text;
    for (const char byte : data.bytes) text::appendUtf8(text, static_cast<unsigned char>(byte));
    return json::object({{dataMember, std::move(text)}});
}

std::optional<DefaultsValue> decodedData(const json& value) {
    const auto member = value.find(dataMember);
    if (value.size() != 1 || member == value.end() || !member->is_string()) return std::nullopt;
    const auto& text = member->get_ref<const std::string&>();
    DefaultsData data;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t character = text::decodeNext(text, at);
        if (character > 0xFF) return std::nullopt;
        data.bytes += static_cast<char>(character);
    }
    return data;
}

/// Null, which stands for no value, for a number that JSON has no word for.
json encodedDefault(const DefaultsValue& value) {
    return std::visit(
        [](const auto& held) -> json {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, DefaultsData>)
                return encodedData(held);
            else if constexpr (std::is_same_v<Held, double>)
                return std::isfinite(held) ? json(held) : json();
            else
                return held;
        },
        value);
}

std::optional<DefaultsValue> decodedDefault(const json& value) {
    if (value.is_boolean()) return value.get<bool>();
    if (value.is_number_float()) return value.get<double>();
    if (value.is_number_unsigned() && !std::in_range<std::int64_t>(value.get<std::uint64_t>()))
        return std::nullopt;
    if (value.is_number_integer()) return value.get<std::int64_t>();
    if (value.is_string()) return value.get<std::string>();
    if (value.is_object()) return decodedData(value);
    return std::nullopt;
}

std::optional<DefaultsValue> valueIn(const json& values, std::string_view key) {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : decodedDefault(*found);
}

/// Sets what `changes` holds; a null removes.
void layOver(json& values, const json& changes) {
    for (const auto& [key, value] : changes.items()) {
        if (value.is_null())
            values.erase(key);
        else
            values[key] = value;
    }
}

/// The keys under which a reader sees another value.
std::vector<std::string> changedKeys(const json& before, const json& after) {
    std::vector<std::string> changed;
    for (const auto& [key, value] : after.items())
        if (valueIn(before, key) != decodedDefault(value)) changed.push_back(key);
    for (const auto& [key, value] : before.items())
        if (!after.contains(key) && decodedDefault(value)) changed.push_back(key);
    return changed;
}

KeptFile::Decode settingsInto(json& values) {
    return [&values](const std::string& text) { values = StrictJson::object(StrictJson::parse(text)); };
}

std::string settingsText(const json& values) {
    return values.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

/// Brings `changes` into the file as it is by now; `known` takes the place of what can't be read any more.
void writeSettings(KeptFile& file, const json& changes, const json& known, Date now) {
    json before = known;
    const auto reading = file.read(settingsInto(before));
    if (reading.failure) throw *reading.failure;
    if (reading.found == KeptFile::Found::damage)
        log("Lumnara settings: the damaged file is kept at " + moveAside(file.path(), now).string());
    json values = before;
    layOver(values, changes);
    // As texts, since the library holds 1 and 1.0 for equal.
    const std::string text = settingsText(values);
    if (reading.found != KeptFile::Found::contents || text != settingsText(before)) file.replace(text);
}

} // namespace

JsonDefaultsStore::JsonDefaultsStore(async::Loop& loop, std::filesystem::path file)
    : loop_(loop),
      kept_(std::move(file)),
      values_(std::make_unique<json>(json::object())),
      unsaved_(std::make_unique<json>(json::object())),
      watch_(loop, kept_.path(), [this] { reload(); }),
      self_(std::make_shared<JsonDefaultsStore*>(this)),
      saving_(loop, "com.lumnara.settings", saveDelay, [this] { return saveWork(); }) {
    load();
}

JsonDefaultsStore::~JsonDefaultsStore() { saveNow(); }

void JsonDefaultsStore::load() {
    const auto reading = kept_.load(settingsInto(*values_), loop_.date());
    if (reading.failure)
        loadError_ = SettingsFileError::notLoaded(reading.failure->code().message());
    else if (reading.aside)
        loadError_ = SettingsFileError::damaged(*reading.aside);
}

std::optional<DefaultsValue> JsonDefaultsStore::value(std::string_view key) const {
    return valueIn(*values_, key);
}

void JsonDefaultsStore::set(std::string_view key, DefaultsValue value) {
    json encoded = encodedDefault(value);
    if (encoded.is_null())
        remove(key);
    else if (this->value(key) != value)
        change(key, std::move(encoded));
}

void JsonDefaultsStore::remove(std::string_view key) {
    if (values_->contains(key)) change(key, json());
}

void JsonDefaultsStore::change(std::string_view key, json value) {
    (*unsaved_)[std::string(key)] = std::move(value);
    layOver(*values_, *unsaved_);
    saving_.ask();
}

async::DelayedWork::Work JsonDefaultsStore::saveWork() {
    return [inbox = loop_.inbox(), self = std::weak_ptr(self_), file = KeptFile(kept_.path()),
            changes = *unsaved_, known = *values_, now = loop_.date()]() mutable {
        try {
            writeSettings(file, changes, known, now);
        } catch (const std::exception& error) {
            log(std::string("Lumnara settings: not saved: ") + error.what());
            return;
        }
        inbox->post([self, changes] {
            if (const auto store = self.lock()) (*store)->finishSave(changes);
        });
    };
}

void JsonDefaultsStore::finishSave(const json& changes) {
    // What was set to yet another value meanwhile waits for its own turn.
    for (const auto& [key, value] : changes.items())
        if (const auto still = unsaved_->find(key); still != unsaved_->end() && *still == value)
            unsaved_->erase(still);
    watch_.renew();
    // What others wrote to these keys right behind our write was so far hidden by ours.
    reload();
}

void JsonDefaultsStore::saveNow() {
    saving_.doNow(unsaved_->empty() ? async::DelayedWork::Work([] {}) : saveWork());
}

void JsonDefaultsStore::reload() {
    json values;
    const auto reading = kept_.read(settingsInto(values));
    if (reading.found == KeptFile::Found::damage) report("the file is damaged and was not taken over");
    if (reading.failure) report(reading.failure->what());
    if (reading.found != KeptFile::Found::contents) return;
    lastTrouble_.clear();
    layOver(values, *unsaved_);
    const auto changed = changedKeys(*values_, values);
    *values_ = std::move(values);
    if (!unsaved_->empty()) saving_.ask();
    for (const std::string& key : changed) changedElsewhere.emit(key);
}

void JsonDefaultsStore::report(std::string trouble) {
    if (trouble == lastTrouble_) return;
    log("Lumnara settings: " + trouble);
    lastTrouble_ = std::move(trouble);
}

} // namespace lumnara
