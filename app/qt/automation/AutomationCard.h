#pragma once

#include "app/automation/AutomationTexts.h"
#include "app/qt/automation/ActionList.h"
#include "app/qt/look/ErrorLabel.h"
#include "app/qt/look/SymbolButton.h"
#include "app/qt/settings/SettingsCard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

namespace lumnara {

/// One automation: its name, icon, trigger and switch, its actions, and a run of it by hand. What it is built
/// from outlives it.
class AutomationCard : public SettingsCard {
public:
    AutomationCard(AutomationEditor& editor, const SaveChange& save, const PathChooser& choosePath);

    const std::string& id() const { return automation_.id; }
    void show(const Automation& automation);
    /// `result` is that of the last run that ended, or null.
    void showRun(bool isRunning, const RunResult* result);
    /// Takes over what has been entered. Otherwise false, with the refusal and the focus where it was
    /// entered.
    bool commit();
    void focusName();
    /// Puts what the tab key stops at in order, all behind `before` if there is one. Answers the last.
    QWidget* orderTabs(QWidget* before = nullptr);

private:
    QWidget* head();
    QWidget* foot();
    void fillIcons();
    bool commitName();
    void run();
    void remove();

    AutomationEditor& editor_;
    const SaveChange& save_;
    Automation automation_;
    SymbolButton icon_;
    QLineEdit name_;
    ErrorLabel nameError_;
    QComboBox trigger_;
    QCheckBox enabled_;
    ActionList actions_;
    QPushButton add_;
    QProgressBar progress_;
    QPushButton run_;
    QPushButton remove_;
    SecondaryLabel headline_;
    ErrorLabel failures_;
};

} // namespace lumnara
