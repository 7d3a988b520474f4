#pragma once

#include <QLabel>

namespace lumnara {

/// A text of lower rank, in a softer tone of its parent's text colour.
class SecondaryLabel : public QLabel {
public:
    explicit SecondaryLabel(const QString& text = {});

protected:
    bool event(QEvent* event) override;

private:
    void tone();
};

} // namespace lumnara
