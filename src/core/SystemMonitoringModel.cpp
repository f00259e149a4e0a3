#include "core/SystemMonitoringModel.h"

namespace velmora {

void SystemMonitoringModel::append(SystemSnapshot snapshot) {
    m_snapshots.push_back(std::move(snapshot));
    if (m_snapshots.size() > kMaxSnapshots)
        m_snapshots.pop_front();
    emit snapshotsChanged();
}

void SystemMonitoringModel::setResource(ResourceType resource) {
    if (resource == m_resource)
        return;
    m_resource = resource;
    emit resourceChanged();
}

} // namespace velmora
