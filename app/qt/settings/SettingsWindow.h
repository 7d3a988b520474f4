#pragma once

#include "app/qt/settings/SettingsPage.h"

#include <QDialog>
#include <QStackedWidget>
#include <QTabBar>

namespace lumnara {

/// The settings that the user can choose, page by page.
class SettingsWindow : public QDialog {
public:
    SettingsWindow();

    /// Takes the page over, behind those before it.
    void add(const QString& title, SettingsPage* page);

    /// Puts the window up, in front when it is up already.
    void present();

protected:
    void changeEvent(QEvent* event) override;

private:
    void reloadPage();

    QTabBar tabs_;
    QStackedWidget pages_;
};

} // namespace lumnara
