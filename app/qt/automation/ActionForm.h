#pragma once

#include "app/qt/look/ErrorLabel.h"
#include "core/automation/Automation.h"

#include <QGridLayout>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>

class QLineEdit;
class QPushButton;

namespace lumnara {

/// Asks for a file or a folder, beginning at a path; empty for none.
using PathChooser = std::function<QString(QWidget* parent, const QString& from, bool folder)>;

/// The fields of one action, with what was refused below them. Enter takes them over, Ctrl+Enter inside a
/// script; Escape gives them up.
class ActionForm : public QWidget {
public:
    /// `place` is that of the action in its automation; nothing for one that is new. The chooser outlives it.
    ActionForm(const AutomationAction& action, std::optional<std::size_t> place,
               const PathChooser& choosePath);

    /// What the fields hold.
    AutomationAction action() const { return read_(); }
    /// As it was when the form was opened.
    const AutomationAction& before() const { return before_; }
    std::optional<std::size_t> place() const { return place_; }
    /// What it was opened for has changed or gone: what the fields hold will be an action of its own.
    void becomeNew();
    /// The user has entered something.
    bool isTouched() const { return action() != untouched_; }
    /// Takes the focus to the refused field.
    void refuse(const QString& sentence);
    void focusField();

    std::function<void()> onDone;
    std::function<void()> onCancel;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void addFields(const OpenAppAction& action);
    void addFields(const OpenPathAction& action);
    void addFields(const OpenURLAction& action);
    void addFields(const RunShortcutAction& action);
    void addFields(const RunShellAction& action);
    void addFields(const AppleScriptAction& action);
    void addFields(const PomodoroAction& action);
    void addFields(const SessionAction& action);
    void addFields(const WaitAction& action);

    /// The first field, where a refusal stands; it may come with others on its line.
    void addMainField(const QString& label, QWidget* field, QLayout* line = nullptr);
    void addField(const QString& label, QWidget* field, QLayout* line = nullptr);
    QLineEdit* lineField(const char* name, const std::string& text, const QString& placeholder);
    std::function<std::string()> scriptField(const std::string& text);
    void addButtons();

    AutomationAction before_;
    AutomationAction untouched_; ///< what the fields make of it
    std::optional<std::size_t> place_;
    const PathChooser& choosePath_;
    std::function<AutomationAction()> read_;
    QGridLayout fields_;
    QWidget* mainField_ = nullptr;
    ErrorLabel error_;
    QPushButton* done_ = nullptr;
};

} // namespace lumnara
