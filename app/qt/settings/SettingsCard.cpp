#include "app/qt/settings/SettingsCard.h"

#include "app/qt/look/SecondaryLabel.h"
#include "app/qt/look/Theme.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>

namespace lumnara {
namespace {

constexpr int rowPadding = 12;
constexpr double cardRadius = 10;

/// Where the text of a check box begins.
int checkBoxIndent(const QWidget& box) {
    return box.style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, &box) +
           box.style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, &box);
}

} // namespace

SettingsCard::SettingsCard() : rows_(this) {
    rows_.setContentsMargins(0, 0, 0, 0);
    rows_.setSpacing(0);
}

void SettingsCard::add(QWidget* row) {
    row->setContentsMargins(margin, rowPadding, margin, rowPadding);
    rows_.addWidget(row);
}

void SettingsCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::of(appearanceOf(palette())).hairline);
    painter.setBrush(ground());
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cardRadius, cardRadius);
    for (int position = 1; position < rows_.count(); ++position) {
        const double top = rows_.itemAt(position)->geometry().top() + 0.5;
        painter.drawLine(QPointF(margin, top), QPointF(width() - margin, top));
    }
}

/// Lighter than what is around it in both appearances; the fields of a dark palette are darker.
QColor SettingsCard::ground() const {
    if (appearanceOf(palette()) == Appearance::light) return palette().color(QPalette::Base);
    QColor veil = palette().color(QPalette::WindowText);
    veil.setAlphaF(0.055F);
    return veil;
}

QWidget* sectionTitle(const QString& title) {
    auto* label = new QLabel(title);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    label->setContentsMargins(SettingsCard::margin, 0, 0, 0);
    return label;
}

QWidget* explained(QCheckBox* box, const QString& explanation) {
    auto* row = new QWidget;
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3);
    column->addWidget(box);
    auto* label = new SecondaryLabel(explanation);
    label->setWordWrap(true);
    label->setIndent(checkBoxIndent(*box));
    column->addWidget(label);
    box->setAccessibleDescription(explanation);
    return row;
}

QWidget* plainRow(QWidget* content) {
    auto* row = new QWidget;
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(content);
    return row;
}

QHBoxLayout* lineIn(QWidget* row) {
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    return line;
}

} // namespace lumnara
