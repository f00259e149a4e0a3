#include "ui/windowmanager/SnapPreviewOverlay.h"

#include "windowmanager/WindowManagerModel.h"

#include <QPainter>
#include <QPainterPath>
#include <QRegion>

namespace velmora {

SnapPreviewOverlay::SnapPreviewOverlay(WindowManagerModel& model, std::function<bool()> isCompositing)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint |
                           Qt::WindowStaysOnTopHint | Qt::WindowTransparentForInput |
                           Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint),
      m_model(model), m_isCompositing(std::move(isCompositing)) {
    setObjectName("snapPreview");
    setWindowTitle("Velmora snap preview");
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setFocusPolicy(Qt::NoFocus);
    connect(&m_model, &WindowManagerModel::changed, this, &SnapPreviewOverlay::follow);
}

Rect SnapPreviewOverlay::shownFrame() const {
    return isVisible() ? Rect::fromQRect(geometry()) : Rect{};
}

void SnapPreviewOverlay::follow() {
    // While the auto-layout panel is open, the space it proposes is shown.
    if (const auto& proposal = m_model.autoLayoutProposal(); proposal && !proposal->targetFrames.empty()) {
        present(proposal->targetFrames.front());
        return;
    }
    const auto& target = m_model.snapTarget();
    if (!m_model.isDragging() || !target || target->frame.width < 1 || target->frame.height < 1) {
        hide();
        return;
    }
    present(target->frame);
}

// Moved and resized in place while shown: hiding between two targets would flicker.
void SnapPreviewOverlay::present(const Rect& frame) {
    const bool wasVisible = isVisible();
    if (!wasVisible)
        m_translucent = m_isCompositing();
    const QRect geometry = frame.toQRectF().toAlignedRect();
    if (geometry != this->geometry())
        setGeometry(geometry);
    applyMask();
    if (!wasVisible)
        show();
    raise();
    update();
}

void SnapPreviewOverlay::setCutout(const QRect& cutout) {
    if (cutout == m_cutout)
        return;
    m_cutout = cutout;
    if (isVisible())
        applyMask();
}

void SnapPreviewOverlay::applyMask() {
    // Only the outline exists without a compositor: what lies inside stays visible and untouched.
    QRegion shape(rect());
    if (!m_translucent)
        shape = shape.subtracted(
            QRegion(rect().adjusted(kOutlineWidth, kOutlineWidth, -kOutlineWidth, -kOutlineWidth)));
    if (!m_cutout.isEmpty())
        shape = shape.subtracted(QRegion(m_cutout.translated(-geometry().topLeft())));
    if (shape == QRegion(rect()))
        clearMask();
    else
        setMask(shape);
}

void SnapPreviewOverlay::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor accent = palette().color(QPalette::Highlight);
    const QRectF area = QRectF(rect()).adjusted(kOutlineWidth / 2.0, kOutlineWidth / 2.0,
                                                -kOutlineWidth / 2.0, -kOutlineWidth / 2.0);
    if (m_translucent) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rect(), Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        QColor fill = accent;
        fill.setAlphaF(0.25f);
        accent.setAlphaF(0.8f);
        painter.setPen(QPen(accent, 2));
        painter.setBrush(fill);
        painter.drawRoundedRect(area, kCornerRadius, kCornerRadius);
        return;
    }
    painter.fillRect(rect(), accent);
}

} // namespace velmora
