#pragma once

#include "app/settings/AppSettings.h"
#include "app/settings/SettingRanges.h"
#include "core/async/Signal.h"

#include <QWidget>

#include <functional>
#include <vector>

class QCheckBox;
class QLabel;
class QSlider;

namespace lumnara {

/// A page of the settings window. Its controls show their settings at all times, whoever changes them, and a
/// change by the user holds at once. The settings outlive it.
class SettingsPage : public QWidget {
public:
    /// Reads afresh what doesn't tell of its changes: the window came up or to the front.
    virtual void reload() {}

protected:
    explicit SettingsPage(AppSettings& settings) : settings_(settings) {}

    /// A number with its control and the text that tells it.
    struct NumberRow {
        QWidget* row = nullptr;
        QLabel* label = nullptr;
        QSlider* slider = nullptr;
        QLabel* value = nullptr;
    };

    QCheckBox* toggle(const char* name, const QString& title, Setting<bool>& setting);
    NumberRow number(const char* name, const QString& title, Setting<double>& setting,
                     const SettingRange& range, std::function<QString(double)> text);
    /// Shows the setting now and whenever it changes.
    template <class T> void follow(Setting<T>& setting, std::function<void(const T&)> show) {
        show(setting.get());
        changes_.push_back(setting.subscribe(std::move(show)));
    }

    AppSettings& settings_;
    std::vector<async::Subscription> changes_;
};

} // namespace lumnara
