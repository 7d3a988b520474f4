#pragma once

#include "app/qt/settings/SettingsPage.h"
#include "app/qt/tracking/UsageList.h"
#include "app/tracking/TrackingPage.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <exception>
#include <functional>

namespace lumnara {

/// The recorded times: whether to record, a session by name, the report with its export, all sessions. The
/// page's model outlives it.
class TimePage : public SettingsPage {
public:
    TimePage(AppSettings& settings, TrackingPage& page);

    void reload() override { page_.reload(); }

    /// Where the export goes, by the name that is proposed; empty for nowhere. A dialog asks unless replaced.
    std::function<QString(const QString& proposed)> chooseFile;
    /// Tells of a failure. A dialog does unless replaced.
    std::function<void(const QString& sentence)> onFailure;

private:
    QWidget* recordingCard();
    QWidget* sessionCard();
    QWidget* reportHead();
    QWidget* reportCard();
    QWidget* idleRow();
    void showPage();
    void showSessions();
    void exportReport();
    void attempt(const std::function<void()>& action);

    TrackingPage& page_;
    QLineEdit sessionName_;
    QPushButton start_;
    QPushButton pause_;
    QPushButton end_;
    UsageList usage_;
    QLabel nothing_;
    QWidget* sessionsSection_ = nullptr;
    QTreeWidget sessions_;
};

} // namespace lumnara
