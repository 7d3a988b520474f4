#include "app/qt/settings/WheelGuard.h"

#include <QEvent>
#include <QWidget>

namespace lumnara {
namespace {

class WheelGuard : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus()) return false;
        event->ignore();
        return true;
    }
};

} // namespace

void guardFromWheel(QWidget* control) {
    control->setFocusPolicy(Qt::StrongFocus);
    control->installEventFilter(new WheelGuard(control));
}

} // namespace lumnara
