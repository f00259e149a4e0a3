#include "ui/dimming/DimmingOverlayWindow.h"

#include "dimming/MonitorDimmingModel.h"

#include <QPainter>

namespace velmora {

DimmingOverlayWindow::DimmingOverlayWindow(MonitorDimmingModel& model, const Rect& frame)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint |
                           Qt::WindowStaysOnTopHint | Qt::WindowTransparentForInput |
                           Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint),
      m_model(model), m_frame(frame) {
    setObjectName("dimmingOverlay");
    setWindowTitle("Velmora dimming");
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_X11DoNotAcceptFocus);
    setFocusPolicy(Qt::NoFocus);
    setGeometry(frame.toQRectF().toAlignedRect());
    connect(&model, &MonitorDimmingModel::brightnessFactorChanged, this, &DimmingOverlayWindow::follow);
    follow(model.brightnessFactor());
}

void DimmingOverlayWindow::dismiss() {
    disconnect(&m_model, nullptr, this, nullptr);
    hide();
}

void DimmingOverlayWindow::follow(double factor) {
    m_brightness = factor;
    if (MonitorDimmingModel::overlayOpacity(factor) <= 0) {
        hide();
        return;
    }
    if (!isVisible())
        show();
    raise();
    update();
}

void DimmingOverlayWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(),
                     QColor::fromRgbF(0, 0, 0, float(MonitorDimmingModel::overlayOpacity(m_brightness))));
}

} // namespace velmora
