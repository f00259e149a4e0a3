#pragma once

#include "core/MenubarSystemMonitoringPreferences.h"
#include "core/SystemSnapshot.h"

#include <QAbstractItemModel>
#include <QHash>
#include <vector>

namespace velmora {

// The process groups of the newest snapshot as a tree: each application with its processes (the
// application's own first), then "System" with its top consumers; groups and processes sorted by the
// chosen resource, most first, "System" always last.
//
// A new snapshot updates the rows in place: rows that stay keep their identity (a group by its pid, a
// process by its pid within the group), so a view keeps its selection and expanded groups across the
// refresh; rows that went are removed and new ones inserted, then the rows are put in the new order.
class ProcessTreeModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { Name, Pid, Cpu, Memory, Network, ColumnCount };
    static constexpr int kSortRole = Qt::UserRole + 1; // the number a column is sorted by

    explicit ProcessTreeModel(QObject* parent = nullptr);

    void setSnapshot(const SystemSnapshot* snapshot);
    void setResource(ResourceType resource);
    ResourceType resource() const { return m_resource; }
    // Without per-process network counters the network column says so instead of showing zeros.
    void setNetworkCountersAvailable(bool available);

    // The process of a row: the application's for a group, 0 for "System".
    qint64 pidAt(const QModelIndex& index) const;
    QString nameAt(const QModelIndex& index) const;
    // The row of a group, or of a process within the group, in column 0; invalid when not shown.
    QModelIndex groupIndex(qint64 groupPid) const;
    QModelIndex processIndex(qint64 groupPid, qint64 pid) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row {
        qint64 pid = 0;
        QString name;
        ResourceUsage usage;
    };
    struct Group {
        Row row;
        bool isSystem = false;
        std::vector<Row> children;
    };

    std::vector<Group> groupsOf(const SystemSnapshot& snapshot) const;
    void sort(std::vector<Group>& groups) const;
    void apply(std::vector<Group> next);
    void removeGone(const std::vector<Group>& next);
    void insertNew(const std::vector<Group>& next);
    void reorder(std::vector<Group> next);
    void reindex();
    const Row* rowAt(const QModelIndex& index) const;
    QVariant cell(const Row& row, bool isSystemGroup, int column, int role) const;

    std::vector<Group> m_groups;
    QHash<qint64, int> m_groupRows; // group pid -> row
    ResourceType m_resource = ResourceType::cpu;
    bool m_networkCounters = true;
};

} // namespace velmora
