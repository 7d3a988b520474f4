#pragma once

#include "app/Notices.h"
#include "app/qt/FloatingCard.h"
#include "core/async/Timer.h"

#include <memory>
#include <vector>

namespace lumnara {

/// Shows notices near the bottom of the screen under the pointer, the latest last, each for its time.
class NoticeWindow final : public FloatingCard {
public:
    explicit NoticeWindow(async::Loop& loop);

    void showNotice(const Notice& notice);

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
