#include "ui/dimming/DimmingScreens.h"

#include "app/ModuleRegistry.h"
#include "app/PanelRows.h"
#include "dimming/DimmingModule.h"
#include "ui/dimming/BrightnessControl.h"
#include "ui/dimming/DimmingOverlayWindow.h"
#include "ui/dimming/DisplayPreferencesPage.h"

#include <QApplication>
#include <QEvent>

namespace velmora {

DimmingScreens::DimmingScreens(AppContext&, DimmingModule& dimming) : m_dimming(dimming) {}

DimmingOverlayFactory DimmingScreens::overlayFactory() {
    return [](MonitorDimmingModel& model, const Rect& frame) -> std::unique_ptr<DimmingOverlay> {
        return std::make_unique<DimmingOverlayWindow>(model, frame);
    };
}

void DimmingScreens::registerWith(ModuleRegistry& registry) {
    registry.addPanelRows([this](PanelRows& rows) { rows.addWidget(new BrightnessControl(m_dimming)); });
    registry.addPreferencePage(DisplayPreferencesPage::kTitle,
                               [this] { return new DisplayPreferencesPage(m_dimming); });
    qApp->installEventFilter(this);
}

DimmingScreens::~DimmingScreens() {
    if (qApp)
        qApp->removeEventFilter(this);
}

// A window of ours that bypasses the window manager is stacked on top when it is shown.
bool DimmingScreens::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show)
        if (auto* widget = qobject_cast<QWidget*>(watched);
            widget && widget->isWindow() && widget->windowFlags().testFlag(Qt::X11BypassWindowManagerHint) &&
            !qobject_cast<DimmingOverlayWindow*>(widget))
            m_dimming.bringOverlaysToFront();
    return false;
}

} // namespace velmora
