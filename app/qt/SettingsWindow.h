#pragma once

#include "app/AppSettings.h"
#include "app/settings/SettingRanges.h"
#include "core/async/Signal.h"

#include <QDialog>

#include <functional>
#include <vector>

class QCheckBox;
class QLabel;
class QSlider;

namespace lumnara {

/// The settings that the user can choose. Each control shows its setting at all times, whoever changes it,
/// and a change by the user holds at once. The settings outlive it.
class SettingsWindow : public QDialog {
public:
    explicit SettingsWindow(AppSettings& settings);

    /// Puts the window up, in front when it is up already.
    void present();

protected:
    void changeEvent(QEvent* event) override;

private:
    /// A number with its control and the text that tells it.
    struct NumberRow {
        QWidget* row = nullptr;
        QLabel* label = nullptr;
        QSlider* slider = nullptr;
        QLabel* value = nullptr;
    };

    QWidget* displaysCard();
    QWidget* switchingCard();
    QWidget* boardCard();
    QWidget* sessionCard();

    QCheckBox* toggle(const char* name, const QString& title, Setting<bool>& setting);
    NumberRow number(const char* name, const QString& title, Setting<double>& setting,
                     const SettingRange& range, std::function<QString(double)> text);
    void readLaunchAtLogin();
    /// Shows the setting now and whenever it changes.
    template <class T> void follow(Setting<T>& setting, std::function<void(const T&)> show);

    AppSettings& settings_;
    QCheckBox* launchAtLogin_ = nullptr;
    std::vector<async::Subscription> changes_;
};

} // namespace lumnara
