#pragma once

#include <QStyledItemDelegate>
#include <functional>

namespace velmora {

// Draws one history entry: its picture (content or file type) or its first lines of text with every
// occurrence of the search marked (from shortly before the first one when the first lines do not
// reach it), and beneath it where it came from (the application's icon and
// name, the window's title) and how long ago. The compact layout keeps to one line.
class ClipboardHistoryRowDelegate final : public QStyledItemDelegate {
public:
    ClipboardHistoryRowDelegate(std::function<bool()> compact, std::function<QString()> query,
                                std::function<qint64()> nowMs, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void drawText(QPainter* painter, const QRect& rect, const QString& text, const QFont& font,
                  const QColor& color, const QStyleOptionViewItem& option, int maxLines,
                  const std::function<QString()>& snippet) const;

    std::function<bool()> m_compact;
    std::function<QString()> m_query;
    std::function<qint64()> m_now;
};

} // namespace velmora
