#pragma once

#include <QLabel>

namespace lumnara {

/// Why an entry was refused, in the colour of errors. Hidden while there is nothing to say.
class ErrorLabel : public QLabel {
public:
    ErrorLabel();

    void tell(const QString& sentence);

protected:
    bool event(QEvent* event) override;

private:
    void tone();
};

} // namespace lumnara
