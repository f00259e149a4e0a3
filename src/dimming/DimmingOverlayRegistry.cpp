#include "dimming/DimmingOverlayRegistry.h"

#include "dimming/DimmedScreens.h"
#include "dimming/DimmingLog.h"

namespace velmora {

DimmingOverlayRegistry::DimmingOverlayRegistry(MonitorDimmingModel& model, DimmingOverlayFactory factory)
    : m_model(model), m_factory(std::move(factory)) {}

DimmingOverlayRegistry::~DimmingOverlayRegistry() {
    removeOverlaysExcept({});
}

std::set<QString> DimmingOverlayRegistry::updateOverlays(const std::vector<ScreenInfo>& screens) {
    std::set<QString> keys;
    if (screens.empty())
        return keys;
    // Screen frames have their origin at the bottom left of the primary screen; windows at the top.
    const double primaryHeight = primaryScreen(screens).value_or(screens.front()).frame.height;
    for (const ScreenInfo& screen : screens) {
        const QString key = dimmingScreenKey(screen.frame);
        if (const auto reason = unusableFrameReason(screen.frame)) {
            if (m_reportedUnusable.insert(key).second)
                qCWarning(lcDimming).noquote()
                    << QString("Monitor %1 (%2) is not dimmed: %3.").arg(screen.id, key, *reason);
            continue;
        }
        if (!qualifiesForDimming(screen.frame))
            continue;
        keys.insert(key);
        if (m_overlays.contains(key))
            continue;
        if (auto overlay = m_factory(m_model, screen.frame.flipped(primaryHeight)))
            m_overlays.emplace(key, std::move(overlay));
    }
    return keys;
}

void DimmingOverlayRegistry::removeOverlaysExcept(const std::set<QString>& keys) {
    for (auto it = m_overlays.begin(); it != m_overlays.end();) {
        if (keys.contains(it->first)) {
            ++it;
            continue;
        }
        it->second->dismiss();
        it = m_overlays.erase(it);
    }
}

void DimmingOverlayRegistry::bringAllToFront() {
    for (auto& [key, overlay] : m_overlays)
        if (overlay->isShown())
            overlay->bringToFront();
}

} // namespace velmora
