#pragma once

#include <QLabel>

namespace lumnara {

/// A text of lower rank, in a softer tone of its parent's text colour.
class SecondaryLabel : public QLabel {
public:
    /// As soft as a small text may be and still be read with ease on light and dark grounds.
    static constexpr float softness = 0.68F;

    explicit SecondaryLabel(const QString& text = {});

protected:
    bool event(QEvent* event) override;

private:
    void tone();
};

} // namespace lumnara
