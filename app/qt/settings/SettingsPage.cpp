#include "app/qt/settings/SettingsPage.h"

#include "app/qt/look/SecondaryLabel.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>
#include <cmath>
#include <utility>

namespace lumnara {
namespace {

int stepsOf(const SettingRange& range, double value) {
    return static_cast<int>(
        std::lround((std::clamp(value, range.least, range.most) - range.least) / range.step));
}

double valueAt(const SettingRange& range, int steps) {
    // Tenths add up to numbers that nobody would have written.
    return std::round((range.least + steps * range.step) * 1000) / 1000;
}

} // namespace

QCheckBox* SettingsPage::toggle(const char* name, const QString& title, Setting<bool>& setting) {
    auto* box = new QCheckBox(title);
    box->setObjectName(QString::fromLatin1(name));
    connect(box, &QCheckBox::toggled, this, [&setting](bool on) { setting.set(on); });
    follow<bool>(setting, [box](bool on) {
        const QSignalBlocker quiet(box);
        box->setChecked(on);
    });
    return box;
}

SettingsPage::NumberRow SettingsPage::number(const char* name, const QString& title, Setting<double>& setting,
                                             const SettingRange& range, std::function<QString(double)> text) {
    const NumberRow parts{new QWidget, new QLabel(title), new QSlider(Qt::Horizontal), new SecondaryLabel};
    parts.label->setBuddy(parts.slider);
    parts.label->setFixedWidth(parts.label->fontMetrics().horizontalAdvance(QStringLiteral("Tile width")) +
                               20);
    parts.slider->setObjectName(QString::fromLatin1(name));
    parts.slider->setRange(0, stepsOf(range, range.most));
    parts.slider->setPageStep(std::max(1, parts.slider->maximum() / 10));
    parts.value->setFixedWidth(parts.value->fontMetrics().horizontalAdvance(QStringLiteral("0000 pt")));
    parts.value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* line = new QHBoxLayout(parts.row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addWidget(parts.label);
    line->addWidget(parts.slider, 1);
    line->addWidget(parts.value);

    connect(parts.slider, &QSlider::valueChanged, this,
            [&setting, range](int steps) { setting.set(valueAt(range, steps)); });
    follow<double>(setting, [parts, range, text = std::move(text)](double value) {
        const QSignalBlocker quiet(parts.slider);
        parts.slider->setValue(stepsOf(range, value));
        parts.value->setText(text(value));
    });
    return parts;
}

} // namespace lumnara
