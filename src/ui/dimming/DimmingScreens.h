#pragma once

#include "app/AppContext.h"
#include "app/Module.h"
#include "dimming/DimmingOverlay.h"

#include <QObject>

namespace velmora {

class DimmingModule;

// Dimming's screens: the brightness slider in the drop-down panel and on the Display preference
// page. It also keeps the overlays in front of this program's own unmanaged windows (the window
// switcher, notices), which the desktop does not announce to us.
class DimmingScreens final : public QObject, public Module {
    Q_OBJECT
public:
    DimmingScreens(AppContext& context, DimmingModule& dimming);
    ~DimmingScreens() override;

    QString name() const override { return "monitorDimmingScreens"; }
    void registerWith(ModuleRegistry& registry) override;

    // The overlay windows this build draws.
    static DimmingOverlayFactory overlayFactory();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    DimmingModule& m_dimming;
};

} // namespace velmora
