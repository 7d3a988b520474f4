#include "app/qt/tracking/TimePage.h"

#include "app/qt/look/SecondaryLabel.h"
#include "app/qt/settings/SettingsCard.h"
#include "core/base/Failure.h"

#include <QCheckBox>
#include <QDateTime>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLocale>
#include <QMessageBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <cmath>

namespace lumnara {
namespace {

/// Offered for "Count as idle after", in minutes.
constexpr std::array idleMinutes{1, 2, 3, 5, 10, 15, 30, 60};
constexpr int mostSessionRows = 8;

QString minutesText(double seconds) {
    const double minutes = seconds / 60;
    if (minutes == 1) return QStringLiteral("1 minute");
    return QStringLiteral("%1 minutes").arg(minutes, 0, 'g', 4);
}

QString momentText(const Date& date) {
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(date.milliseconds), QLocale::ShortFormat);
}

QString stateText(const TrackingSession& session) {
    switch (session.state) {
    case TrackingSession::State::running: return QStringLiteral("Running");
    case TrackingSession::State::paused: return QStringLiteral("Paused");
    case TrackingSession::State::ended: break;
    }
    return session.endedAt ? momentText(*session.endedAt) : QStringLiteral("Ended");
}

} // namespace

TimePage::TimePage(AppSettings& settings, TrackingPage& page)
    : SettingsPage(settings),
      page_(page),
      start_(QStringLiteral("&Start")),
      pause_(QStringLiteral("&Pause")),
      end_(QStringLiteral("&End")),
      usage_(page),
      nothing_(QString::fromUtf8(TrackingPage::nothingRecorded)) {
    auto* column = new QVBoxLayout(this);
    column->setSpacing(8);
    auto* heading = new SecondaryLabel(QString::fromStdString(page.heading()));
    heading->setWordWrap(true);
    column->addWidget(heading);
    column->addWidget(recordingCard());
    column->addWidget(sessionCard());
    column->addSpacing(10);
    column->addWidget(reportHead());
    column->addWidget(reportCard());
    column->addSpacing(10);
    auto* sessionsColumn = new QVBoxLayout;
    sessionsSection_ = new QWidget;
    sessionsSection_->setLayout(sessionsColumn);
    sessionsColumn->setContentsMargins(0, 0, 0, 0);
    sessionsColumn->addWidget(sectionTitle(QStringLiteral("Sessions")));
    sessionsColumn->addWidget(&sessions_);
    column->addWidget(sessionsSection_);
    column->addStretch();

    sessions_.setObjectName(QStringLiteral("sessions"));
    sessions_.setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Started"), QStringLiteral("Ended")});
    sessions_.setRootIsDecorated(false);
    sessions_.header()->setSectionResizeMode(0, QHeaderView::Stretch);
    sessions_.header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    sessions_.header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    sessions_.header()->setStretchLastSection(false);

    chooseFile = [this](const QString& proposed) {
        return QFileDialog::getSaveFileName(this, QStringLiteral("Export CSV"), proposed,
                                            QStringLiteral("Comma-separated text (*.csv)"));
    };
    onFailure = [this](const QString& sentence) {
        QMessageBox::warning(this, QStringLiteral("Lumnara"), sentence);
    };
    changes_.push_back(page_.changed.subscribe([this] { showPage(); }));
    page_.reload();
}

QWidget* TimePage::recordingCard() {
    auto* card = new SettingsCard;
    QCheckBox* track = toggle("trackTime", QStringLiteral("&Track time per desktop"), settings_.trackTime);
    connect(track, &QCheckBox::toggled, this, [this] { page_.reload(); });
    track->setEnabled(page_.isAvailable());
    card->add(plainRow(track));
    QWidget* idle = idleRow();
    card->add(idle);
    follow<bool>(settings_.trackTime, [this, idle](bool on) { idle->setEnabled(on && page_.isAvailable()); });
    return card;
}

QWidget* TimePage::idleRow() {
    auto* row = new QWidget;
    auto* label = new QLabel(QStringLiteral("Count as &idle after"));
    auto* choice = new QComboBox;
    choice->setObjectName(QStringLiteral("idleThreshold"));
    label->setBuddy(choice);
    auto* line = lineIn(row);
    line->addWidget(label);
    line->addStretch();
    line->addWidget(choice);
    follow<double>(settings_.idleThreshold, [choice](double seconds) {
        const QSignalBlocker quiet(choice);
        choice->clear();
        for (const int minutes : idleMinutes) choice->addItem(minutesText(minutes * 60), minutes * 60.0);
        int place = choice->findData(seconds);
        if (place < 0) { // the truth, though it couldn't be chosen here
            choice->addItem(minutesText(seconds), seconds);
            place = choice->count() - 1;
        }
        choice->setCurrentIndex(place);
    });
    connect(choice, &QComboBox::activated, this,
            [this, choice] { settings_.idleThreshold.set(choice->currentData().toDouble()); });
    return row;
}

QWidget* TimePage::sessionCard() {
    auto* row = new QWidget;
    auto* line = lineIn(row);
    sessionName_.setObjectName(QStringLiteral("sessionName"));
    sessionName_.setPlaceholderText(QStringLiteral("Session name (for example a client)"));
    start_.setObjectName(QStringLiteral("startSession"));
    pause_.setObjectName(QStringLiteral("pauseSession"));
    end_.setObjectName(QStringLiteral("endSession"));
    connect(&sessionName_, &QLineEdit::textChanged, this,
            [this](const QString& text) { page_.sessionName = text.toStdString(); });
    connect(&sessionName_, &QLineEdit::returnPressed, &start_, &QPushButton::click);
    connect(&start_, &QPushButton::clicked, this, [this] { attempt([this] { page_.startSession(); }); });
    connect(&pause_, &QPushButton::clicked, this, [this] { attempt([this] { page_.pauseSession(); }); });
    connect(&end_, &QPushButton::clicked, this, [this] { attempt([this] { page_.endSession(); }); });
    for (QPushButton* button : {&start_, &pause_, &end_}) button->setAutoDefault(false);
    line->addWidget(&sessionName_, 1);
    line->addWidget(&start_);
    line->addWidget(&pause_);
    line->addWidget(&end_);
    auto* card = new SettingsCard;
    card->add(row);
    return card;
}

QWidget* TimePage::reportHead() {
    auto* head = new QWidget;
    auto* line = lineIn(head);
    auto* range = new QComboBox;
    range->setObjectName(QStringLiteral("range"));
    range->setAccessibleName(QStringLiteral("Range"));
    for (const RangeChoice choice : rangeChoices)
        range->addItem(QString::fromUtf8(labelOf(choice).data(), static_cast<int>(labelOf(choice).size())));
    range->setCurrentIndex(
        static_cast<int>(std::ranges::find(rangeChoices, page_.range()) - rangeChoices.begin()));
    connect(range, &QComboBox::activated, this,
            [this](int place) { page_.setRange(rangeChoices.at(static_cast<std::size_t>(place))); });

    auto* apps = new QCheckBox(QStringLiteral("Include &app details"));
    apps->setObjectName(QStringLiteral("includeApps"));
    apps->setChecked(page_.includeApps);
    connect(apps, &QCheckBox::toggled, this, [this](bool on) { page_.includeApps = on; });

    auto* groupLabel = new QLabel(QStringLiteral("&Group by"));
    auto* group = new QComboBox;
    group->setObjectName(QStringLiteral("grouping"));
    group->addItems({QStringLiteral("Day"), QStringLiteral("Week")});
    group->setCurrentIndex(page_.grouping == CSVGrouping::day ? 0 : 1);
    groupLabel->setBuddy(group);
    connect(group, &QComboBox::activated, this,
            [this](int place) { page_.grouping = place == 0 ? CSVGrouping::day : CSVGrouping::week; });

    auto* save = new QPushButton(QStringLiteral("E&xport CSV"));
    save->setObjectName(QStringLiteral("exportCSV"));
    save->setAutoDefault(false);
    save->setEnabled(page_.isAvailable());
    connect(save, &QPushButton::clicked, this, [this] { exportReport(); });

    line->addWidget(range);
    line->addStretch();
    line->addWidget(apps);
    line->addSpacing(8);
    line->addWidget(groupLabel);
    line->addWidget(group);
    line->addWidget(save);
    return head;
}

QWidget* TimePage::reportCard() {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    nothing_.setAlignment(Qt::AlignCenter);
    nothing_.setContentsMargins(0, 18, 0, 18);
    column->addWidget(&nothing_);
    column->addWidget(&usage_);
    auto* card = new SettingsCard;
    card->add(content);
    content->setContentsMargins(0, 6, 0, 8);
    return card;
}

void TimePage::showPage() {
    usage_.show(page_);
    usage_.setVisible(!page_.rows().empty());
    nothing_.setVisible(page_.rows().empty());
    start_.setEnabled(page_.isAvailable());
    sessionName_.setEnabled(page_.isAvailable());
    pause_.setEnabled(page_.hasActiveSession());
    end_.setEnabled(page_.hasActiveSession());
    showSessions();
}

void TimePage::showSessions() {
    sessions_.clear();
    for (const TrackingSession& session : page_.sessions())
        new QTreeWidgetItem(&sessions_, {QString::fromStdString(session.name), momentText(session.startedAt),
                                         stateText(session)});
    sessionsSection_->setVisible(!page_.sessions().empty());
    const int rows = std::min<int>(mostSessionRows, static_cast<int>(page_.sessions().size()));
    const int rowHeight = std::max(sessions_.sizeHintForRow(0), fontMetrics().height() + 6);
    sessions_.setFixedHeight(sessions_.header()->sizeHint().height() + rows * rowHeight + 6);
}

void TimePage::exportReport() {
    const QString chosen = chooseFile(QString::fromStdString(page_.proposedFileName()));
    if (!chosen.isEmpty()) attempt([this, &chosen] { page_.exportTo(chosen.toStdString()); });
}

void TimePage::attempt(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception&) {
        onFailure(QString::fromStdString(sentenceOf(std::current_exception())));
    }
}

} // namespace lumnara
