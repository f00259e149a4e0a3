#pragma once

#include "app/AppContext.h"
#include "app/ControlReply.h"
#include "app/Module.h"
#include "dimming/DimmingOverlayRegistry.h"
#include "dimming/MonitorDimmingModel.h"

#include <QObject>
#include <QTimer>

namespace velmora {

class Screens;

// Dimming of external monitors in software: a black, click-through layer over each qualifying
// monitor, as dark as the brightness factor asks. The layers need a compositing manager (without
// one their translucent black would be drawn opaque), so none is shown without one; a compositor
// that starts later is noticed and dimming works from then on.
//
// The overlays are brought up to date at start, on every change of the factor, of the monitors and
// of the compositor, so that they follow monitors that move, come and go. As the system has always
// done, 2 seconds after the last of a burst of monitor changes all overlays are removed when the
// factor is exactly 1.0.
class DimmingModule final : public QObject, public Module {
    Q_OBJECT
public:
    static constexpr int kReconfigurationCheckDelayMs = 2000;

    DimmingModule(AppContext& context, DimmingOverlayFactory overlayFactory);
    ~DimmingModule() override;

    QString name() const override { return "monitorDimming"; }
    void registerWith(ModuleRegistry& registry) override;
    void start() override;
    void stop() override;

    MonitorDimmingModel& model() { return m_model; }
    const DimmingOverlayRegistry& overlays() const { return m_overlays; }
    bool isCompositing() const { return m_compositing; }
    // The toggle action: off, or back to the factor it had.
    void toggle();
    // Puts the overlays back in front: a window of this program appeared over them.
    void bringOverlaysToFront();
    // How many reconfiguration checks have run (each burst of monitor changes makes one).
    int reconfigurationChecks() const { return m_reconfigurationChecks; }
    int reconfigurationCheckDelayMs() const { return m_reconfigurationTimer.interval(); }
    // The wait is shortened only by tests, which have no two seconds to spare per case.
    void setReconfigurationCheckDelayMs(int ms) { m_reconfigurationTimer.setInterval(ms); }
    Json status() const;

    static QString noCompositorExplanation();

signals:
    void compositingChanged(bool compositing);

private:
    void updateOverlays();
    void screensChanged();
    void reconfigurationCheck();
    ControlReply command(const QStringList& arguments);

    AppContext& m_context;
    const Screens& m_screens;
    MonitorDimmingModel m_model;
    DimmingOverlayRegistry m_overlays;
    QTimer m_reconfigurationTimer;
    QTimer m_frontTimer;
    bool m_compositing = false;
    bool m_toldNoCompositor = false;
    int m_reconfigurationChecks = 0;
};

} // namespace velmora
