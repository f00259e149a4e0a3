#pragma once

#include <QStyledItemDelegate>

namespace velmora {

// Draws a window's row in the switcher and the auto-layout panel: the program's icon (or its initial
// on a colour of its own), its name in bold and the window's title, each elided so that a long title
// never hides which program the window belongs to. A tab's row is indented under its window and shows
// its title alone; a note (how many tabs) may sit at the right.
class WindowRowDelegate final : public QStyledItemDelegate {
public:
    static constexpr int AppNameRole = Qt::UserRole;
    static constexpr int TitleRole = Qt::UserRole + 1;
    static constexpr int IconRole = Qt::UserRole + 2;
    static constexpr int IsTabRole = Qt::UserRole + 3;
    static constexpr int NoteRole = Qt::UserRole + 4;
    static constexpr int kIconSize = 24;
    static constexpr int kRowPadding = 12;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    static void drawIcon(QPainter* painter, const QRect& r, const QImage& icon, const QString& app);
};

} // namespace velmora
