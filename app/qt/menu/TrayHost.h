#pragma once

#include <QAbstractNativeEventFilter>
#include <QAction>

#include <functional>
#include <memory>

class QDBusServiceWatcher;

namespace lumnara {

/// Waits for the first program that shows tray icons: the owner of the X tray selection, or a host at the
/// status notifier watcher of the bus. Asks nobody twice but when something was announced. Main thread.
class TrayHost final : private QAbstractNativeEventFilter {
public:
    /// `onFound` is called once, later than this call.
    explicit TrayHost(std::function<void()> onFound);
    ~TrayHost() override;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void askBus();
    bool selectionIsOwned() const;
    void found();

    std::function<void()> onFound_;
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    /// The bus calls by a slot's name, which an action has.
    QAction hostRegistered_;
};

} // namespace lumnara
