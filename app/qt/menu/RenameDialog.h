#pragma once

#include "app/qt/look/ErrorLabel.h"
#include "app/qt/look/SecondaryLabel.h"
#include "core/catalog/DesktopCatalog.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>

#include <string>

namespace lumnara {

/// Asks for a desktop's name, beginning with the present one. What the catalog refuses stays in the field,
/// with the reason below. The catalog outlives it.
class RenameDialog : public QDialog {
public:
    explicit RenameDialog(DesktopCatalog& catalog);

    /// Puts it up for the desktop, in place of one that it may be up for.
    void present(const Desktop& desktop);

    void accept() override;

private:
    void tell(const QString& error);

    DesktopCatalog& catalog_;
    std::string key_;
    QLabel label_;
    QLineEdit field_;
    SecondaryLabel hint_;
    ErrorLabel error_;
};

} // namespace lumnara
