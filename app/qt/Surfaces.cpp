#include "app/qt/Surfaces.h"

#include "app/qt/automation/AutomationsPage.h"
#include "app/qt/overlay/OverlayWindow.h"
#include "app/qt/settings/GeneralPage.h"
#include "app/qt/tracking/TimePage.h"
#include "app/qt/windows/WindowSystem.h"
#include "core/seams/Screens.h"
#include "core/text/Text.h"

#include <QApplication>

namespace lumnara {

namespace {

/// When the start is over and the program has nothing to do, in seconds.
constexpr double idleAfterStart = 1;

} // namespace

Surfaces::Surfaces(AppState& state, std::function<bool()> isComposited)
    : state_(state),
      windows_(state.loop(), std::move(isComposited)),
      board_(state, windows_),
      commands_(state),
      tray_(state.catalog(), state.settings()),
      layers_(state.loop()),
      notice_(state.loop()),
      overlay_(
          {state.loop(), state.catalog(), state.settings(), state.platform().screens.get(), state.notices(),
           state.announcer(), state.linkedSwitching().settled},
          [this] {
              auto card = std::make_unique<OverlayWindow>();
              if (layers_.isOffered()) card->standOn(layers_);
              return card;
          },
          [this](const ScreenInfo& screen) { return hasCards() && !board_.covers(screen); }),
      automationEditor_(state.loop(), state.automations(), state.automationRunner()),
      trackingPage_(state.loop(), state.tracking().store(), state.tracking().sampler(),
                    state.platform().kind),
      preparing_(state.loop(), idleAfterStart, [this] { board_.prepare(); }) {
    if (layers_.isOffered()) notice_.standOn(layers_);
    notice_.areaInUse = [this] { return areaInUse(); };
    QApplication::setQuitOnLastWindowClosed(false);
    board_.onShown = [this] { overlay_.giveWay(); };
    tray_.onChosen = [this](const DesktopMenuItem& item) { choose(item); };
    tray_.onOpenBoard = [this] { board_.toggle(); };
    tray_.onMenuTracking = [this](bool open) { board_.trackMenu(open); };
    notices_ = state.notices().subscribe([this](const Notice& notice) { show(notice); });
}

void Surfaces::choose(const DesktopMenuItem& item) {
    if (commands_.carryOut(item)) return;
    using Kind = DesktopMenuItem::Kind;
    if (item.kind == Kind::rename) rename(*item.desktop);
    if (item.kind == Kind::openBoard) board_.toggle();
    if (item.kind == Kind::settings) showSettings();
    if (item.kind == Kind::quit && onQuit) onQuit();
}

void Surfaces::showSettings() {
    board_.close(); // it would stand before the window and keep the keyboard from it
    if (!settings_) makeSettings();
    settings_->present();
}

void Surfaces::makeSettings() {
    settings_ = std::make_unique<SettingsWindow>();
    settings_->add(QStringLiteral("General"), new GeneralPage(state_.settings()));
    settings_->add(
        QStringLiteral("Automations"),
        new AutomationsPage(state_.settings(), state_.catalog(), state_.automations(), automationEditor_));
    settings_->add(QStringLiteral("Time"), new TimePage(state_.settings(), trackingPage_));
}

void Surfaces::rename(const Desktop& desktop) {
    board_.close();
    if (!rename_) rename_ = std::make_unique<RenameDialog>(state_.catalog());
    rename_->present(desktop);
}

bool Surfaces::hasCards() const { return placesOwnWindows() || layers_.isOffered(); }

std::optional<QRect> Surfaces::areaInUse() const {
    Screens* screens = state_.platform().screens.get();
    const auto uuid = screens ? screens->displayUnderPointer() : std::nullopt;
    if (!uuid) return std::nullopt;
    for (const ScreenInfo& screen : screens->screens())
        if (text::equalsIgnoringCase(screen.uuid, *uuid)) return areaOf(screen);
    return std::nullopt;
}

void Surfaces::show(const Notice& notice) {
    if (hasCards()) {
        notice_.showNotice(notice);
    } else {
        tray_.showMessage(QString::fromStdString(notice.text), notice.seconds);
    }
}

} // namespace lumnara
