#include "app/qt/automation/AutomationCard.h"

#include "app/qt/settings/WheelGuard.h"
#include "core/automation/ActionRules.h"
#include "core/automation/AutomationEditError.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QSignalBlocker>

#include <algorithm>

namespace lumnara {
namespace {

QString textOfView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Escape puts the shown name back, and only then closes the window.
class EscapeReverts : public QObject {
public:
    EscapeReverts(QLineEdit& field, std::function<void()> revert)
        : QObject(&field),
          field_(field),
          revert_(std::move(revert)) {
        field.installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress || !field_.isModified()) return false;
        if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) return false;
        revert_();
        return true;
    }

private:
    QLineEdit& field_;
    std::function<void()> revert_;
};

} // namespace

AutomationCard::AutomationCard(AutomationEditor& editor, const SaveChange& save,
                               const PathChooser& choosePath)
    : editor_(editor),
      save_(save),
      icon_(QString(), QStringLiteral("Icon")),
      enabled_(QStringLiteral("Enabled")),
      actions_(editor, save, choosePath),
      add_(QStringLiteral("Add Action")),
      remove_(QStringLiteral("Remove")) {
    setObjectName(QStringLiteral("automation"));
    add(head());
    QWidget* list = plainRow(&actions_);
    add(list);
    list->setContentsMargins(margin, 6, margin, 6); // the rows have room of their own
    add(foot());
    actions_.onTabStopsChanged = [this] { orderTabs(); };
    showRun(false, nullptr);
}

QWidget* AutomationCard::orderTabs(QWidget* before) {
    std::vector<QWidget*> stops{&icon_, &name_, &trigger_, &enabled_};
    for (QWidget* each : actions_.tabStops()) stops.push_back(each);
    stops.insert(stops.end(), {&add_, &remove_, &run_});
    for (QWidget* stop : stops) {
        if (before) setTabOrder(before, stop);
        before = stop;
    }
    return before;
}

QWidget* AutomationCard::head() {
    icon_.setObjectName(QStringLiteral("icon"));
    icon_.setPopupMode(QToolButton::InstantPopup);
    fillIcons();
    name_.setObjectName(QStringLiteral("name"));
    name_.setAccessibleName(QStringLiteral("Name"));
    QFont font = name_.font();
    font.setWeight(QFont::DemiBold);
    name_.setFont(font);
    trigger_.setObjectName(QStringLiteral("trigger"));
    trigger_.setAccessibleName(QStringLiteral("Runs"));
    for (const TriggerChoice& choice : triggerChoices) trigger_.addItem(textOfView(choice.title));
    guardFromWheel(&trigger_);
    enabled_.setObjectName(QStringLiteral("enabled"));
    enabled_.setToolTip(QStringLiteral("Otherwise it never runs by itself"));

    connect(&name_, &QLineEdit::editingFinished, this, [this] { commitName(); });
    new EscapeReverts(name_, [this] {
        name_.setText(QString::fromStdString(automation_.name));
        nameError_.tell({});
    });
    connect(&trigger_, &QComboBox::activated, this, [this](int place) {
        save_([&] { editor_.setTrigger(id(), triggerChoices.at(static_cast<std::size_t>(place)).trigger); });
    });
    connect(&enabled_, &QCheckBox::toggled, this,
            [this](bool on) { save_([&] { editor_.setEnabled(id(), on); }); });

    auto* row = new QWidget;
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    line->addWidget(&icon_);
    line->addWidget(&name_, 1);
    line->addWidget(&trigger_);
    line->addSpacing(4);
    line->addWidget(&enabled_);
    column->addLayout(line);
    nameError_.setIndent(icon_.sizeHint().width() + 8);
    column->addWidget(&nameError_);
    return row;
}

void AutomationCard::fillIcons() {
    auto* menu = new QMenu(&icon_);
    for (const IconChoice& choice : automationIcons) {
        const QString symbol = textOfView(choice.symbol);
        QAction* line = menu->addAction(symbolIcon(symbol), textOfView(choice.title), this, [this, symbol] {
            save_([&] { editor_.setIcon(id(), symbol.toStdString()); });
        });
        line->setIconVisibleInMenu(true);
    }
    icon_.setMenu(menu);
}

QWidget* AutomationCard::foot() {
    add_.setObjectName(QStringLiteral("addAction"));
    auto* menu = new QMenu(&add_);
    for (const ActionRules::Kind& kind : ActionRules::kinds())
        menu->addAction(symbolIcon(textOfView(symbolOf(kind.blank))), textOfView(kind.title), this,
                        [this, &kind] { actions_.beginNew(kind.blank); })
            ->setIconVisibleInMenu(true);
    add_.setMenu(menu);
    add_.setMinimumWidth(add_.sizeHint().width() + 16); // for the arrow
    run_.setObjectName(QStringLiteral("run"));
    connect(&run_, &QPushButton::clicked, this, [this] { run(); });
    remove_.setObjectName(QStringLiteral("remove"));
    connect(&remove_, &QPushButton::clicked, this, [this] { remove(); });
    for (QPushButton* each : {&add_, &run_, &remove_}) each->setAutoDefault(false);
    progress_.setObjectName(QStringLiteral("progress"));
    progress_.setAccessibleName(QStringLiteral("Running"));
    progress_.setRange(0, 0);
    progress_.setTextVisible(false);
    progress_.setFixedSize(110, 8);
    headline_.setObjectName(QStringLiteral("result"));
    headline_.setWordWrap(true);
    failures_.setObjectName(QStringLiteral("failures"));
    failures_.setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* row = new QWidget;
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    line->addWidget(&add_);
    line->addStretch();
    line->addWidget(&progress_);
    line->addSpacing(4);
    line->addWidget(&remove_);
    line->addWidget(&run_);
    column->addLayout(line);
    column->addWidget(&headline_);
    column->addWidget(&failures_);
    return row;
}

void AutomationCard::show(const Automation& automation) {
    if (automation == automation_) return;
    automation_ = automation;
    const QString name = QString::fromStdString(automation.name);
    setAccessibleName(name);
    icon_.setSymbol(QString::fromStdString(automation.icon));
    if (!name_.isModified() && name_.text() != name) {
        name_.setText(name);
        name_.setCursorPosition(0);
    }
    const auto choice = std::ranges::find(triggerChoices, automation.trigger, &TriggerChoice::trigger);
    trigger_.setCurrentIndex(static_cast<int>(choice - triggerChoices.begin()));
    const QSignalBlocker quiet(enabled_);
    enabled_.setChecked(automation.isEnabled);
    actions_.show(automation);
}

void AutomationCard::showRun(bool isRunning, const RunResult* result) {
    progress_.setVisible(isRunning);
    run_.setText(isRunning ? QStringLiteral("Cancel") : QStringLiteral("Run Now"));
    const bool tells = result && !isRunning;
    headline_.setVisible(tells);
    headline_.setText(tells ? QString::fromStdString(result->headline) : QString());
    QStringList lines;
    if (tells)
        for (const std::string& failure : result->failures) lines << QString::fromStdString(failure);
    failures_.tell(lines.join('\n'));
}

bool AutomationCard::commit() { return commitName() && actions_.commit(); }

bool AutomationCard::commitName() {
    if (!name_.isModified()) return true;
    try {
        save_([this] { editor_.rename(id(), name_.text().toStdString()); });
    } catch (const AutomationEditError& error) {
        nameError_.tell(QString::fromStdString(error.sentence()));
        return false;
    }
    nameError_.tell({});
    name_.setText(QString::fromStdString(automation_.name));
    return true;
}

void AutomationCard::focusName() {
    name_.setFocus();
    name_.selectAll();
}

void AutomationCard::run() {
    if (editor_.isRunning(id()))
        editor_.cancelRun(id());
    else if (commit())
        editor_.runNow(id());
}

/// What has been entered goes along as far as it makes sense, so that it is back with the automation.
void AutomationCard::remove() {
    commit();
    save_([this] { editor_.remove(id()); });
}

} // namespace lumnara
