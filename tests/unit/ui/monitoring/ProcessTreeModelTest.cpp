#include "ui/monitoring/ProcessTreeModel.h"
#include "MonitoringSnapshots.h"

#include <QItemSelectionModel>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace velmora;
using namespace velmora::testing;

namespace {

using C = ProcessTreeModel::Column;

QString text(const ProcessTreeModel& m, const QModelIndex& i, int column) {
    return m.data(i.siblingAtColumn(column), Qt::DisplayRole).toString();
}

QStringList names(const ProcessTreeModel& m, const QModelIndex& parent = {}) {
    QStringList result;
    for (int r = 0; r < m.rowCount(parent); ++r)
        result << m.index(r, 0, parent).data().toString();
    return result;
}

// Firefox (1.2 cores over its three processes, 900 MB), an editor (0.1 cores, 1.5 GB), and the
// system's two top consumers.
SystemSnapshot desk(double editorCpus = 0.1) {
    return snapshotOf(
        {application(process(100, "Firefox", 0.2, 300'000'000, 40'000),
                     {process(101, "Web Content", 0.9, 500'000'000, 5'000),
                      process(102, "RDD Process", 0.1, 100'000'000)}),
         application(process(200, "Editor", editorCpus, 1'500'000'000)),
         systemGroup({process(7, "Xorg", 0.3, 200'000'000), process(9, "pipewire", 0.05, 20'000'000)})});
}

} // namespace

TEST(ProcessTreeModel, ApplicationsWithTheirProcessesThenSystemWithItsTopConsumers) {
    ProcessTreeModel m;
    const SystemSnapshot s = desk();
    m.setSnapshot(&s);
    EXPECT_EQ(names(m), QStringList({"Firefox", "Editor", "System"})); // by CPU, System last
    const QModelIndex firefox = m.groupIndex(100);
    // The application's own process is listed with its helpers, so each one's share shows.
    EXPECT_EQ(names(m, firefox), QStringList({"Web Content", "Firefox", "RDD Process"}));
    EXPECT_EQ(text(m, firefox, C::Cpu), "120.0%"); // of one core
    EXPECT_EQ(text(m, firefox, C::Memory), "900 MB");
    EXPECT_EQ(text(m, firefox, C::Network), "45 kB");
    EXPECT_EQ(text(m, firefox, C::Pid), "100");
    EXPECT_EQ(m.rowCount(m.groupIndex(200)), 0); // alone, the group row is the process
    const QModelIndex system = m.groupIndex(0);
    EXPECT_EQ(text(m, system, C::Pid), "");
    EXPECT_EQ(names(m, system), QStringList({"Xorg", "pipewire"}));
    EXPECT_EQ(m.pidAt(m.processIndex(0, 9)), 9);
    EXPECT_EQ(m.parent(m.processIndex(100, 102)), firefox);

    m.setNetworkCountersAvailable(false);
    EXPECT_EQ(text(m, firefox, C::Network), "unavailable");
    m.setSnapshot(nullptr);
    EXPECT_EQ(m.rowCount(), 0);
}

TEST(ProcessTreeModel, SortsGroupsAndProcessesByTheChosenResource) {
    ProcessTreeModel m;
    const SystemSnapshot s = desk();
    m.setSnapshot(&s);
    m.setResource(ResourceType::memory);
    EXPECT_EQ(names(m), QStringList({"Editor", "Firefox", "System"}));
    EXPECT_EQ(names(m, m.groupIndex(100)), QStringList({"Web Content", "Firefox", "RDD Process"}));
    m.setResource(ResourceType::network);
    EXPECT_EQ(names(m), QStringList({"Firefox", "Editor", "System"}));
    EXPECT_EQ(names(m, m.groupIndex(100)), QStringList({"Firefox", "Web Content", "RDD Process"}));
    // Equal values: the lower pid first, so rows do not swap places from one sample to the next.
    EXPECT_EQ(names(m, m.groupIndex(0)), QStringList({"Xorg", "pipewire"}));
}

TEST(ProcessTreeModel, SelectionAndExpansionSurviveANewSnapshotThatReordersAndReplacesRows) {
    ProcessTreeModel m;
    QTreeView view;
    view.setModel(&m);
    SystemSnapshot s = desk();
    m.setSnapshot(&s);
    view.expand(m.groupIndex(100));
    view.expand(m.groupIndex(0));
    view.selectionModel()->setCurrentIndex(m.processIndex(100, 102),
                                           QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);

    // The editor now works hardest, Xorg's neighbour is replaced, Firefox gains a process.
    SystemSnapshot next = desk(3.0);
    next.processGroups[2].children[1] = process(12, "tracker", 0.01, 1'000);
    next.processGroups[0].children.push_back(process(103, "Utility", 0.0, 1'000));
    m.setSnapshot(&next);

    EXPECT_EQ(names(m), QStringList({"Editor", "Firefox", "System"}));
    EXPECT_EQ(names(m, m.groupIndex(0)), QStringList({"Xorg", "tracker"}));
    EXPECT_EQ(m.rowCount(m.groupIndex(100)), 4);
    EXPECT_TRUE(view.isExpanded(m.groupIndex(100)));
    EXPECT_TRUE(view.isExpanded(m.groupIndex(0)));
    EXPECT_FALSE(view.isExpanded(m.groupIndex(200)));
    const QModelIndexList selected = view.selectionModel()->selectedRows();
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(m.pidAt(selected[0]), 102);
    EXPECT_EQ(view.selectionModel()->currentIndex(), m.processIndex(100, 102));

    // Two processes ended.
    next.processGroups[0].children.pop_back();
    next.processGroups[0].children.pop_back();
    m.setSnapshot(&next);
    EXPECT_EQ(names(m, m.groupIndex(100)), QStringList({"Web Content", "Firefox"}));

    // A whole application went: its group is gone, the others keep their state.
    view.selectionModel()->setCurrentIndex(m.processIndex(0, 7),
                                           QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    next.processGroups.erase(next.processGroups.begin());
    m.setSnapshot(&next);
    EXPECT_EQ(names(m), QStringList({"Editor", "System"}));
    EXPECT_TRUE(view.isExpanded(m.groupIndex(0)));
    EXPECT_EQ(m.pidAt(view.selectionModel()->currentIndex()), 7);
}
