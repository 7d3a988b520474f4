#include "app/qt/overlay/NoticeWindow.h"

#include "app/qt/look/TextFit.h"
#include "app/qt/look/Theme.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

#include <algorithm>

namespace lumnara {
namespace {

constexpr int mostTextWidth = 520;
constexpr int sidePadding = 22;
constexpr int heightPadding = 14;
constexpr double cornerRadius = 14;
constexpr double textSize = 15;
/// How far the notice stands from the bottom, as a part of the screen's height.
constexpr double bottomPart = 0.09;
constexpr int mostLines = 5;
constexpr std::size_t mostParagraphs = 4;
constexpr int paragraphGap = 19;

QRect areaUnderPointer() {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    return (screen ? screen : QGuiApplication::primaryScreen())->geometry();
}

QFont noticeFont() { return interfaceFont(textSize, QFont::Medium); }

} // namespace

NoticeWindow::NoticeWindow(async::Loop& loop)
    : FloatingCard(QStringLiteral("Lumnara notice"), cornerRadius),
      loop_(loop) {}

void NoticeWindow::showNotice(const Notice& notice) {
    const QString text = QString::fromStdString(notice.text);
    std::erase_if(paragraphs_, [&](const auto& shown) { return shown->text == text; });
    if (paragraphs_.size() == mostParagraphs) paragraphs_.erase(paragraphs_.begin());
    auto added = std::make_unique<Paragraph>(Paragraph{text, {}, nullptr});
    added->end = std::make_unique<async::Delayed>(loop_, notice.seconds,
                                                  [this, ended = added.get()] { remove(*ended); });
    paragraphs_.push_back(std::move(added));
    layOut();
}

void NoticeWindow::remove(const Paragraph& ended) {
    std::erase_if(paragraphs_, [&](const auto& shown) { return shown.get() == &ended; });
    if (paragraphs_.empty())
        hide();
    else
        layOut();
}

void NoticeWindow::layOut() {
    const auto inUse = areaInUse ? areaInUse() : std::nullopt;
    const QRect area = inUse ? *inUse : areaUnderPointer();
    const double room = std::min(mostTextWidth, area.width() - 2 * sidePadding - 32);
    QSize size(0, -paragraphGap);
    for (const auto& paragraph : paragraphs_) {
        paragraph->size = fittedSize(paragraph->text, noticeFont(), room, mostLines).toSize();
        size = {std::max(size.width(), paragraph->size.width()),
                size.height() + paragraphGap + paragraph->size.height()};
    }
    size += QSize(2 * sidePadding, 2 * heightPadding);
    putUp(QRect({area.center().x() - size.width() / 2,
                 area.bottom() - static_cast<int>(area.height() * bottomPart) - size.height()},
                size));
}

void NoticeWindow::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::of(sessionAppearance());
    QPainter painter(this);
    drawGround(painter, theme);
    QRect box = rect().adjusted(sidePadding, heightPadding, -sidePadding, 0);
    for (const auto& paragraph : paragraphs_) {
        box.setHeight(paragraph->size.height());
        painter.setPen(theme.text);
        drawFitted(painter, box, paragraph->text, noticeFont(), mostLines);
        if (paragraph != paragraphs_.back())
            painter.fillRect(QRect(box.left(), box.bottom() + paragraphGap / 2, box.width(), 1),
                             theme.hairline);
        box.translate(0, box.height() + paragraphGap);
    }
}

} // namespace lumnara
