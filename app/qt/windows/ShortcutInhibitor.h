#pragma once

#include <QObject>

#include <memory>

class QWindow;

namespace lumnara {

/// Keeps the compositor's own key bindings back under Wayland while a window of ours has the keyboard
/// (zwp_keyboard_shortcuts_inhibit_manager_v1). Where the compositor doesn't offer it, or under another
/// window system, nothing happens. Never waits for the compositor. The application object outlives it.
class ShortcutInhibitor final : public QObject {
public:
    ShortcutInhibitor();
    ~ShortcutInhibitor() override;

    /// From now on for this window too, as long as it is on screen. It is released before it goes.
    void hold(QWindow& window);
    void release(QWindow& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Connection;

    /// To the compositor; none under another window system.
    std::unique_ptr<Connection> connection_;
};

} // namespace lumnara
