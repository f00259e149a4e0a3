#include "ui/KeyRenderer.h"

#include <QPainter>

namespace velmora {

namespace {

constexpr int kPadding = 6;
constexpr qreal kRadius = 4;

} // namespace

KeyRenderer::KeyRenderer(QString label, QWidget* parent) : QWidget(parent), m_label(std::move(label)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(m_label);
}

void KeyRenderer::setLabel(const QString& label) {
    if (label == m_label)
        return;
    m_label = label;
    setAccessibleName(label);
    updateGeometry();
    update();
}

void KeyRenderer::setHighlight(bool highlight) {
    if (highlight == m_highlight)
        return;
    m_highlight = highlight;
    update();
}

QSize KeyRenderer::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    const int height = metrics.height() + kPadding;
    // Single characters get square caps, so that a row of letters and modifiers lines up evenly.
    return {std::max(height, metrics.horizontalAdvance(m_label) + 2 * kPadding), height};
}

void KeyRenderer::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QPalette& colours = palette();
    const QColor fill = colours.color(group, m_highlight ? QPalette::Highlight : QPalette::Button);
    const QColor text = colours.color(group, m_highlight ? QPalette::HighlightedText : QPalette::ButtonText);

    const QRectF cap = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(colours.color(group, QPalette::Mid));
    painter.setBrush(fill);
    painter.drawRoundedRect(cap, kRadius, kRadius);
    painter.setPen(text);
    painter.drawText(rect(), Qt::AlignCenter, m_label);
}

} // namespace velmora
