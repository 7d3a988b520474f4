#include "app/qt/automation/ActionForm.h"

#include "app/automation/AutomationTexts.h"
#include "app/qt/look/Theme.h"
#include "app/qt/settings/WheelGuard.h"
#include "core/automation/ActionRules.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>

#include <algorithm>

namespace lumnara {
namespace {

constexpr int scriptLines = 6;
constexpr double formRadius = 8;
constexpr double longestTypedWait = 24.0 * 60 * 60; // the rules refuse it with their sentence

/// Seconds without the zeros that nobody typed.
class SecondsBox : public QDoubleSpinBox {
public:
    QString textFromValue(double value) const override {
        return locale().toString(value, 'f', QLocale::FloatingPointShortest);
    }
};

template <class Box, class Number>
Box* numberField(const char* name, Number value, Number most, const QString& suffix) {
    auto* box = new Box;
    box->setObjectName(QString::fromLatin1(name));
    box->setRange(0, std::max(value, most));
    box->setValue(value);
    box->setSuffix(suffix);
    box->setFixedWidth(130);
    guardFromWheel(box);
    return box;
}

std::optional<std::string> textOrNothing(const QLineEdit& field) {
    if (field.text().isEmpty()) return std::nullopt;
    return field.text().toStdString();
}

} // namespace

ActionForm::ActionForm(const AutomationAction& action, std::optional<std::size_t> place,
                       const PathChooser& choosePath)
    : before_(action),
      place_(place),
      choosePath_(choosePath) {
    setObjectName(QStringLiteral("actionForm"));
    setAccessibleName(QStringLiteral("Action"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(14, 12, 14, 12);
    column->setSpacing(10);
    fields_.setHorizontalSpacing(12);
    fields_.setVerticalSpacing(6);
    fields_.setColumnStretch(1, 1);
    fields_.setColumnMinimumWidth(0,
                                  fontMetrics().horizontalAdvance(QStringLiteral("Shortcut"))); // the longest
    column->addLayout(&fields_);
    std::visit([this](const auto& each) { addFields(each); }, action);
    untouched_ = read_();
    addButtons();
}

void ActionForm::addMainField(const QString& label, QWidget* field, QLayout* line) {
    addField(label, field, line);
    mainField_ = field;
    error_.setObjectName(QStringLiteral("refusal"));
    fields_.addWidget(&error_, fields_.rowCount(), 1);
}

void ActionForm::addField(const QString& label, QWidget* field, QLayout* line) {
    auto* title = new QLabel(label);
    title->setBuddy(field);
    title->setMinimumHeight(QLineEdit().sizeHint().height()); // beside the first line of a high field
    const int row = fields_.rowCount();
    fields_.addWidget(title, row, 0, Qt::AlignTop);
    if (line)
        fields_.addLayout(line, row, 1);
    else
        fields_.addWidget(field, row, 1,
                          field->maximumWidth() < QWIDGETSIZE_MAX ? Qt::AlignLeft : Qt::Alignment());
}

QLineEdit* ActionForm::lineField(const char* name, const std::string& text, const QString& placeholder) {
    auto* field = new QLineEdit(QString::fromStdString(text));
    field->setObjectName(QString::fromLatin1(name));
    field->setPlaceholderText(placeholder);
    field->setCursorPosition(0);
    return field;
}

std::function<std::string()> ActionForm::scriptField(const std::string& text) {
    auto* field = new QPlainTextEdit(QString::fromStdString(text));
    field->setObjectName(QStringLiteral("script"));
    field->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    field->setTabChangesFocus(true);
    field->setLineWrapMode(QPlainTextEdit::NoWrap);
    field->setFixedHeight(field->fontMetrics().lineSpacing() * scriptLines + 18);
    addMainField(QStringLiteral("Script"), field);
    return [field] { return field->toPlainText().toStdString(); };
}

void ActionForm::addFields(const OpenAppAction& action) {
    QLineEdit* app = lineField("app", action.bundleID, QStringLiteral("Id, such as org.mozilla.firefox"));
    QLineEdit* name =
        lineField("appName", action.name.value_or(""), QStringLiteral("Optional, for the list"));
    addMainField(QStringLiteral("App"), app);
    addField(QStringLiteral("Name"), name);
    read_ = [app, name] { return OpenAppAction{app->text().toStdString(), textOrNothing(*name)}; };
}

void ActionForm::addFields(const OpenPathAction& action) {
    QLineEdit* path = lineField("path", action.path, QStringLiteral("~/Documents"));
    auto* choose = new QPushButton(QStringLiteral("Choose"));
    choose->setObjectName(QStringLiteral("choosePath"));
    choose->setAutoDefault(false);
    auto* menu = new QMenu(choose);
    const auto ask = [this, path](bool folder) {
        const QString chosen = choosePath_(this, path->text(), folder);
        if (!chosen.isEmpty()) path->setText(chosen);
    };
    menu->addAction(QStringLiteral("File…"), this, [ask] { ask(false); });
    menu->addAction(QStringLiteral("Folder…"), this, [ask] { ask(true); });
    choose->setMenu(menu);
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    line->addWidget(path, 1);
    line->addWidget(choose);
    addMainField(QStringLiteral("Path"), path, line);
    read_ = [path] { return OpenPathAction{path->text().toStdString()}; };
}

void ActionForm::addFields(const OpenURLAction& action) {
    QLineEdit* url = lineField("url", action.url, QStringLiteral("https://example.org"));
    addMainField(QStringLiteral("Address"), url);
    read_ = [url] { return OpenURLAction{url->text().toStdString()}; };
}

void ActionForm::addFields(const RunShortcutAction& action) {
    QLineEdit* name = lineField("shortcut", action.name, {});
    addMainField(QStringLiteral("Shortcut"), name);
    read_ = [name] { return RunShortcutAction{name->text().toStdString()}; };
}

void ActionForm::addFields(const RunShellAction& action) {
    read_ = [text = scriptField(action.script)] { return RunShellAction{text()}; };
}

void ActionForm::addFields(const AppleScriptAction& action) {
    read_ = [text = scriptField(action.source)] { return AppleScriptAction{text()}; };
}

void ActionForm::addFields(const PomodoroAction& action) {
    const QString suffix = QStringLiteral(" min");
    auto* minutes = numberField<QSpinBox>("minutes", action.minutes, ActionRules::maxPomodoroMinutes, suffix);
    auto* rest =
        numberField<QSpinBox>("breakMinutes", action.breakMinutes, ActionRules::maxBreakMinutes, suffix);
    addMainField(QStringLiteral("Work"), minutes);
    addField(QStringLiteral("Break"), rest);
    read_ = [minutes, rest] { return PomodoroAction{minutes->value(), rest->value()}; };
}

void ActionForm::addFields(const SessionAction& action) {
    auto* op = new QComboBox;
    op->setObjectName(QStringLiteral("sessionOp"));
    op->addItems({QStringLiteral("Start"), QStringLiteral("Pause"), QStringLiteral("Stop")});
    op->setCurrentIndex(static_cast<int>(action.op));
    op->setFixedWidth(130);
    guardFromWheel(op);
    QLineEdit* name = lineField("sessionName", action.name.value_or(""), QStringLiteral("Optional"));
    addMainField(QStringLiteral("Do"), op);
    addField(QStringLiteral("Session"), name);
    read_ = [op, name] {
        return SessionAction{static_cast<SessionOp>(op->currentIndex()), textOrNothing(*name)};
    };
}

void ActionForm::addFields(const WaitAction& action) {
    auto* seconds =
        numberField<SecondsBox>("seconds", action.seconds, longestTypedWait, QStringLiteral(" s"));
    seconds->setDecimals(3);
    seconds->setValue(action.seconds);
    addMainField(QStringLiteral("Wait"), seconds);
    read_ = [seconds] { return WaitAction{seconds->value()}; };
}

void ActionForm::addButtons() {
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"));
    cancel->setObjectName(QStringLiteral("cancelAction"));
    done_ = new QPushButton(place_ ? QStringLiteral("Save") : QStringLiteral("Add"));
    done_->setObjectName(QStringLiteral("saveAction"));
    for (QPushButton* each : {cancel, done_}) each->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, [this] { onCancel(); });
    connect(done_, &QPushButton::clicked, this, [this] { onDone(); });
    line->addStretch();
    line->addWidget(cancel);
    line->addWidget(done_);
    static_cast<QVBoxLayout*>(layout())->addLayout(line);
}

void ActionForm::becomeNew() {
    place_.reset();
    done_->setText(QStringLiteral("Add"));
}

void ActionForm::refuse(const QString& sentence) {
    error_.tell(sentence);
    mainField_->setAccessibleDescription(sentence);
    mainField_->setFocus();
}

/// As the tab key does, which selects what stands there.
void ActionForm::focusField() { mainField_->setFocus(Qt::TabFocusReason); }

void ActionForm::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape: return onCancel();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (auto* button = qobject_cast<QAbstractButton*>(focusWidget())) return button->click();
        return onDone();
    default: QWidget::keyPressEvent(event);
    }
}

void ActionForm::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor veil = palette().color(QPalette::WindowText);
    veil.setAlphaF(0.05F);
    painter.setPen(Theme::of(appearanceOf(palette())).hairline);
    painter.setBrush(veil);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), formRadius, formRadius);
}

} // namespace lumnara
