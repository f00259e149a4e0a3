#include "dimming/DimmingModule.h"

#include "app/BindingsProvider.h"
#include "app/ModuleRegistry.h"
#include "app/UserPreferences.h"
#include "dimming/DimmingLog.h"
#include "platform/Platform.h"

namespace velmora {

DimmingModule::DimmingModule(AppContext& context, DimmingOverlayFactory overlayFactory)
    : m_context(context), m_screens(*context.platform.screens),
      m_overlays(m_model, std::move(overlayFactory)) {
    m_reconfigurationTimer.setSingleShot(true);
    m_reconfigurationTimer.setInterval(kReconfigurationCheckDelayMs);
    connect(&m_reconfigurationTimer, &QTimer::timeout, this, &DimmingModule::reconfigurationCheck);
    // Several stacking changes in one turn of the event loop raise the overlays once.
    m_frontTimer.setSingleShot(true);
    m_frontTimer.setInterval(0);
    connect(&m_frontTimer, &QTimer::timeout, this, [this] { m_overlays.bringAllToFront(); });
}

DimmingModule::~DimmingModule() = default;

QString DimmingModule::noCompositorExplanation() {
    return "Dimming needs a compositing manager, and none is running: without one a dimmed monitor "
           "would turn black. Start one (xcompmgr or picom, for example) and dimming works at once.";
}

void DimmingModule::registerWith(ModuleRegistry& registry) {
    registry.actions().setHandler<action::ToggleMonitorDimming>(
        [this](const action::ToggleMonitorDimming&) { toggle(); });
    auto& prefs = m_context.preferences;
    registry.addProvider(ActionProviders::Slot::monitorDimming,
                         std::make_unique<BindingsProvider>(
                             [&prefs]() -> const KeyboardBindings& { return prefs.keyboardBindings.value(); },
                             registry.actions(),
                             std::vector<BindingsProvider::Entry>{
                                 {KeyboardAppAction::toggleMonitorDimming, action::ToggleMonitorDimming{}}}));
    registry.addShortcutRows({KeyboardAppAction::toggleMonitorDimming});
    registry.addCommand({"dimming", "status | set FACTOR | toggle",
                         "dimming of external monitors: the state, the brightness factor (0.1 to 1.0), "
                         "off and back on",
                         1, 2, [this](const QStringList& arguments) { return command(arguments); }});
    registry.addStatus("dimming", [this] { return status(); });
}

void DimmingModule::start() {
    const ScreensNotifier& notifier = m_screens.notifier();
    connect(&notifier, &ScreensNotifier::screensChanged, this, &DimmingModule::screensChanged);
    connect(&notifier, &ScreensNotifier::compositingChanged, this, &DimmingModule::updateOverlays);
    connect(&notifier, &ScreensNotifier::windowStackedOnTop, this, &DimmingModule::bringOverlaysToFront);
    if (auto* windows = m_context.platform.windowServer.get())
        connect(windows, &WindowServer::windowsChanged, this, &DimmingModule::bringOverlaysToFront);
    connect(&m_model, &MonitorDimmingModel::brightnessFactorChanged, this, &DimmingModule::updateOverlays);
    updateOverlays();
}

void DimmingModule::stop() {
    disconnect(&m_screens.notifier(), nullptr, this, nullptr);
    if (auto* windows = m_context.platform.windowServer.get())
        disconnect(windows, nullptr, this, nullptr);
    disconnect(&m_model, nullptr, this, nullptr);
    m_reconfigurationTimer.stop();
    m_frontTimer.stop();
    m_overlays.removeOverlaysExcept({});
}

void DimmingModule::toggle() {
    m_model.toggle();
    qCInfo(lcDimming) << "Monitor dimming toggled: brightness factor" << m_model.brightnessFactor();
    if (m_model.brightnessFactor() < 1.0 && !m_compositing)
        m_context.brief("Monitors cannot be dimmed without a compositing manager");
}

void DimmingModule::bringOverlaysToFront() {
    if (!m_frontTimer.isActive())
        m_frontTimer.start();
}

// Without a compositor no overlay may exist: its translucent black would be drawn opaque.
void DimmingModule::updateOverlays() {
    const bool compositing = m_screens.isCompositing();
    if (compositing != m_compositing) {
        m_compositing = compositing;
        m_toldNoCompositor = false;
        emit compositingChanged(compositing);
    }
    if (!compositing) {
        if (m_model.brightnessFactor() < 1.0 && !std::exchange(m_toldNoCompositor, true))
            qCWarning(lcDimming) << "Monitors are not dimmed: no compositing manager is running, and "
                                    "without one a dimmed monitor would turn black.";
        m_overlays.removeOverlaysExcept({});
        return;
    }
    m_overlays.removeOverlaysExcept(m_overlays.updateOverlays(m_screens.screens()));
}

// Each change restarts the wait, so a burst of changes is checked once, when it has settled.
void DimmingModule::screensChanged() {
    updateOverlays();
    m_reconfigurationTimer.start();
}

void DimmingModule::reconfigurationCheck() {
    ++m_reconfigurationChecks;
    if (m_model.brightnessFactor() == 1.0)
        m_overlays.removeOverlaysExcept({});
}

ControlReply DimmingModule::command(const QStringList& arguments) {
    const QString what = arguments.value(0);
    if (what == "status" && arguments.size() == 1)
        return ControlReply::success(status());
    if (what == "toggle" && arguments.size() == 1) {
        toggle();
        return ControlReply::success(status());
    }
    if (what == "set" && arguments.size() == 2) {
        bool ok = false;
        const double factor = arguments[1].toDouble(&ok);
        if (!ok || !m_model.setBrightnessFactor(factor)) {
            const QString error = QString("dimming set: \"%1\" is not a brightness factor; give a number "
                                          "from %2 to 1.0 (1.0 is not dimmed)")
                                      .arg(arguments[1])
                                      .arg(MonitorDimmingModel::kMinimumBrightnessFactor);
            qCWarning(lcDimming).noquote() << error;
            return ControlReply::failure(error);
        }
        return ControlReply::success(status());
    }
    return ControlReply::failure("usage: velmora dimming status | set FACTOR | toggle");
}

Json DimmingModule::status() const {
    Json overlays = Json::array();
    for (const auto& [key, overlay] : m_overlays.overlays()) {
        const Rect g = overlay->coveredFrame();
        overlays.push_back({{"key", key.toStdString()},
                            {"geometry", {g.x, g.y, g.width, g.height}},
                            {"shown", overlay->isShown()}});
    }
    return {{"factor", m_model.brightnessFactor()},
            {"previous", m_model.previousBrightnessFactor()},
            {"compositing", m_compositing},
            {"overlays", overlays},
            {"reconfigurationChecks", m_reconfigurationChecks}};
}

} // namespace velmora
