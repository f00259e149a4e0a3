#include "ui/monitoring/MBSMWidgetView.h"

#include "monitoring/MBSMWidgetText.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>

namespace velmora {

namespace {

QColor textColour(bool darkPanel) {
    return darkPanel ? QColor(0xf2, 0xf2, 0xf2) : QColor(0x24, 0x24, 0x28);
}

QColor barColour(ResourceType resource) {
    switch (resource) {
    case ResourceType::cpu:
        return QColor(0x3d, 0x8b, 0xe0);
    case ResourceType::memory:
        return QColor(0x3f, 0xb0, 0x6a);
    case ResourceType::network:
        return QColor(0xe8, 0x8a, 0x2a);
    }
    return Qt::gray;
}

// The largest bold pixel size up to `largest` at which the text fits the width: "100%" and "999k"
// must fit the same square as "5%".
QFont fittedFont(const QString& text, double width, double largest, bool bold) {
    QFont font;
    font.setBold(bold);
    font.setStyleStrategy(QFont::PreferAntialias);
    for (double size = largest; size > 4; size -= 0.5) {
        font.setPixelSize(int(size));
        if (QFontMetricsF(font).horizontalAdvance(text) <= width)
            break;
    }
    return font;
}

} // namespace

MBSMWidgetView::MBSMWidgetView(const MonitoringWidget& widget, const SystemSnapshot* newest, bool darkPanel)
    : m_widget(widget), m_text(widgetText(widget.resource, newest)),
      m_compactText(compactWidgetText(widget.resource, newest)), m_darkPanel(darkPanel) {
    if (!newest)
        return;
    if (widget.resource == ResourceType::cpu)
        m_share = cpuPercent(*newest) / 100.0;
    else if (widget.resource == ResourceType::memory)
        m_share = memoryPercent(*newest) / 100.0;
}

QString MBSMWidgetView::label() const {
    return widgetLabel(m_widget.resource);
}

QString MBSMWidgetView::toolTip() const {
    QString what = resourceTitle(m_widget.resource) + ": " + m_text;
    if (m_text == kNoSampleText)
        what = resourceTitle(m_widget.resource) + ": collecting the first sample";
    else if (m_widget.resource == ResourceType::network)
        what += " in the last 5 seconds";
    else if (m_widget.resource == ResourceType::cpu)
        what += " of all cores";
    return what + "\nClick to open the System Monitor";
}

QPixmap MBSMWidgetView::pixmap(int size, qreal devicePixelRatio) const {
    QPixmap pixmap(QSize(size, size) * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    const double s = size;
    const QColor colour = textColour(m_darkPanel);

    // Label on top, value in the middle, bar at the bottom: the value gets most of the square.
    const QRectF labelBox(0, 0, s, s * 0.38);
    const QRectF valueBox(0, s * 0.32, s, s * 0.54);
    p.setPen(colour);
    QFont labelFont = fittedFont(label(), s, s * 0.37, false);
    labelFont.setWeight(QFont::DemiBold);
    p.setFont(labelFont);
    p.drawText(labelBox, Qt::AlignCenter, label());
    p.setFont(fittedFont(m_compactText, s, s * 0.5, true));
    p.drawText(valueBox, Qt::AlignCenter, m_compactText);

    const QRectF track(s * 0.08, s * 0.87, s * 0.84, std::max(2.0, s * 0.09));
    QColor trackColour = colour;
    trackColour.setAlphaF(0.25);
    p.setPen(Qt::NoPen);
    p.setBrush(trackColour);
    p.drawRoundedRect(track, track.height() / 2, track.height() / 2);
    if (m_share && *m_share > 0) {
        QRectF filled = track;
        filled.setWidth(std::max(track.height(), track.width() * *m_share));
        p.setBrush(barColour(m_widget.resource));
        p.drawRoundedRect(filled, track.height() / 2, track.height() / 2);
    } else if (m_widget.resource == ResourceType::network) {
        // The network has no share to show: its bar stays a coloured line, so the gauges of a row
        // tell each other apart by colour.
        QColor line = barColour(m_widget.resource);
        line.setAlphaF(0.8);
        p.setBrush(line);
        p.drawRoundedRect(track, track.height() / 2, track.height() / 2);
    }
    return pixmap;
}

QIcon MBSMWidgetView::icon() const {
    QIcon icon;
    icon.addPixmap(pixmap(kIconSize, 1.0));
    icon.addPixmap(pixmap(kIconSize, 2.0));
    return icon;
}

} // namespace velmora
