#include "app/qt/automation/AutomationsPage.h"

#include "app/qt/settings/SettingsCard.h"
#include "app/qt/settings/WheelGuard.h"
#include "core/automation/AutomationPresets.h"

#include <QApplication>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QMenu>
#include <QScrollArea>
#include <QSignalBlocker>

#include <algorithm>

namespace lumnara {
namespace {

QString comboText(const AutomationDesktop& desktop) {
    QString text = QString::fromStdString(desktop.title);
    if (desktop.automations > 0) text += QStringLiteral(" (%1)").arg(desktop.automations);
    if (!desktop.isLive) text += QStringLiteral(", waiting");
    return text;
}

QString askForPath(QWidget* parent, const QString& from, bool folder) {
    QString start = from;
    if (start.startsWith('~')) start.replace(0, 1, QDir::homePath());
    if (start.isEmpty()) start = QDir::homePath();
    return folder ? QFileDialog::getExistingDirectory(parent, QStringLiteral("Choose a Folder"), start)
                  : QFileDialog::getOpenFileName(parent, QStringLiteral("Choose a File"), start);
}

} // namespace

AutomationsPage::AutomationsPage(AppSettings& settings, DesktopCatalog& catalog, AutomationStore& store,
                                 AutomationEditor& editor)
    : SettingsPage(settings),
      choosePath(askForPath),
      catalog_(catalog),
      store_(store),
      editor_(editor),
      save_([this](const std::function<void()>& change) { save(change); }),
      tryAgain_(QStringLiteral("Try Again")),
      add_(QStringLiteral("&Add")),
      putBack_(QStringLiteral("&Undo")) {
    auto* page = new QVBoxLayout(this);
    page->setSpacing(12);
    page->addWidget(noticeRow());
    page->addWidget(desktopRow());
    waiting_.setObjectName(QStringLiteral("waiting"));
    waiting_.setWordWrap(true);
    page->addWidget(&waiting_);
    page->addWidget(undoRow());
    empty_.setObjectName(QStringLiteral("noAutomations"));
    empty_.setWordWrap(true);
    empty_.setAlignment(Qt::AlignCenter);
    empty_.setContentsMargins(0, 48, 0, 48);
    page->addWidget(&empty_);
    list_ = new QWidget;
    column_ = new QVBoxLayout(list_);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(12);
    page->addWidget(list_);
    page->addStretch();

    if (const Desktop* focused = catalog_.focusedDesktop()) key_ = focused->key;
    changes_.push_back(store_.changed.subscribe([this] { show(); }));
    changes_.push_back(catalog_.displays.subscribe([this](const auto&) { show(); }));
    changes_.push_back(editor_.runChanged.subscribe(
        [this](const std::string& id, const std::optional<AutomationRunReport>& report) {
            noteRun(id, report);
        }));
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now && isAncestorOf(now))
            QMetaObject::invokeMethod(this, [this] { reveal(); }, Qt::QueuedConnection);
    });
    show();
}

QWidget* AutomationsPage::noticeRow() {
    auto* row = new QWidget;
    QHBoxLayout* line = lineIn(row);
    noticeText_.setObjectName(QStringLiteral("notice"));
    noticeText_.setTextFormat(Qt::PlainText);
    noticeText_.setWordWrap(true);
    noticeText_.setTextInteractionFlags(Qt::TextSelectableByMouse);
    tryAgain_.setObjectName(QStringLiteral("tryAgain"));
    tryAgain_.setAutoDefault(false);
    connect(&tryAgain_, &QPushButton::clicked, this, [this] { tryAgain(); });
    line->addWidget(&noticeText_, 1);
    line->addWidget(&tryAgain_, 0, Qt::AlignTop);
    auto* card = new SettingsCard;
    card->add(row);
    notice_ = card;
    return card;
}

QWidget* AutomationsPage::desktopRow() {
    auto* row = new QWidget;
    QHBoxLayout* line = lineIn(row);
    auto* label = new QLabel(QStringLiteral("&Desktop"));
    label->setBuddy(&desktop_);
    desktop_.setObjectName(QStringLiteral("desktop"));
    desktop_.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    desktop_.setMinimumContentsLength(12);
    desktop_.setMaxVisibleItems(16);
    guardFromWheel(&desktop_);
    connect(&desktop_, &QComboBox::activated, this, [this](int place) {
        choose(desktops_.at(static_cast<std::size_t>(place)).key);
        showDesktops();
    });
    add_.setObjectName(QStringLiteral("addAutomation"));
    add_.setAutoDefault(false);
    fillAddMenu();
    line->addWidget(label);
    line->addWidget(&desktop_, 1);
    line->addWidget(&add_);
    return row;
}

void AutomationsPage::fillAddMenu() {
    auto* menu = new QMenu(&add_);
    menu->addAction(QStringLiteral("Empty Automation"), this,
                    [this] { add([this] { return editor_.addEmpty(key_); }); });
    menu->addSeparator();
    const std::vector<Automation> presets = AutomationPresets::all({});
    for (std::size_t place = 0; place < presets.size(); ++place)
        menu->addAction(symbolIcon(QString::fromStdString(presets[place].icon)),
                        QString::fromStdString(presets[place].name), this,
                        [this, place] { add([this, place] { return editor_.addPreset(key_, place); }); })
            ->setIconVisibleInMenu(true);
    add_.setMenu(menu);
}

QWidget* AutomationsPage::undoRow() {
    undo_ = new QWidget;
    QHBoxLayout* line = lineIn(undo_);
    removed_.setObjectName(QStringLiteral("removed"));
    removed_.setTextFormat(Qt::PlainText);
    removed_.setWordWrap(true);
    putBack_.setObjectName(QStringLiteral("undo"));
    putBack_.setAutoDefault(false);
    connect(&putBack_, &QPushButton::clicked, this, [this] { undo(); });
    line->addWidget(&removed_, 1);
    line->addWidget(&putBack_);
    return undo_;
}

bool AutomationsPage::choose(const std::string& key) {
    if (key == key_) return true;
    if (std::ranges::find(desktops_, key, &AutomationDesktop::key) == desktops_.end() || !commit())
        return false;
    key_ = key;
    show();
    return true;
}

void AutomationsPage::show() {
    showDesktops();
    showNotice();
    showUndo();
    showCards();
}

void AutomationsPage::showDesktops() {
    std::vector<AutomationDesktop> now = automationDesktops(catalog_, store_);
    const QSignalBlocker quiet(desktop_);
    if (now != desktops_) {
        desktops_ = std::move(now);
        desktop_.clear();
        for (const AutomationDesktop& each : desktops_) desktop_.addItem(comboText(each));
    }
    auto chosen = std::ranges::find(desktops_, key_, &AutomationDesktop::key);
    if (chosen == desktops_.end()) {
        chosen = desktops_.begin();
        key_ = desktops_.empty() ? std::string() : chosen->key;
    }
    desktop_.setCurrentIndex(desktops_.empty() ? -1 : static_cast<int>(chosen - desktops_.begin()));
    desktop_.setEnabled(!desktops_.empty());
    const bool waits = !desktops_.empty() && !chosen->isLive;
    waiting_.setVisible(waits);
    waiting_.setText(waits ? QString::fromStdString(waitingReason(catalog_, key_)) : QString());
    empty_.setVisible(desktops_.empty() || chosen->automations == 0);
    empty_.setText(
        desktops_.empty()
            ? QStringLiteral("There are no desktops to automate at present.")
            : QStringLiteral("“%1” has no automations yet. Add an empty one, or begin with “Focus”, "
                             "“Meeting” or “Break”.")
                  .arg(QString::fromStdString(chosen->title)));
}

void AutomationsPage::showNotice() {
    const auto notice = noticeOf(store_);
    notice_->setVisible(notice.has_value());
    noticeText_.setText(notice ? QString::fromStdString(notice->text) : QString());
    tryAgain_.setVisible(notice && notice->remedy != AutomationsNotice::Remedy::none);
    const bool canEdit = !notice || notice->canEdit;
    list_->setEnabled(canEdit);
    undo_->setEnabled(canEdit);
    add_.setEnabled(canEdit && !desktops_.empty());
}

void AutomationsPage::tryAgain() {
    if (const auto notice = noticeOf(store_); notice && !notice->canEdit)
        store_.load();
    else
        save([this] { store_.save(); });
    showNotice();
}

void AutomationsPage::showUndo() {
    const auto title = editor_.undoTitle(key_);
    removed_.setText(title ? QStringLiteral("Removed %1.").arg(QString::fromStdString(*title)) : QString());
    undo_->setVisible(title.has_value());
}

/// Cards are kept by their automation: what is being entered in them stays.
void AutomationsPage::showCards() {
    const std::vector<Automation> automations = editor_.automations(key_);
    list_->setVisible(!automations.empty());
    std::vector<AutomationCard*> shown;
    for (const Automation& automation : automations) {
        const auto known = std::ranges::find(cards_, automation.id, &AutomationCard::id);
        if (known != cards_.end()) {
            shown.push_back(*known);
            cards_.erase(known);
        } else {
            shown.push_back(new AutomationCard(editor_, save_, choosePath));
        }
        const int place = static_cast<int>(shown.size()) - 1;
        if (column_->indexOf(shown.back()) != place) column_->insertWidget(place, shown.back());
        shown.back()->show(automation);
        shown.back()->setVisible(true); // now, so that it can take the focus
        showRun(*shown.back());
    }
    for (AutomationCard* gone : cards_) {
        gone->hide(); // passes the focus on
        gone->deleteLater();
        column_->removeWidget(gone);
    }
    cards_ = std::move(shown);
    QWidget* before = &putBack_;
    for (AutomationCard* card : cards_) before = card->orderTabs(before);
}

void AutomationsPage::noteRun(const std::string& id, const std::optional<AutomationRunReport>& report) {
    if (report)
        results_[id] = resultOf(*report);
    else if (editor_.isRunning(id))
        results_.erase(id);
    else
        results_[id] = cancelledResult();
    const auto card = std::ranges::find(cards_, id, &AutomationCard::id);
    if (card != cards_.end()) showRun(**card);
}

void AutomationsPage::showRun(AutomationCard& card) {
    const auto result = results_.find(card.id());
    card.showRun(editor_.isRunning(card.id()), result == results_.end() ? nullptr : &result->second);
}

void AutomationsPage::save(const std::function<void()>& change) {
    try {
        change();
    } catch (const AutomationEditError&) {
        throw;
    } catch (const std::exception&) {
        // It holds in memory, and the store knows why it isn't saved.
    }
    showNotice();
    showUndo();
}

void AutomationsPage::add(const std::function<std::string()>& make) {
    save([&] { make(); });
    if (!cards_.empty()) cards_.back()->focusName();
}

/// Scrolls to what has the focus, a form as a whole, once it has found its place.
void AutomationsPage::reveal() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QWidget* target = window()->focusWidget();
    if (!target || !isAncestorOf(target)) return;
    for (QWidget* above = target; above != this; above = above->parentWidget())
        if (dynamic_cast<ActionForm*>(above)) target = above;
    for (QWidget* above = parentWidget(); above; above = above->parentWidget())
        if (auto* scroll = qobject_cast<QScrollArea*>(above)) scroll->ensureWidgetVisible(target, 0, 16);
}

void AutomationsPage::undo() {
    if (commit()) save([this] { editor_.undoRemoval(key_); });
}

bool AutomationsPage::commit() {
    return std::ranges::all_of(cards_, [](AutomationCard* card) { return card->commit(); });
}

} // namespace lumnara
