#include "app/qt/menu/TrayHost.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <xcb/xcb.h>

namespace lumnara {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

xcb_connection_t* xConnection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

template <class T> std::unique_ptr<T, decltype(&std::free)> owned(T* reply) { return {reply, &std::free}; }

} // namespace

TrayHost::TrayHost(std::function<void()> onFound)
    : onFound_(std::move(onFound)),
      watcher_(std::make_unique<QDBusServiceWatcher>(watcherName, QDBusConnection::sessionBus(),
                                                     QDBusServiceWatcher::WatchForRegistration)) {
    QObject::connect(watcher_.get(), &QDBusServiceWatcher::serviceRegistered, watcher_.get(),
                     [this] { askBus(); });
    QObject::connect(&hostRegistered_, &QAction::triggered, watcher_.get(), [this] { askBus(); });
    QDBusConnection::sessionBus().connect(watcherName, watcherPath, watcherName,
                                          QStringLiteral("StatusNotifierHostRegistered"), &hostRegistered_,
                                          SLOT(trigger()));
    askBus();
    if (!xConnection()) return;
    QCoreApplication::instance()->installNativeEventFilter(this);
    if (selectionIsOwned())
        QMetaObject::invokeMethod(watcher_.get(), [this] { found(); }, Qt::QueuedConnection);
}

TrayHost::~TrayHost() {
    if (QCoreApplication::instance()) QCoreApplication::instance()->removeNativeEventFilter(this);
}

/// A new owner announces itself by a client message to the root window.
bool TrayHost::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7FU) == XCB_CLIENT_MESSAGE && onFound_ && selectionIsOwned())
        QMetaObject::invokeMethod(watcher_.get(), [this] { found(); }, Qt::QueuedConnection);
    return false;
}

bool TrayHost::selectionIsOwned() const {
    static constexpr std::string_view name = "_NET_SYSTEM_TRAY_S0";
    xcb_connection_t* x = xConnection();
    const auto atom =
        owned(xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, name.size(), name.data()), nullptr));
    if (!atom) return false;
    const auto owner =
        owned(xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

void TrayHost::askBus() {
    QDBusMessage question = QDBusMessage::createMethodCall(
        watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    // The question must not start a watcher that the session does without.
    question.setAutoStartService(false);
    auto* answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), watcher_.get());
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, watcher_.get(), [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        if (reply.isValid() && reply.value().variant().toBool()) found();
    });
}

void TrayHost::found() {
    if (const auto tell = std::exchange(onFound_, nullptr)) tell();
}

} // namespace lumnara
