#include "app/qt/tracking/UsageList.h"

#include "app/qt/look/Theme.h"

#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace lumnara {
namespace {

constexpr int desktopRowHeight = 44;
constexpr int appRowHeight = 34;
constexpr int sidePadding = 16;
constexpr int barHeight = 6;
constexpr int appIndent = 18;

enum Role { nameRole = Qt::UserRole, detailRole, activeRole, idleRole, mostRole, keyRole };

QString durationOf(double seconds) { return QString::fromStdString(durationText(seconds)); }

QString detailOf(const UsageRow& row) {
    const QString total = durationOf(row.active + row.idle);
    return row.idle < 60 ? total : QStringLiteral("%1, %2 of it idle").arg(total, durationOf(row.idle));
}

/// Draws a name, its time at the end of the line, and below both the bar.
class UsageDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const override {
        return {200, index.parent().isValid() ? appRowHeight : desktopRowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const bool isApp = index.parent().isValid();
        const Theme& theme = Theme::of(appearanceOf(option.palette));
        if (option.state & QStyle::State_HasFocus) {
            QColor ground = option.palette.color(QPalette::Highlight);
            ground.setAlphaF(0.16F);
            painter->fillRect(option.rect, ground);
        }
        const QRect box = option.rect.adjusted(sidePadding + (isApp ? appIndent : 0), 6, -sidePadding, -7);
        drawTexts(*painter, option, index, box, isApp);
        drawBar(*painter, theme, index, box, isApp);
        painter->restore();
    }

private:
    static void drawTexts(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                          const QRect& box, bool isApp) {
        const QString detail = index.data(detailRole).toString();
        QFont font = option.font;
        if (!isApp) font.setWeight(QFont::DemiBold);
        const int detailWidth = QFontMetrics(option.font).horizontalAdvance(detail);
        QColor secondary = option.palette.color(QPalette::WindowText);
        secondary.setAlphaF(0.7F);
        painter.setFont(option.font);
        painter.setPen(secondary);
        painter.drawText(box, Qt::AlignRight | Qt::AlignTop, detail);
        painter.setFont(font);
        painter.setPen(option.palette.color(QPalette::WindowText));
        QString name = index.data(nameRole).toString();
        if (!isApp)
            name.prepend(index.model()->hasChildren(index) ? QStringLiteral("▾  ") : QStringLiteral("▸  "));
        painter.drawText(box, Qt::AlignLeft | Qt::AlignTop,
                         QFontMetrics(font).elidedText(name, Qt::ElideRight, box.width() - detailWidth - 16));
    }

    static void drawBar(QPainter& painter, const Theme& theme, const QModelIndex& index, const QRect& box,
                        bool isApp) {
        const double most = index.data(mostRole).toDouble();
        if (most <= 0) return;
        const double active = index.data(activeRole).toDouble(), idle = index.data(idleRole).toDouble();
        const double height = isApp ? barHeight - 2 : barHeight;
        const double top = box.bottom() + 1 - height;
        const QRectF whole(box.left(), top, std::max((active + idle) / most * box.width(), height), height);
        painter.setPen(Qt::NoPen);
        QColor color = theme.legible(QColor(0x3D, 0x7B, 0xD9));
        color.setAlphaF(0.32F);
        painter.setBrush(color);
        painter.drawRoundedRect(whole, height / 2, height / 2);
        if (active <= 0) return;
        color.setAlphaF(isApp ? 0.7F : 1.0F);
        painter.setBrush(color);
        const double width = std::max(active / most * box.width(), height);
        painter.drawRoundedRect(QRectF(box.left(), top, width, height), height / 2, height / 2);
    }
};

QTreeWidgetItem* itemFor(const UsageRow& row, const QString& name, double most) {
    auto* item = new QTreeWidgetItem;
    item->setData(0, nameRole, name);
    item->setData(0, detailRole, detailOf(row));
    item->setData(0, activeRole, row.active);
    item->setData(0, idleRole, row.idle);
    item->setData(0, mostRole, most);
    item->setData(0, keyRole, QString::fromStdString(row.spaceKey));
    item->setData(0, Qt::AccessibleTextRole, name + QStringLiteral(", ") + detailOf(row));
    return item;
}

QString appNameOf(const UsageRow& row) {
    return row.appName ? QString::fromStdString(*row.appName) : QStringLiteral("Unknown");
}

} // namespace

UsageList::UsageList(TrackingPage& page) : page_(page) {
    setObjectName(QStringLiteral("usage"));
    setAccessibleName(QStringLiteral("Time per desktop"));
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setIndentation(0);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setItemDelegate(new UsageDelegate(this));
    setExpandsOnDoubleClick(false);
    viewport()->setAutoFillBackground(false);
    const auto toggle = [this](QTreeWidgetItem* item) {
        if (!item->parent()) page_.toggleExpanded(item->data(0, keyRole).toString().toStdString());
    };
    connect(this, &QTreeWidget::itemClicked, this, toggle, Qt::QueuedConnection);
    // The Return key, and on some desktops a double click, whose first click has done it.
    connect(
        this, &QTreeWidget::itemActivated, this,
        [this, toggle](QTreeWidgetItem* item) {
            if (!underMouse()) toggle(item);
        },
        Qt::QueuedConnection);
}

void UsageList::show(const TrackingPage& page) {
    const QString focused = currentItem() ? currentItem()->data(0, keyRole).toString() : QString();
    clear();
    const double most = page.rows().empty() ? 0 : page.rows().front().active + page.rows().front().idle;
    for (const UsageRow& row : page.rows()) {
        auto* item = itemFor(row, QString::fromStdString(row.spaceName), most);
        addTopLevelItem(item);
        if (item->data(0, keyRole).toString() == focused) setCurrentItem(item);
        if (page.expandedSpace() != row.spaceKey) continue;
        for (const UsageRow& app : page.expandedApps()) item->addChild(itemFor(app, appNameOf(app), most));
        item->setExpanded(true);
    }
    setFixedHeight(wholeHeight());
}

int UsageList::wholeHeight() const {
    int height = 0;
    for (int row = 0; row < topLevelItemCount(); ++row)
        height += desktopRowHeight + appRowHeight * topLevelItem(row)->childCount();
    return height;
}

} // namespace lumnara
