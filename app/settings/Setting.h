#pragma once

#include "app/settings/SettingChoices.h"
#include "core/async/Signal.h"
#include "core/seams/DefaultsStore.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace lumnara {

/// How values of a type stand in the store: `read` gives nothing for what is no such value.
template <class T> struct SettingCoding {
    static std::optional<T> read(const DefaultsStore& defaults, std::string_view key) {
        return defaults.get<T>(key);
    }
    static void write(DefaultsStore& defaults, std::string_view key, const T& value) {
        defaults.set(key, value);
    }
};

template <class Choice>
    requires std::is_enum_v<Choice>
struct SettingCoding<Choice> {
    static std::optional<Choice> read(const DefaultsStore& defaults, std::string_view key) {
        const auto text = defaults.get<std::string>(key);
        return text ? choiceOf<Choice>(*text) : std::nullopt;
    }
    static void write(DefaultsStore& defaults, std::string_view key, Choice value) {
        defaults.set(key, std::string(choiceText(value)));
    }
};

/// Nothing is an absent key.
template <class T> struct SettingCoding<std::optional<T>> {
    static std::optional<std::optional<T>> read(const DefaultsStore& defaults, std::string_view key) {
        return defaults.get<T>(key);
    }
    static void write(DefaultsStore& defaults, std::string_view key, const std::optional<T>& value) {
        if (value)
            defaults.set(key, *value);
        else
            defaults.remove(key);
    }
};

/// One setting: an observable value that is at all times what the store holds under its key, or the default
/// where the store holds no such value. The store outlives it. Main thread.
template <class T, class Coding = SettingCoding<T>> class Setting {
public:
    Setting(DefaultsStore& defaults, const char* key, T defaultValue = T())
        : defaults_(defaults),
          key_(key),
          defaultValue_(std::move(defaultValue)),
          value_(read()),
          changedElsewhere_(defaults.changedElsewhere.subscribe([this](const std::string& changed) {
              if (changed == key_) value_.set(read());
          })) {}
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;

    const T& get() const { return value_.get(); }
    const T& operator*() const { return value_.get(); }
    const T* operator->() const { return &value_.get(); }

    /// Writes to the store, also the value that was the default so far, and tells subscribers of a change.
    void set(const T& value) {
        Coding::write(defaults_, key_, value);
        value_.set(read());
    }
    async::Subscription subscribe(std::function<void(const T&)> call) {
        return value_.subscribe(std::move(call));
    }

private:
    T read() const { return Coding::read(defaults_, key_).value_or(defaultValue_); }

    DefaultsStore& defaults_;
    const std::string_view key_;
    const T defaultValue_;
    async::Observable<T> value_;
    async::Subscription changedElsewhere_;
};

} // namespace lumnara
