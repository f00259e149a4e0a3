#include "windowmanager/AccessibilityModel.h"

#include "core/MainThread.h"
#include "platform/Permission.h"

namespace velmora {

AccessibilityModel::AccessibilityModel(Permission& permission, TickHandler onTick, QObject* parent)
    : QObject(parent), m_permission(permission), m_onTick(std::move(onTick)) {
    m_timer.setInterval(1000);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &AccessibilityModel::tick);
}

void AccessibilityModel::start() {
    m_timer.start(); // restarting replaces the schedule, never doubles it
    tick();          // the first tick at once: shortcuts work from the first moment
}

void AccessibilityModel::tick() {
    assertMainThread("AccessibilityModel::tick");
    const auto state = m_permission.check();
    m_reason = state.reason;
    if (state.trusted != m_hasPermission) {
        m_hasPermission = state.trusted;
        emit hasPermissionChanged(m_hasPermission);
    }
    if (m_onTick)
        m_onTick(m_hasPermission);
}

} // namespace velmora
