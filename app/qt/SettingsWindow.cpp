#include "app/qt/SettingsWindow.h"

#include "app/qt/SecondaryLabel.h"
#include "app/qt/Theme.h"

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace lumnara {
namespace {

constexpr int windowWidth = 460;
constexpr int windowMargin = 24;
constexpr int cardMargin = 16;
constexpr int rowPadding = 12;
constexpr double cardRadius = 10;

/// A rounded ground with a hairline between its rows.
class SettingsCard : public QWidget {
public:
    SettingsCard() : rows_(this) {
        rows_.setContentsMargins(0, 0, 0, 0);
        rows_.setSpacing(0);
    }

    void add(QWidget* row) {
        row->setContentsMargins(cardMargin, rowPadding, cardMargin, rowPadding);
        rows_.addWidget(row);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Theme::of(appearanceOf(palette())).hairline);
        painter.setBrush(ground());
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cardRadius, cardRadius);
        for (int position = 1; position < rows_.count(); ++position) {
            const double top = rows_.itemAt(position)->geometry().top() + 0.5;
            painter.drawLine(QPointF(cardMargin, top), QPointF(width() - cardMargin, top));
        }
    }

private:
    /// Lighter than what is around it in both appearances; the fields of a dark palette are darker.
    QColor ground() const {
        if (appearanceOf(palette()) == Appearance::light) return palette().color(QPalette::Base);
        QColor veil = palette().color(QPalette::WindowText);
        veil.setAlphaF(0.055F);
        return veil;
    }

    QVBoxLayout rows_;
};

QWidget* sectionTitle(const QString& title) {
    auto* label = new QLabel(title);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    label->setContentsMargins(cardMargin, 0, 0, 0);
    return label;
}

/// Where the text of a check box begins.
int checkBoxIndent(const QWidget& box) {
    return box.style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, &box) +
           box.style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, &box);
}

/// A check box with a sentence about it below.
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

int stepsOf(const SettingRange& range, double value) {
    return static_cast<int>(
        std::lround((std::clamp(value, range.least, range.most) - range.least) / range.step));
}

double valueAt(const SettingRange& range, int steps) {
    // Tenths add up to numbers that nobody would have written.
    return std::round((range.least + steps * range.step) * 1000) / 1000;
}

QString pointsText(double value) { return QStringLiteral("%1 pt").arg(std::lround(value)); }
QString secondsText(double value) { return QStringLiteral("%1 s").arg(value, 0, 'f', 1); }

} // namespace

SettingsWindow::SettingsWindow(AppSettings& settings) : settings_(settings) {
    setWindowTitle(QStringLiteral("Lumnara Settings"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(windowMargin, windowMargin - 4, windowMargin, windowMargin);
    column->setSpacing(8);
    const std::pair<const char*, QWidget*> sections[] = {{"Displays", displaysCard()},
                                                         {"Switching", switchingCard()},
                                                         {"Board", boardCard()},
                                                         {"Session", sessionCard()}};
    for (const auto& [title, card] : sections) {
        if (column->count() > 0) column->addSpacing(10);
        column->addWidget(sectionTitle(QString::fromLatin1(title)));
        card->setFixedWidth(windowWidth);
        column->addWidget(card);
    }
    column->setSizeConstraint(QLayout::SetFixedSize);
}

void SettingsWindow::present() {
    readLaunchAtLogin();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

/// The session's own tools may have changed what is started at login while the window was behind theirs.
void SettingsWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) readLaunchAtLogin();
    QDialog::changeEvent(event);
}

QWidget* SettingsWindow::displaysCard() {
    auto* link = new QCheckBox(QStringLiteral("&Link displays"));
    link->setObjectName(QStringLiteral("linkDisplays"));
    connect(link, &QCheckBox::toggled, this, [this](bool on) {
        settings_.displayLinkMode.set(on ? DisplayLinkMode::linked : DisplayLinkMode::independent);
    });
    follow<DisplayLinkMode>(settings_.displayLinkMode, [link](DisplayLinkMode mode) {
        const QSignalBlocker quiet(link);
        link->setChecked(mode == DisplayLinkMode::linked);
    });
    auto* card = new SettingsCard;
    card->add(
        explained(link, QStringLiteral("Desktops of several displays can be linked. They share one name "
                                       "and are shown together.")));
    return card;
}

QWidget* SettingsWindow::switchingCard() {
    auto* card = new SettingsCard;
    QCheckBox* shows = toggle("switchOverlay", QStringLiteral("Show the &name of the desktop on switching"),
                              settings_.switchOverlay);
    card->add(plainRow(shows));
    const NumberRow duration =
        number("switchOverlayDuration", QStringLiteral("D&uration"), settings_.switchOverlayDuration,
               settingRanges::switchOverlayDuration, secondsText);
    card->add(duration.row);
    follow<bool>(settings_.switchOverlay, [duration](bool on) { duration.row->setEnabled(on); });
    return card;
}

QWidget* SettingsWindow::boardCard() {
    auto* card = new SettingsCard;
    QCheckBox* everywhere = toggle("boardOnEveryDisplay", QStringLiteral("Open on &every display"),
                                   settings_.boardOnEveryDisplay);
    card->add(explained(everywhere, QStringLiteral("Otherwise only on the display with the pointer.")));
    const NumberRow width = number("boardTileWidth", QStringLiteral("&Tile width"), settings_.boardTileWidth,
                                   settingRanges::boardTileWidth, pointsText);
    const NumberRow size = number("boardNameSize", QStringLiteral("Name si&ze"), settings_.boardNameSize,
                                  settingRanges::boardNameSize, pointsText);
    card->add(width.row);
    card->add(size.row);
    return card;
}

QWidget* SettingsWindow::sessionCard() {
    launchAtLogin_ = new QCheckBox(QStringLiteral("&Start at login"));
    launchAtLogin_->setObjectName(QStringLiteral("launchAtLogin"));
    connect(launchAtLogin_, &QCheckBox::toggled, this, [this](bool on) { settings_.setLaunchAtLogin(on); });
    changes_.push_back(settings_.launchAtLoginChanged.subscribe([this] { readLaunchAtLogin(); }));
    readLaunchAtLogin();
    auto* card = new SettingsCard;
    card->add(plainRow(launchAtLogin_));
    return card;
}

QCheckBox* SettingsWindow::toggle(const char* name, const QString& title, Setting<bool>& setting) {
    auto* box = new QCheckBox(title);
    box->setObjectName(QString::fromLatin1(name));
    connect(box, &QCheckBox::toggled, this, [&setting](bool on) { setting.set(on); });
    follow<bool>(setting, [box](bool on) {
        const QSignalBlocker quiet(box);
        box->setChecked(on);
    });
    return box;
}

SettingsWindow::NumberRow SettingsWindow::number(const char* name, const QString& title,
                                                 Setting<double>& setting, const SettingRange& range,
                                                 std::function<QString(double)> text) {
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

void SettingsWindow::readLaunchAtLogin() {
    const QSignalBlocker quiet(launchAtLogin_);
    launchAtLogin_->setChecked(settings_.launchAtLogin());
}

template <class T> void SettingsWindow::follow(Setting<T>& setting, std::function<void(const T&)> show) {
    show(setting.get());
    changes_.push_back(setting.subscribe(std::move(show)));
}

} // namespace lumnara
