#pragma once

#include "core/MenubarSystemMonitoringPreferences.h"
#include "core/SystemSnapshot.h"

#include <QObject>
#include <deque>

namespace velmora {

// The kept snapshots, oldest first, at most 200 (1,000 seconds at one sample every five), and the
// resource the dashboard shows and sorts by. Main thread only.
class SystemMonitoringModel : public QObject {
    Q_OBJECT
public:
    static constexpr std::size_t kMaxSnapshots = 200;

    explicit SystemMonitoringModel(QObject* parent = nullptr) : QObject(parent) {}

    const std::deque<SystemSnapshot>& snapshots() const { return m_snapshots; }
    const SystemSnapshot* newest() const { return m_snapshots.empty() ? nullptr : &m_snapshots.back(); }
    void append(SystemSnapshot snapshot);

    ResourceType resource() const { return m_resource; }
    void setResource(ResourceType resource);

    qint64 totalMemoryBytes() const { return newest() ? newest()->totalMemoryBytes : 0; }
    ResourceUsage appsResourceUsage() const {
        return newest() ? newest()->appsResourceUsage : ResourceUsage{};
    }
    ResourceUsage systemResourceUsage() const {
        return newest() ? newest()->systemResourceUsage : ResourceUsage{};
    }

signals:
    void snapshotsChanged();
    void resourceChanged();

private:
    std::deque<SystemSnapshot> m_snapshots;
    ResourceType m_resource = ResourceType::cpu;
};

} // namespace velmora
