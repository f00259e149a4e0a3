#pragma once

#include "dimming/DimmingOverlay.h"

#include <QWidget>

namespace velmora {

class MonitorDimmingModel;

// The dark layer over one monitor: an override-redirect window (never managed, never focused) with
// an empty input shape, so every click reaches what is below, filled with black at the opacity the
// factor asks (MonitorDimmingModel::overlayOpacity). It is mapped only while the factor is below
// 1.0, and only ever made while a compositing manager runs.
class DimmingOverlayWindow final : public QWidget, public DimmingOverlay {
    Q_OBJECT
public:
    DimmingOverlayWindow(MonitorDimmingModel& model, const Rect& frame);

    Rect coveredFrame() const override { return m_frame; }
    bool isShown() const override { return isVisible(); }
    void bringToFront() override { raise(); }
    void dismiss() override;

    // The factor this layer draws; 1.0 until the model says otherwise.
    double brightness() const { return m_brightness; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void follow(double factor);

    MonitorDimmingModel& m_model;
    Rect m_frame;
    double m_brightness = 1.0;
};

} // namespace velmora
