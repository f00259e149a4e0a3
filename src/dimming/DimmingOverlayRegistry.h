#pragma once

#include "core/ScreenInfo.h"
#include "dimming/DimmingOverlay.h"

#include <QString>
#include <map>
#include <set>

namespace velmora {

// The overlays by screen key (dimmingScreenKey of the screen's frame). A screen that moves or
// changes size gets a new key, and so a new overlay; the old one stays until it is removed.
class DimmingOverlayRegistry {
public:
    using Overlays = std::map<QString, std::unique_ptr<DimmingOverlay>>;

    DimmingOverlayRegistry(MonitorDimmingModel& model, DimmingOverlayFactory factory);
    ~DimmingOverlayRegistry();

    // Every qualifying screen gets an overlay unless it has one; the keys of the qualifying
    // screens. A screen no window can cover is left out, and said so once.
    std::set<QString> updateOverlays(const std::vector<ScreenInfo>& screens);
    // Dismisses and drops every overlay whose key is not in keys.
    void removeOverlaysExcept(const std::set<QString>& keys);
    void bringAllToFront();

    const Overlays& overlays() const { return m_overlays; }

private:
    MonitorDimmingModel& m_model;
    DimmingOverlayFactory m_factory;
    Overlays m_overlays;
    std::set<QString> m_reportedUnusable;
};

} // namespace velmora
