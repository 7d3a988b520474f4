#include "app/qt/automation/ActionList.h"

#include "core/automation/AutomationEditError.h"

#include <algorithm>

namespace lumnara {

ActionList::ActionList(AutomationEditor& editor, const SaveChange& save, const PathChooser& choosePath)
    : editor_(editor),
      save_(save),
      choosePath_(choosePath),
      column_(this),
      empty_(QStringLiteral("No actions yet.")) {
    column_.setContentsMargins(0, 0, 0, 0);
    column_.setSpacing(2);
    empty_.setIndent(ActionRow::textLeft);
    empty_.setMinimumHeight(ActionRow::rowHeight);
    column_.addWidget(&empty_);
}

void ActionList::show(const Automation& automation) {
    id_ = automation.id;
    actions_ = automation.actions;
    if (form_ && form_->place()) {
        const std::size_t place = *form_->place();
        if (place >= actions_.size() || actions_[place] != form_->before()) form_->becomeNew();
    }
    fitRows(actions_.size());
    for (std::size_t place = 0; place < rows_.size(); ++place)
        rows_[place]->show(actions_[place], place == 0, place + 1 == rows_.size());
    placeForm();
}

void ActionList::fitRows(std::size_t count) {
    while (rows_.size() > count) {
        rows_.back()->hide(); // passes the focus on
        rows_.back()->deleteLater();
        column_.removeWidget(rows_.back());
        rows_.pop_back();
    }
    while (rows_.size() < count) {
        auto* row = new ActionRow;
        row->onCommand = [this, place = rows_.size()](ActionRow::Command command) { handle(place, command); };
        rows_.push_back(row);
        column_.addWidget(row);
        row->setVisible(true); // now, so that it can take the focus
    }
}

/// It stands below the row that it edits, or at the end.
std::size_t ActionList::rowsAboveForm() const { return form_->place() ? *form_->place() + 1 : rows_.size(); }

void ActionList::placeForm() {
    empty_.setVisible(rows_.empty() && !form_);
    if (!form_) return;
    column_.removeWidget(form_);
    const std::size_t above = rowsAboveForm();
    column_.insertWidget(static_cast<int>(above) + 1, form_); // the first is the text for none
}

std::vector<QWidget*> ActionList::tabStops() const {
    std::vector<QWidget*> stops(rows_.begin(), rows_.end());
    if (!form_) return stops;
    const std::size_t above = rowsAboveForm();
    std::vector<QWidget*> fields;
    for (QWidget* field : form_->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (field->focusPolicy() & Qt::TabFocus) fields.push_back(field);
    stops.insert(stops.begin() + static_cast<std::ptrdiff_t>(above), fields.begin(), fields.end());
    return stops;
}

void ActionList::handle(std::size_t place, ActionRow::Command command) {
    switch (command) {
    case ActionRow::Command::edit: return edit(place);
    case ActionRow::Command::remove: return remove(place);
    case ActionRow::Command::moveUp: return move(place, place - 1);
    case ActionRow::Command::moveDown: return move(place, place + 1);
    case ActionRow::Command::focusBefore:
        if (place > 0) focusRow(place - 1);
        return;
    case ActionRow::Command::focusAfter: return focusRow(place + 1);
    }
}

void ActionList::edit(std::size_t place) {
    if (form_ && form_->place() == place) return form_->focusField();
    if (commit()) open(actions_[place], place);
}

void ActionList::move(std::size_t from, std::size_t to) {
    if (!commit()) return;
    save_([&] { editor_.moveAction(id_, from, to); });
    focusRow(to);
}

void ActionList::remove(std::size_t place) {
    if (form_ && form_->place() == place) close();
    if (!commit()) return;
    save_([&] { editor_.removeAction(id_, place); });
    if (!rows_.empty()) focusRow(std::min(place, rows_.size() - 1));
}

void ActionList::beginNew(const AutomationAction& blank) {
    if (commit()) open(blank, std::nullopt);
}

void ActionList::open(const AutomationAction& action, std::optional<std::size_t> place) {
    form_ = new ActionForm(action, place, choosePath_);
    form_->onDone = [this] { form_->place() && !form_->isTouched() ? close() : void(saveForm()); };
    form_->onCancel = [this] { close(); };
    placeForm();
    form_->show();
    onTabStopsChanged();
    form_->focusField();
}

void ActionList::close() {
    const std::size_t place = form_->place().value_or(actions_.size());
    const bool hadFocus = form_->isAncestorOf(window()->focusWidget());
    form_->hide();
    form_->deleteLater();
    column_.removeWidget(form_);
    form_ = nullptr;
    placeForm();
    if (hadFocus && !rows_.empty()) focusRow(std::min(place, rows_.size() - 1));
}

bool ActionList::commit() {
    if (!form_) return true;
    if (form_->isTouched()) return saveForm();
    close();
    return true;
}

bool ActionList::saveForm() {
    try {
        save_([this] {
            if (const auto place = form_->place())
                editor_.replaceAction(id_, *place, form_->action());
            else
                editor_.addAction(id_, form_->action());
        });
    } catch (const AutomationEditError& error) {
        form_->refuse(QString::fromStdString(error.sentence()));
        return false;
    }
    close();
    return true;
}

void ActionList::focusRow(std::size_t place) {
    if (place < rows_.size()) rows_[place]->setFocus(Qt::OtherFocusReason);
}

} // namespace lumnara
