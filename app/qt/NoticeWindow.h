#pragma once

#include "app/Notices.h"
#include "core/async/Timer.h"

#include <QWidget>

#include <memory>

namespace lumnara {

/// Shows a notice near the bottom of the screen under the pointer, over everything. It takes no focus, no
/// key and no click. A later notice replaces an earlier one.
class NoticeWindow final : public QWidget {
public:
    explicit NoticeWindow(async::Loop& loop);

    void showNotice(const Notice& notice);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void place();

    async::Loop& loop_;
    QString text_;
    std::unique_ptr<async::Delayed> end_;
};

} // namespace lumnara
