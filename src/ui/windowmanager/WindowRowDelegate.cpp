#include "ui/windowmanager/WindowRowDelegate.h"

#include <QApplication>
#include <QPainter>

#include <algorithm>

namespace velmora {

namespace {

constexpr int kIconGap = 8;

} // namespace

void WindowRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    QStyleOptionViewItem opt(option);
    initStyleOption(&opt, index);
    opt.text.clear();
    const QWidget* widget = opt.widget;
    const QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);

    const bool isTab = index.data(IsTabRole).toBool();
    QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &opt, widget);
    if (isTab)
        text.setLeft(text.left() + kIconSize + kIconGap);
    const auto group = opt.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    const bool selected = opt.state.testFlag(QStyle::State_Selected);
    const QColor pen = opt.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text);

    painter->save();
    QRect r = text.adjusted(4, 0, -4, 0);
    const QString note = index.data(NoteRole).toString();
    if (!note.isEmpty()) {
        const int noteWidth = opt.fontMetrics.horizontalAdvance(note) + 8;
        QColor muted = pen;
        muted.setAlphaF(0.6);
        painter->setPen(muted);
        painter->drawText(r, Qt::AlignVCenter | Qt::AlignRight, note);
        r.setRight(r.right() - noteWidth);
    }
    painter->setPen(pen);
    if (isTab) {
        painter->setFont(opt.font);
        painter->drawText(
            r, Qt::AlignVCenter | Qt::AlignLeft,
            opt.fontMetrics.elidedText(index.data(TitleRole).toString(), Qt::ElideRight, r.width()));
        painter->restore();
        return;
    }
    const QRect iconRect(r.left(), r.center().y() - kIconSize / 2 + 1, kIconSize, kIconSize);
    drawIcon(painter, iconRect, index.data(IconRole).value<QImage>(), index.data(AppNameRole).toString());
    r.setLeft(r.left() + kIconSize + kIconGap);
    QFont bold = opt.font;
    bold.setBold(true);
    const QFontMetrics boldMetrics(bold), plainMetrics(opt.font);
    const QString app = boldMetrics.elidedText(index.data(AppNameRole).toString(), Qt::ElideRight, r.width());
    const int appWidth = boldMetrics.horizontalAdvance(app);
    const QString rest = plainMetrics.elidedText(QString::fromUtf8(" — ") + index.data(TitleRole).toString(),
                                                 Qt::ElideRight, std::max(0, r.width() - appWidth));
    painter->setFont(bold);
    painter->drawText(r, Qt::AlignVCenter | Qt::AlignLeft, app);
    painter->setFont(opt.font);
    painter->drawText(r.adjusted(appWidth, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, rest);
    painter->restore();
}

QSize WindowRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(std::max(
        {size.height(), QFontMetrics(option.font).height() + kRowPadding, kIconSize + kRowPadding / 2}));
    return size;
}

void WindowRowDelegate::drawIcon(QPainter* painter, const QRect& r, const QImage& icon, const QString& app) {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    if (!icon.isNull()) {
        painter->drawImage(r, icon);
    } else {
        const QColor fill = QColor::fromHsv(int(qHash(app) % 360), 110, 190);
        painter->setPen(Qt::NoPen);
        painter->setBrush(fill);
        painter->drawRoundedRect(r, 5, 5);
        QFont font = painter->font();
        font.setBold(true);
        font.setPixelSize(r.height() * 3 / 5);
        painter->setFont(font);
        painter->setPen(Qt::white);
        const QString letter =
            app.trimmed().isEmpty() ? QStringLiteral("?") : app.trimmed().left(1).toUpper();
        painter->drawText(r, Qt::AlignCenter, letter);
    }
    painter->restore();
}

} // namespace velmora
