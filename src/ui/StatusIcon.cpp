#include "ui/StatusIcon.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QScreen>

namespace velmora {

namespace {

QColor glyphColour(bool darkPanel) {
    return darkPanel ? QColor(0xf2, 0xf2, 0xf2) : QColor(0x24, 0x24, 0x28);
}

// The program's mark: a "V" in a rounded square, drawn as strokes so it reads at 16 pixels.
void drawMark(QPainter& p, double s, const QColor& colour) {
    p.setPen(QPen(colour, s * 0.08, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(s * 0.1, s * 0.1, s * 0.8, s * 0.8), s * 0.2, s * 0.2);
    QPainterPath v;
    v.moveTo(s * 0.32, s * 0.33);
    v.lineTo(s * 0.5, s * 0.68);
    v.lineTo(s * 0.68, s * 0.33);
    p.setPen(QPen(colour, s * 0.11, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPath(v);
}

// A keyboard (a body with two rows of keys and a space bar), crossed out: the keyboard is off.
void drawKeyboardOff(QPainter& p, double s, const QColor& colour) {
    p.setPen(QPen(colour, s * 0.07, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(s * 0.08, s * 0.26, s * 0.84, s * 0.5), s * 0.08, s * 0.08);
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    const double key = s * 0.09;
    for (int row = 0; row < 2; ++row)
        for (int col = 0; col < 5; ++col)
            p.drawRect(QRectF(s * (0.17 + col * 0.14), s * (0.35 + row * 0.13), key, key));
    p.drawRect(QRectF(s * 0.3, s * 0.61, s * 0.4, key * 0.8));
    // The cross-out, with a gap of the panel's own colour so it stays legible over the keys.
    const QPointF from(s * 0.14, s * 0.88), to(s * 0.86, s * 0.12);
    p.setCompositionMode(QPainter::CompositionMode_Clear);
    p.setPen(QPen(Qt::transparent, s * 0.2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(from, to);
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.setPen(QPen(QColor(0xf0, 0x5a, 0x3c), s * 0.1, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(from, to);
}

// A cup with rising steam: the computer is kept awake. The steam is the coloured mark.
void drawSleepPrevented(QPainter& p, double s, const QColor& colour) {
    p.setPen(QPen(colour, s * 0.08, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    QPainterPath cup;
    cup.moveTo(s * 0.14, s * 0.44);
    cup.lineTo(s * 0.14, s * 0.66);
    cup.quadTo(s * 0.14, s * 0.86, s * 0.34, s * 0.86);
    cup.lineTo(s * 0.48, s * 0.86);
    cup.quadTo(s * 0.68, s * 0.86, s * 0.68, s * 0.66);
    cup.lineTo(s * 0.68, s * 0.44);
    cup.closeSubpath();
    p.drawPath(cup);
    p.drawArc(QRectF(s * 0.58, s * 0.5, s * 0.26, s * 0.22), -90 * 16, 180 * 16);
    p.drawLine(QPointF(s * 0.1, s * 0.95), QPointF(s * 0.74, s * 0.95));
    p.setPen(QPen(QColor(0xf5, 0xa6, 0x23), s * 0.08, Qt::SolidLine, Qt::RoundCap));
    for (double x : {0.3, 0.52}) {
        QPainterPath steam;
        steam.moveTo(s * x, s * 0.34);
        steam.cubicTo(s * (x - 0.08), s * 0.26, s * (x + 0.08), s * 0.18, s * x, s * 0.08);
        p.drawPath(steam);
    }
}

QPixmap drawIcon(const StatusIconLook& look, int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor colour = glyphColour(look.darkPanel);
    if (!look.state)
        drawMark(p, size, colour);
    else if (*look.state == StatusGlyph::keyboardOff)
        drawKeyboardOff(p, size, colour);
    else
        drawSleepPrevented(p, size, colour);
    return pixmap;
}

double luminance(QRgb c) {
    return 0.2126 * qRed(c) + 0.7152 * qGreen(c) + 0.0722 * qBlue(c);
}

} // namespace

QIcon statusIcon(const StatusIconLook& look) {
    QIcon icon;
    for (int size : {16, 22, 24, 32, 48, 64})
        icon.addPixmap(drawIcon(look, size));
    return icon;
}

std::optional<bool> panelIsDarkAt(const QRect& iconGeometry) {
    if (iconGeometry.width() < 4 || iconGeometry.height() < 4)
        return std::nullopt;
    QScreen* screen = QGuiApplication::screenAt(iconGeometry.center());
    if (!screen)
        return std::nullopt;
    const QRect local = iconGeometry.translated(-screen->geometry().topLeft());
    const QImage image = screen->grabWindow(0, local.x(), local.y(), local.width(), local.height()).toImage();
    if (image.isNull() || image.width() < 2 || image.height() < 2)
        return std::nullopt;
    const int w = image.width() - 1, h = image.height() - 1;
    const double mean = (luminance(image.pixel(0, 0)) + luminance(image.pixel(w, 0)) +
                         luminance(image.pixel(0, h)) + luminance(image.pixel(w, h))) /
                        4;
    return mean < 128;
}

} // namespace velmora
