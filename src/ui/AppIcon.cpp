#include "ui/AppIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace velmora {

namespace {

QPixmap drawIcon(int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF box(size * 0.06, size * 0.06, size * 0.88, size * 0.88);
    QLinearGradient fill(box.topLeft(), box.bottomRight());
    fill.setColorAt(0, QColor(0x5b, 0x6c, 0xff));
    fill.setColorAt(1, QColor(0x8e, 0x4d, 0xe8));
    p.setPen(Qt::NoPen);
    p.setBrush(fill);
    p.drawRoundedRect(box, size * 0.22, size * 0.22);
    // A "V" made of two strokes meeting at the bottom.
    QPainterPath v;
    v.moveTo(size * 0.28, size * 0.3);
    v.lineTo(size * 0.5, size * 0.72);
    v.lineTo(size * 0.72, size * 0.3);
    p.setPen(QPen(Qt::white, size * 0.11, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawPath(v);
    return pixmap;
}

} // namespace

QIcon appIcon() {
    QIcon icon;
    for (int size : {16, 22, 24, 32, 48, 64, 128, 256})
        icon.addPixmap(drawIcon(size));
    return icon;
}

} // namespace velmora
