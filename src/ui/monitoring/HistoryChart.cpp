#include "ui/monitoring/HistoryChart.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace velmora {

HistoryChart::HistoryChart(QString title, QColor colour, std::size_t capacity, QWidget* parent)
    : QWidget(parent), m_title(std::move(title)), m_colour(colour),
      m_capacity(std::max<std::size_t>(capacity, 2)) {
    setAccessibleName(m_title);
}

void HistoryChart::setValues(std::vector<double> values, double maximum, QString current, QString top) {
    m_values = std::move(values);
    m_maximum = maximum > 0 ? maximum : 1;
    m_current = std::move(current);
    m_top = std::move(top);
    update();
}

void HistoryChart::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QPalette& pal = palette();
    const QFontMetrics fm = fontMetrics();

    // Title left and newest value right on the first line; the plot below.
    const int lineHeight = fm.height();
    QFont bold = font();
    bold.setBold(true);
    p.setFont(bold);
    p.setPen(pal.color(QPalette::WindowText));
    p.drawText(QRect(0, 0, width(), lineHeight), Qt::AlignLeft | Qt::AlignVCenter, m_title);
    p.setPen(m_colour.darker(pal.color(QPalette::Window).lightness() < 128 ? 60 : 110));
    p.drawText(QRect(0, 0, width(), lineHeight), Qt::AlignRight | Qt::AlignVCenter, m_current);
    p.setFont(font());

    const QRectF plot(0.5, lineHeight + 4.5, width() - 1.0, height() - lineHeight - 5.0);
    p.setPen(QPen(pal.color(QPalette::Mid), 1));
    p.setBrush(pal.color(QPalette::Base));
    p.drawRoundedRect(plot, 4, 4);
    // The top of the scale, small, in the plot's corner.
    QColor hint = pal.color(QPalette::WindowText);
    hint.setAlphaF(0.55);
    p.setPen(hint);
    QFont small = font();
    small.setPointSizeF(font().pointSizeF() * 0.8);
    p.setFont(small);
    p.drawText(plot.adjusted(4, 2, -4, -2), Qt::AlignLeft | Qt::AlignTop, m_top);

    if (m_values.empty())
        return;
    const std::size_t shown = std::min(m_values.size(), m_capacity);
    const std::size_t span = std::clamp(shown, std::min(kMinimumSpan, m_capacity), m_capacity);
    const double step = plot.width() / double(std::max<std::size_t>(span, 2) - 1);
    const auto pointAt = [&](std::size_t i) {
        const double v = std::clamp(m_values[m_values.size() - shown + i] / m_maximum, 0.0, 1.0);
        const double x = plot.right() - double(shown - 1 - i) * step;
        return QPointF(x, plot.bottom() - v * (plot.height() - 2));
    };
    QPainterPath line;
    line.moveTo(pointAt(0));
    for (std::size_t i = 1; i < shown; ++i)
        line.lineTo(pointAt(i));
    QPainterPath area = line;
    area.lineTo(pointAt(shown - 1).x(), plot.bottom());
    area.lineTo(pointAt(0).x(), plot.bottom());
    area.closeSubpath();

    p.setClipRect(plot);
    QColor fill = m_colour;
    fill.setAlphaF(0.25);
    p.setPen(Qt::NoPen);
    p.setBrush(fill);
    p.drawPath(area);
    p.setPen(QPen(m_colour, 1.5));
    p.setBrush(Qt::NoBrush);
    p.drawPath(line);
    if (shown == 1)
        p.drawEllipse(pointAt(0), 2, 2);
}

} // namespace velmora
