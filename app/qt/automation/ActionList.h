#pragma once

#include "app/qt/automation/ActionForm.h"
#include "app/qt/automation/ActionRow.h"
#include "app/qt/look/SecondaryLabel.h"
#include "core/automation/AutomationEditor.h"

#include <QVBoxLayout>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

namespace lumnara {

/// Makes a change and tells when it can't be saved; AutomationEditError passes through.
using SaveChange = std::function<void(const std::function<void()>& change)>;

/// The actions of one automation in their order, with a form for one of them at most. What is in the form is
/// taken over before anything else changes the list. What it is built from outlives it.
class ActionList : public QWidget {
public:
    ActionList(AutomationEditor& editor, const SaveChange& save, const PathChooser& choosePath);

    void show(const Automation& automation);
    /// Opens a form for an action that is not in the list yet.
    void beginNew(const AutomationAction& blank);
    /// Takes over what has been entered. Otherwise false, with the refusal and the focus on the form.
    bool commit();

    /// What the tab key stops at, in order.
    std::vector<QWidget*> tabStops() const;
    /// There are others now.
    std::function<void()> onTabStopsChanged;

private:
    void handle(std::size_t place, ActionRow::Command command);
    void edit(std::size_t place);
    void move(std::size_t from, std::size_t to);
    void remove(std::size_t place);
    void open(const AutomationAction& action, std::optional<std::size_t> place);
    void close();
    bool saveForm();
    void fitRows(std::size_t count);
    std::size_t rowsAboveForm() const;
    void placeForm();
    void focusRow(std::size_t place);

    AutomationEditor& editor_;
    const SaveChange& save_;
    const PathChooser& choosePath_;
    std::string id_;
    std::vector<AutomationAction> actions_;
    QVBoxLayout column_;
    SecondaryLabel empty_;
    std::vector<ActionRow*> rows_;
    ActionForm* form_ = nullptr;
};

} // namespace lumnara
