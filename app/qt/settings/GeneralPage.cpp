#include "app/qt/settings/GeneralPage.h"

#include "app/qt/settings/SettingsCard.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

namespace lumnara {
namespace {

constexpr int columnWidth = 460;

QString pointsText(double value) { return QStringLiteral("%1 pt").arg(std::lround(value)); }
QString secondsText(double value) { return QStringLiteral("%1 s").arg(value, 0, 'f', 1); }

} // namespace

GeneralPage::GeneralPage(AppSettings& settings) : SettingsPage(settings) {
    auto* middle = new QWidget;
    middle->setFixedWidth(columnWidth);
    auto* column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    const std::pair<const char*, QWidget*> sections[] = {{"Displays", displaysCard()},
                                                         {"Switching", switchingCard()},
                                                         {"Board", boardCard()},
                                                         {"Session", sessionCard()}};
    for (const auto& [title, card] : sections) {
        if (column->count() > 0) column->addSpacing(10);
        column->addWidget(sectionTitle(QString::fromLatin1(title)));
        column->addWidget(card);
    }
    column->addStretch();
    auto* row = new QHBoxLayout(this);
    row->addStretch();
    row->addWidget(middle);
    row->addStretch();
}

QWidget* GeneralPage::displaysCard() {
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

QWidget* GeneralPage::switchingCard() {
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

QWidget* GeneralPage::boardCard() {
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

QWidget* GeneralPage::sessionCard() {
    launchAtLogin_ = new QCheckBox(QStringLiteral("&Start at login"));
    launchAtLogin_->setObjectName(QStringLiteral("launchAtLogin"));
    connect(launchAtLogin_, &QCheckBox::toggled, this, [this](bool on) { settings_.setLaunchAtLogin(on); });
    changes_.push_back(settings_.launchAtLoginChanged.subscribe([this] { readLaunchAtLogin(); }));
    readLaunchAtLogin();
    auto* card = new SettingsCard;
    card->add(plainRow(launchAtLogin_));
    return card;
}

void GeneralPage::readLaunchAtLogin() {
    const QSignalBlocker quiet(launchAtLogin_);
    launchAtLogin_->setChecked(settings_.launchAtLogin());
}

} // namespace lumnara
