#include "app/qt/menu/RenameDialog.h"

#include "core/base/Failure.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <exception>

namespace lumnara {
namespace {

constexpr int fieldWidth = 340;

} // namespace

RenameDialog::RenameDialog(DesktopCatalog& catalog)
    : catalog_(catalog),
      hint_(QStringLiteral("Without a name it goes by its number.")) {
    setWindowTitle(QStringLiteral("Rename Desktop"));
    label_.setBuddy(&field_);
    label_.setTextFormat(Qt::PlainText);
    label_.setWordWrap(true);
    field_.setMinimumWidth(fieldWidth);

    auto* buttons = new QDialogButtonBox;
    buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    QPushButton* rename = buttons->addButton(QStringLiteral("Rename"), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &RenameDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &RenameDialog::reject);
    connect(&field_, &QLineEdit::textEdited, this, [this] { tell({}); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(8);
    for (QWidget* widget : {static_cast<QWidget*>(&label_), static_cast<QWidget*>(&field_),
                            static_cast<QWidget*>(&hint_), static_cast<QWidget*>(&error_)})
        layout->addWidget(widget);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    rename->setDefault(true); // counts only inside a dialog
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void RenameDialog::present(const Desktop& desktop) {
    key_ = desktop.key;
    label_.setText(QStringLiteral("Name of “%1”").arg(QString::fromStdString(desktop.displayName())));
    field_.setText(desktop.isNamed() ? QString::fromStdString(desktop.record->name) : QString());
    field_.selectAll();
    field_.setFocus();
    tell({});
    show();
    raise();
    activateWindow();
}

void RenameDialog::accept() {
    if (!catalog_.desktop(key_)) return tell(QStringLiteral("That desktop is not there any more."));
    try {
        catalog_.enterName(key_, field_.text().toStdString());
    } catch (const std::exception&) {
        return tell(QString::fromStdString(sentenceOf(std::current_exception())));
    }
    QDialog::accept();
}

/// The reason stands in the hint's place.
void RenameDialog::tell(const QString& error) {
    error_.tell(error);
    hint_.setVisible(error.isEmpty());
}

} // namespace lumnara
