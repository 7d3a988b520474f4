#pragma once

#include "app/qt/settings/SettingsPage.h"

namespace lumnara {

/// Displays, switching, the Board, the session.
class GeneralPage : public SettingsPage {
public:
    explicit GeneralPage(AppSettings& settings);

    void reload() override { readLaunchAtLogin(); }

private:
    QWidget* displaysCard();
    QWidget* switchingCard();
    QWidget* boardCard();
    QWidget* sessionCard();
    void readLaunchAtLogin();

    QCheckBox* launchAtLogin_ = nullptr;
};

} // namespace lumnara
