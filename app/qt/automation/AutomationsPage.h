#pragma once

#include "app/automation/AutomationDesktops.h"
#include "app/qt/automation/AutomationCard.h"
#include "app/qt/settings/SettingsPage.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <map>
#include <string>
#include <vector>

namespace lumnara {

/// The automations of one desktop at a time: to add, edit, run, remove. Begins with the focused desktop. What
/// it is built from outlives it.
class AutomationsPage : public SettingsPage {
public:
    AutomationsPage(AppSettings& settings, DesktopCatalog& catalog, AutomationStore& store,
                    AutomationEditor& editor);

    /// Shows the automations of the desktop, if it is there. Whether it does: what has been entered for
    /// another one is taken over first, and stays in sight where it is refused.
    bool choose(const std::string& key);

    /// A dialog asks unless replaced.
    PathChooser choosePath;

private:
    QWidget* noticeRow();
    QWidget* desktopRow();
    QWidget* undoRow();
    void fillAddMenu();
    void show();
    void showDesktops();
    void showNotice();
    void showUndo();
    void showCards();
    void showRun(AutomationCard& card);
    void noteRun(const std::string& id, const std::optional<AutomationRunReport>& report);
    void save(const std::function<void()>& change);
    void tryAgain();
    void add(const std::function<std::string()>& make);
    void undo();
    void reveal();
    bool commit();

    DesktopCatalog& catalog_;
    AutomationStore& store_;
    AutomationEditor& editor_;
    const SaveChange save_;
    std::string key_;
    std::vector<AutomationDesktop> desktops_;
    std::map<std::string, RunResult> results_;
    std::vector<AutomationCard*> cards_;

    QWidget* notice_ = nullptr;
    QLabel noticeText_;
    QPushButton tryAgain_;
    QComboBox desktop_;
    QPushButton add_;
    QWidget* undo_ = nullptr;
    QLabel removed_;
    QPushButton putBack_;
    SecondaryLabel waiting_;
    SecondaryLabel empty_;
    QWidget* list_ = nullptr;
    QVBoxLayout* column_ = nullptr;
};

} // namespace lumnara
