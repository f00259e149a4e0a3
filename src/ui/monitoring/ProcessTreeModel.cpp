#include "ui/monitoring/ProcessTreeModel.h"

#include "monitoring/MBSMWidgetText.h"

#include <QFont>

#include <algorithm>

namespace velmora {

namespace {

double valueOf(const ResourceUsage& usage, ResourceType resource) {
    switch (resource) {
    case ResourceType::cpu:
        return usage.usedCPUs;
    case ResourceType::memory:
        return double(usage.usedMemoryBytes);
    case ResourceType::network:
        return double(usage.totalNetworkBytes());
    }
    return 0;
}

template <class T> auto findPid(T& rows, qint64 pid, auto pidOf) {
    return std::find_if(rows.begin(), rows.end(), [&](const auto& r) { return pidOf(r) == pid; });
}

} // namespace

ProcessTreeModel::ProcessTreeModel(QObject* parent) : QAbstractItemModel(parent) {}

std::vector<ProcessTreeModel::Group> ProcessTreeModel::groupsOf(const SystemSnapshot& snapshot) const {
    std::vector<Group> groups;
    for (const ProcessGroup& g : snapshot.processGroups) {
        Group group{{g.pid, g.name, g.resourceUsage}, g.isSystem(), {}};
        // An application with helpers lists its own process among them, so each row's own use can be
        // told from the group's sum; alone, the group's row says it all.
        if (g.parent && !g.children.empty())
            group.children.push_back({g.parent->pid, g.parent->name, g.parent->resourceUsage});
        for (const ProcessSnapshot& p : g.children)
            if (findPid(group.children, p.pid, [](const Row& r) { return r.pid; }) == group.children.end())
                group.children.push_back({p.pid, p.name, p.resourceUsage});
        if (findPid(groups, g.pid, [](const Group& x) { return x.row.pid; }) == groups.end())
            groups.push_back(std::move(group));
    }
    return groups;
}

void ProcessTreeModel::sort(std::vector<Group>& groups) const {
    const auto most = [this](const Row& a, const Row& b) {
        const double va = valueOf(a.usage, m_resource), vb = valueOf(b.usage, m_resource);
        return va != vb ? va > vb : a.pid < b.pid;
    };
    std::stable_sort(groups.begin(), groups.end(), [&](const Group& a, const Group& b) {
        if (a.isSystem != b.isSystem)
            return b.isSystem;
        return most(a.row, b.row);
    });
    for (Group& g : groups)
        std::stable_sort(g.children.begin(), g.children.end(), most);
}

void ProcessTreeModel::setSnapshot(const SystemSnapshot* snapshot) {
    auto next = snapshot ? groupsOf(*snapshot) : std::vector<Group>{};
    sort(next);
    apply(std::move(next));
}

void ProcessTreeModel::setResource(ResourceType resource) {
    if (resource == m_resource)
        return;
    m_resource = resource;
    auto next = m_groups;
    sort(next);
    apply(std::move(next));
}

void ProcessTreeModel::setNetworkCountersAvailable(bool available) {
    if (available == m_networkCounters)
        return;
    m_networkCounters = available;
    if (!m_groups.empty())
        emit dataChanged(index(0, Network), index(int(m_groups.size()) - 1, Network));
    for (int g = 0; g < int(m_groups.size()); ++g)
        if (!m_groups[std::size_t(g)].children.empty()) {
            const QModelIndex parent = index(g, 0);
            emit dataChanged(index(0, Network, parent),
                             index(int(m_groups[std::size_t(g)].children.size()) - 1, Network, parent));
        }
}

void ProcessTreeModel::apply(std::vector<Group> next) {
    removeGone(next);
    insertNew(next);
    reorder(std::move(next));
    if (m_groups.empty())
        return;
    emit dataChanged(index(0, 0), index(int(m_groups.size()) - 1, ColumnCount - 1));
    for (int g = 0; g < int(m_groups.size()); ++g) {
        const int children = int(m_groups[std::size_t(g)].children.size());
        if (children > 0)
            emit dataChanged(index(0, 0, index(g, 0)), index(children - 1, ColumnCount - 1, index(g, 0)));
    }
}

void ProcessTreeModel::removeGone(const std::vector<Group>& next) {
    const auto groupPid = [](const Group& g) { return g.row.pid; };
    const auto rowPid = [](const Row& r) { return r.pid; };
    for (int g = int(m_groups.size()) - 1; g >= 0; --g) {
        if (findPid(next, m_groups[std::size_t(g)].row.pid, groupPid) != next.end())
            continue;
        beginRemoveRows({}, g, g);
        m_groups.erase(m_groups.begin() + g);
        reindex();
        endRemoveRows();
    }
    for (int g = 0; g < int(m_groups.size()); ++g) {
        auto& children = m_groups[std::size_t(g)].children;
        const auto& wanted = findPid(next, m_groups[std::size_t(g)].row.pid, groupPid)->children;
        for (int r = int(children.size()) - 1; r >= 0; --r) {
            if (findPid(wanted, children[std::size_t(r)].pid, rowPid) != wanted.end())
                continue;
            beginRemoveRows(index(g, 0), r, r);
            children.erase(children.begin() + r);
            endRemoveRows();
        }
    }
}

void ProcessTreeModel::insertNew(const std::vector<Group>& next) {
    const auto groupPid = [](const Group& g) { return g.row.pid; };
    const auto rowPid = [](const Row& r) { return r.pid; };
    for (const Group& group : next) {
        if (m_groupRows.contains(group.row.pid))
            continue;
        const int row = int(m_groups.size());
        beginInsertRows({}, row, row);
        m_groups.push_back({group.row, group.isSystem, {}});
        reindex();
        endInsertRows();
    }
    for (int g = 0; g < int(m_groups.size()); ++g) {
        auto& children = m_groups[std::size_t(g)].children;
        for (const Row& child : findPid(next, m_groups[std::size_t(g)].row.pid, groupPid)->children) {
            if (findPid(children, child.pid, rowPid) != children.end())
                continue;
            const int row = int(children.size());
            beginInsertRows(index(g, 0), row, row);
            children.push_back(child);
            endInsertRows();
        }
    }
}

// The same rows in the new order: every index a view holds (selection, expansion, current) is
// carried to where its row went.
void ProcessTreeModel::reorder(std::vector<Group> next) {
    emit layoutAboutToBeChanged();
    struct Key {
        qint64 group;
        std::optional<qint64> process;
    };
    const QModelIndexList before = persistentIndexList();
    std::vector<Key> keys;
    for (const QModelIndex& i : before) {
        if (i.internalId() == 0)
            keys.push_back({m_groups[std::size_t(i.row())].row.pid, std::nullopt});
        else {
            const qint64 group = qint64(i.internalId()) - 1;
            keys.push_back(
                {group, m_groups[std::size_t(m_groupRows.value(group))].children[std::size_t(i.row())].pid});
        }
    }
    m_groups = std::move(next);
    reindex();
    QModelIndexList after;
    for (std::size_t k = 0; k < keys.size(); ++k) {
        const QModelIndex at =
            keys[k].process ? processIndex(keys[k].group, *keys[k].process) : groupIndex(keys[k].group);
        after << (at.isValid() ? at.siblingAtColumn(before[qsizetype(k)].column()) : QModelIndex());
    }
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

void ProcessTreeModel::reindex() {
    m_groupRows.clear();
    for (int g = 0; g < int(m_groups.size()); ++g)
        m_groupRows.insert(m_groups[std::size_t(g)].row.pid, g);
}

QModelIndex ProcessTreeModel::groupIndex(qint64 groupPid) const {
    const auto row = m_groupRows.find(groupPid);
    return row == m_groupRows.end() ? QModelIndex() : index(*row, 0);
}

QModelIndex ProcessTreeModel::processIndex(qint64 groupPid, qint64 pid) const {
    const QModelIndex group = groupIndex(groupPid);
    if (!group.isValid())
        return {};
    const auto& children = m_groups[std::size_t(group.row())].children;
    const auto it = findPid(children, pid, [](const Row& r) { return r.pid; });
    return it == children.end() ? QModelIndex() : index(int(it - children.begin()), 0, group);
}

QModelIndex ProcessTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column < 0 || column >= ColumnCount || row >= rowCount(parent))
        return {};
    if (!parent.isValid())
        return createIndex(row, column, quintptr(0));
    // A process row names its group by the group's pid, which does not change when groups move.
    return createIndex(row, column, quintptr(m_groups[std::size_t(parent.row())].row.pid + 1));
}

QModelIndex ProcessTreeModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || child.internalId() == 0)
        return {};
    return groupIndex(qint64(child.internalId()) - 1);
}

int ProcessTreeModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid())
        return int(m_groups.size());
    if (parent.internalId() != 0 || parent.column() != 0)
        return 0;
    return int(m_groups[std::size_t(parent.row())].children.size());
}

int ProcessTreeModel::columnCount(const QModelIndex&) const {
    return ColumnCount;
}

const ProcessTreeModel::Row* ProcessTreeModel::rowAt(const QModelIndex& index) const {
    if (!index.isValid())
        return nullptr;
    if (index.internalId() == 0)
        return &m_groups[std::size_t(index.row())].row;
    const auto group = m_groupRows.find(qint64(index.internalId()) - 1);
    if (group == m_groupRows.end())
        return nullptr;
    return &m_groups[std::size_t(*group)].children[std::size_t(index.row())];
}

qint64 ProcessTreeModel::pidAt(const QModelIndex& index) const {
    const Row* row = rowAt(index);
    return row ? row->pid : 0;
}

QString ProcessTreeModel::nameAt(const QModelIndex& index) const {
    const Row* row = rowAt(index);
    return row ? row->name : QString();
}

QVariant ProcessTreeModel::data(const QModelIndex& index, int role) const {
    const Row* row = rowAt(index);
    if (!row)
        return {};
    const bool systemGroup = index.internalId() == 0 && m_groups[std::size_t(index.row())].isSystem;
    return cell(*row, systemGroup, index.column(), role);
}

QVariant ProcessTreeModel::cell(const Row& row, bool isSystemGroup, int column, int role) const {
    if (role == Qt::TextAlignmentRole)
        return column == Name ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                              : QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::FontRole && isSystemGroup) {
        QFont italic;
        italic.setItalic(true);
        return italic;
    }
    if (role == Qt::ToolTipRole && column == Network && m_networkCounters)
        return QString("Sent %1, received %2 in the last 5 seconds")
            .arg(byteCountText(row.usage.uploadedBytes), byteCountText(row.usage.downloadedBytes));
    if (role == kSortRole)
        switch (column) {
        case Pid:
            return row.pid;
        case Cpu:
            return row.usage.usedCPUs;
        case Memory:
            return row.usage.usedMemoryBytes;
        case Network:
            return row.usage.totalNetworkBytes();
        default:
            return row.name;
        }
    if (role != Qt::DisplayRole)
        return {};
    switch (column) {
    case Name:
        return row.name;
    case Pid:
        return isSystemGroup ? QString() : QString::number(row.pid);
    case Cpu:
        // Of one core, as top counts it: a busy process on four cores reads 400%.
        return QString::number(row.usage.usedCPUs * 100.0, 'f', 1) + "%";
    case Memory:
        return byteCountText(row.usage.usedMemoryBytes);
    case Network:
        return m_networkCounters ? byteCountText(row.usage.totalNetworkBytes()) : QString("unavailable");
    }
    return {};
}

QVariant ProcessTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return section == Name ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                               : QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole) {
        if (section == Cpu)
            return QString("Share of one core: a process busy on two cores reads 200%");
        if (section == Network)
            return QString("Bytes sent and received over TCP in the last 5 seconds");
    }
    if (role != Qt::DisplayRole)
        return {};
    static const char* titles[] = {"Name", "PID", "CPU", "Memory", "Network"};
    return QString(titles[section]);
}

} // namespace velmora
