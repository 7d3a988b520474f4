#pragma once

#include "app/Notices.h"
#include "app/qt/FloatingCard.h"
#include "core/async/Timer.h"

#include <memory>

namespace lumnara {

/// Shows a notice near the bottom of the screen under the pointer. A later notice replaces an earlier one.
class NoticeWindow final : public FloatingCard {
public:
    explicit NoticeWindow(async::Loop& loop);

    void showNotice(const Notice& notice);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect place() const;

    async::Loop& loop_;
    QString text_;
    std::unique_ptr<async::Delayed> end_;
};

} // namespace lumnara
