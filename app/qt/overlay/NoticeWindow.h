#pragma once

#include "app/overlay/Notices.h"
#include "app/qt/overlay/FloatingCard.h"
#include "core/async/Timer.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace lumnara {

/// Shows notices near the bottom of the screen in use, the latest last, each for its time.
class NoticeWindow final : public FloatingCard {
public:
    explicit NoticeWindow(async::Loop& loop);

    void showNotice(const Notice& notice);

    /// Tells the area of the screen in use; without it, or when it gives nothing, the toolkit's screen under
    /// the pointer is taken.
    std::function<std::optional<QRect>()> areaInUse;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Paragraph {
        QString text;
        QSize size;
        std::unique_ptr<async::Delayed> end;
    };

    void remove(const Paragraph& ended);
    void layOut();

    async::Loop& loop_;
    std::vector<std::unique_ptr<Paragraph>> paragraphs_;
};

} // namespace lumnara
