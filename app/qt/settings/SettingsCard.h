#pragma once

#include <QVBoxLayout>
#include <QWidget>

class QCheckBox;
class QHBoxLayout;

namespace lumnara {

/// A rounded ground with a hairline between its rows.
class SettingsCard : public QWidget {
public:
    static constexpr int margin = 16;

    SettingsCard();

    void add(QWidget* row);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor ground() const;

    QVBoxLayout rows_;
};

/// The title above a card.
QWidget* sectionTitle(const QString& title);
/// A row of a check box with a sentence about it below.
QWidget* explained(QCheckBox* box, const QString& explanation);
QWidget* plainRow(QWidget* content);
/// Lets the row hold widgets side by side.
QHBoxLayout* lineIn(QWidget* row);

} // namespace lumnara
