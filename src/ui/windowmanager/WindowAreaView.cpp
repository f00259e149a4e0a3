#include "ui/windowmanager/WindowAreaView.h"

#include "core/ZoneNumber.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace velmora {

namespace {

constexpr int kPreferredWidth = 160;
// Room for the screen's outline so that it is not clipped at the widget's edge.
constexpr double kMargin = 1.5;

} // namespace

WindowAreaView::WindowAreaView(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

void WindowAreaView::setScreenSize(const QSizeF& size) {
    if (size == m_screenSize || size.isEmpty())
        return;
    m_screenSize = size;
    updateGeometry();
    update();
}

void WindowAreaView::setArea(const WindowArea& area) {
    if (area == m_area)
        return;
    m_area = area;
    update();
}

void WindowAreaView::setValid(bool valid) {
    if (valid == m_isValid)
        return;
    m_isValid = valid;
    update();
}

void WindowAreaView::setCornerRadius(double radius) {
    m_cornerRadius = std::max(0.0, radius);
    update();
}

void WindowAreaView::setOpacity(double opacity) {
    m_opacity = std::clamp(opacity, 0.0, 1.0);
    update();
}

QColor WindowAreaView::warningColor() {
    return {0xE0, 0x8A, 0x00};
}

QSize WindowAreaView::sizeHint() const {
    const double aspect = m_screenSize.height() / m_screenSize.width();
    return {kPreferredWidth, std::max(1, int(kPreferredWidth * aspect + 0.5))};
}

QSize WindowAreaView::minimumSizeHint() const {
    return sizeHint() / 2;
}

void WindowAreaView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(m_opacity);

    // The screen, as large as fits while keeping its proportions, centred.
    const QRectF bounds = QRectF(rect()).adjusted(kMargin, kMargin, -kMargin, -kMargin);
    if (bounds.isEmpty())
        return;
    const QSizeF fitted = m_screenSize.scaled(bounds.size(), Qt::KeepAspectRatio);
    const QRectF screen(bounds.center() - QPointF(fitted.width() / 2, fitted.height() / 2), fitted);
    const double radius = std::min({m_cornerRadius, screen.width() / 4, screen.height() / 4});

    const QPalette& colors = palette();
    painter.setPen(QPen(colors.color(QPalette::Mid), 1));
    painter.setBrush(colors.color(QPalette::Base));
    painter.drawRoundedRect(screen, radius, radius);

    const std::optional<UnitRect> unit = m_isValid ? parseZone(m_area) : std::nullopt;
    if (!unit) {
        const QColor warning = warningColor();
        QColor fill = warning;
        fill.setAlphaF(0.15f);
        painter.setPen(QPen(warning, 1.5));
        painter.setBrush(fill);
        painter.drawRoundedRect(screen, radius, radius);
        QPainterPath clip;
        clip.addRoundedRect(screen, radius, radius);
        painter.setClipPath(clip);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QBrush(warning, Qt::BDiagPattern));
        painter.drawRect(screen);
        return;
    }

    // A zone running past the screen's right or bottom edge is drawn cut off there, as it would be
    // placed.
    const QRectF zone = QRectF(screen.x() + unit->x * screen.width(), screen.y() + unit->y * screen.height(),
                               unit->w * screen.width(), unit->h * screen.height())
                            .intersected(screen)
                            .adjusted(1.5, 1.5, -1.5, -1.5);
    if (zone.isEmpty())
        return;
    const QColor accent = colors.color(QPalette::Highlight);
    QColor fill = accent;
    fill.setAlphaF(0.45f);
    painter.setPen(QPen(accent, 1.5));
    painter.setBrush(fill);
    const double zoneRadius = std::min({m_cornerRadius, zone.width() / 2, zone.height() / 2});
    painter.drawRoundedRect(zone, zoneRadius, zoneRadius);
}

} // namespace velmora
