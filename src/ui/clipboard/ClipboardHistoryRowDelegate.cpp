#include "ui/clipboard/ClipboardHistoryRowDelegate.h"

#include "clipboard/ClipboardHighlight.h"
#include "clipboard/SimpleClipboardItem.h"
#include "ui/clipboard/ClipboardHistoryListModel.h"
#include "ui/clipboard/ClipboardRowText.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>

namespace velmora {

namespace {

constexpr int kPad = 8;
constexpr int kThumb = 48;
constexpr int kCompactThumb = 20;
constexpr int kSourceIcon = 16;
constexpr int kTextLines = 2;

QRect fitted(const QSize& image, const QRect& box) {
    const QSize size = image.scaled(box.size(), Qt::KeepAspectRatio);
    return {box.x() + (box.width() - size.width()) / 2, box.y() + (box.height() - size.height()) / 2,
            size.width(), size.height()};
}

QFont smaller(QFont font) {
    font.setPointSizeF(font.pointSizeF() * 0.85);
    return font;
}

} // namespace

ClipboardHistoryRowDelegate::ClipboardHistoryRowDelegate(std::function<bool()> compact,
                                                         std::function<QString()> query,
                                                         std::function<qint64()> nowMs, QObject* parent)
    : QStyledItemDelegate(parent), m_compact(std::move(compact)), m_query(std::move(query)),
      m_now(std::move(nowMs)) {}

QSize ClipboardHistoryRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    const QFontMetrics text(option.font), detail(smaller(option.font));
    if (m_compact())
        return {200, std::max(kCompactThumb, text.height()) + kPad};
    return {200, std::max(kThumb, kTextLines * text.lineSpacing()) + detail.height() + 2 * kPad};
}

void ClipboardHistoryRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const {
    const auto* model = qobject_cast<const ClipboardHistoryListModel*>(index.model());
    const SimpleClipboardItem* e = model ? model->entry(index.row()) : nullptr;
    if (!e)
        return;
    QStyleOptionViewItem opt(option);
    initStyleOption(&opt, index);
    opt.text.clear();
    opt.icon = {};
    const QWidget* widget = opt.widget;
    const QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);

    const bool compact = m_compact();
    const bool selected = opt.state.testFlag(QStyle::State_Selected);
    const QColor textColor =
        opt.palette.color(QPalette::Active, selected ? QPalette::HighlightedText : QPalette::Text);
    QColor dim = textColor;
    dim.setAlphaF(0.65);
    const QFont detailFont = smaller(opt.font);
    const QFontMetrics detailMetrics(detailFont);

    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    QRect r = opt.rect.adjusted(kPad, kPad / 2, -kPad, -kPad / 2);

    // Right: how long ago.
    const QString age = clipboardAgeText(m_now(), e->timestamp);
    const int ageWidth = detailMetrics.horizontalAdvance(age);
    painter->setFont(detailFont);
    painter->setPen(dim);
    const QRect ageRect(r.right() - ageWidth, compact ? r.y() : r.bottom() - detailMetrics.height(), ageWidth,
                        compact ? r.height() : detailMetrics.height());
    painter->drawText(ageRect, Qt::AlignRight | Qt::AlignVCenter, age);

    // Left: the picture, when the entry has one.
    const QImage thumbnail = index.data(ClipboardHistoryListModel::ThumbnailRole).value<QImage>();
    const int thumbSide = compact ? kCompactThumb : kThumb;
    int textLeft = r.left();
    if (!thumbnail.isNull()) {
        const QRect box(r.left(), r.top() + (compact ? (r.height() - thumbSide) / 2 : 0), thumbSide,
                        thumbSide);
        painter->drawImage(fitted(thumbnail.size(), box), thumbnail);
        textLeft = box.right() + kPad;
    }

    const QImage sourceIcon = index.data(ClipboardHistoryListModel::SourceIconRole).value<QImage>();
    const QString app = e->sourceAppName.value_or(e->sourceBundleId.value_or(QString()));
    const QString title = e->sourceWindowTitle.value_or(QString());
    if (compact) {
        int right = ageRect.left() - kPad;
        if (!sourceIcon.isNull()) {
            const QRect icon(right - kSourceIcon, r.top() + (r.height() - kSourceIcon) / 2, kSourceIcon,
                             kSourceIcon);
            painter->drawImage(icon, sourceIcon);
            right = icon.left() - kPad;
        }
        drawText(painter, QRect(textLeft, r.top(), right - textLeft, r.height()), clipboardRowText(*e, 1),
                 opt.font, textColor, opt, 1, [&] { return clipboardRowSnippet(*e, m_query(), 1); });
    } else {
        const QRect textRect(textLeft, r.top(), r.right() - textLeft,
                             r.height() - detailMetrics.height() - 2);
        const QString detail = clipboardRowDetail(*e);
        const int lines = detail.isEmpty() ? kTextLines : 1;
        drawText(painter, textRect, clipboardRowText(*e, lines), opt.font, textColor, opt, lines,
                 [&] { return clipboardRowSnippet(*e, m_query(), lines); });
        if (!detail.isEmpty()) {
            painter->setFont(detailFont);
            painter->setPen(dim);
            const QRect d(textLeft, textRect.top() + QFontMetrics(opt.font).lineSpacing(), textRect.width(),
                          detailMetrics.height());
            painter->drawText(d, Qt::AlignLeft | Qt::AlignVCenter,
                              detailMetrics.elidedText(detail, Qt::ElideMiddle, d.width()));
        }
        // Beneath: where it came from.
        int x = r.left();
        const int y = r.bottom() - detailMetrics.height();
        if (!sourceIcon.isNull()) {
            painter->drawImage(
                QRect(x, y + (detailMetrics.height() - kSourceIcon) / 2, kSourceIcon, kSourceIcon),
                sourceIcon);
            x += kSourceIcon + 4;
        }
        const QString source = title.isEmpty() ? app
                               : app.isEmpty() ? title
                                               : app + QStringLiteral(" — ") + title;
        painter->setFont(detailFont);
        painter->setPen(dim);
        painter->drawText(QRect(x, y, ageRect.left() - kPad - x, detailMetrics.height()),
                          Qt::AlignLeft | Qt::AlignVCenter,
                          detailMetrics.elidedText(source, Qt::ElideRight, ageRect.left() - kPad - x));
    }
    painter->restore();
}

void ClipboardHistoryRowDelegate::drawText(QPainter* painter, const QRect& rect, const QString& text,
                                           const QFont& font, const QColor& color,
                                           const QStyleOptionViewItem& option, int maxLines,
                                           const std::function<QString()>& snippet) const {
    const QFontMetrics metrics(font);
    QList<QTextLayout::FormatRange> marks;
    if (const QString query = m_query(); !query.isEmpty()) {
        QTextCharFormat mark;
        mark.setBackground(option.palette.color(QPalette::Active, QPalette::Highlight).lighter(150));
        mark.setForeground(option.palette.color(QPalette::Active, QPalette::Text));
        mark.setFontWeight(QFont::DemiBold);
        for (const auto& [start, length] : highlightRanges(text, query))
            marks.append({start, length, mark});
    }
    // One layout for the whole text, wrapped into the row's lines: a long paragraph fills them all,
    // and the marks stay where the search found them.
    QString laidOut = text;
    laidOut.replace(QLatin1Char('\n'), QChar::LineSeparator);
    QTextLayout layout(laidOut, font);
    QTextOption wrap;
    wrap.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(wrap);
    layout.setFormats(marks);
    layout.beginLayout();
    qreal y = 0;
    int shownUpTo = 0;
    for (int i = 0; i < maxLines; ++i) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(rect.width());
        line.setPosition(QPointF(0, y));
        y += metrics.lineSpacing();
        shownUpTo = line.textStart() + line.textLength();
    }
    layout.endLayout();
    // A match the first lines do not show whole is shown in its own lines instead: the row says why
    // it is in the results.
    const bool matchHidden =
        !m_query().isEmpty() && (marks.isEmpty() || marks.front().start + marks.front().length > shownUpTo);
    if (matchHidden && snippet) {
        if (const QString around = snippet(); !around.isEmpty())
            return drawText(painter, rect, around, font, color, option, maxLines, {});
    }
    const int top =
        maxLines == 1 && m_compact() ? rect.top() + (rect.height() - metrics.height()) / 2 : rect.top();
    painter->save();
    painter->setPen(color);
    painter->setClipRect(rect);
    layout.draw(painter, QPointF(rect.left(), top));
    // What did not fit ends in an ellipsis at the last line's end.
    if (shownUpTo < laidOut.size() && layout.lineCount() > 0) {
        const QTextLine last = layout.lineAt(layout.lineCount() - 1);
        const QString ellipsis = QStringLiteral("…");
        const qreal x =
            std::min(last.naturalTextWidth(), qreal(rect.width() - metrics.horizontalAdvance(ellipsis)));
        painter->fillRect(QRectF(rect.left() + x, top + last.y(), rect.width() - x, metrics.lineSpacing()),
                          option.state.testFlag(QStyle::State_Selected)
                              ? option.palette.color(QPalette::Active, QPalette::Highlight)
                              : option.palette.color(QPalette::Active, QPalette::Base));
        painter->setFont(font);
        painter->drawText(QPointF(rect.left() + x, top + last.y() + metrics.ascent()), ellipsis);
    }
    painter->restore();
}

} // namespace velmora
