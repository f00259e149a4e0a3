#include "ui/monitoring/SystemMonitoringDashboard.h"
#include "MonitoringSnapshots.h"
#include "core/SystemMonitoringModel.h"
#include "ui/monitoring/HistoryChart.h"
#include "ui/monitoring/ProcessTreeModel.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace velmora;
using namespace velmora::testing;

namespace {

struct Kill {
    qint64 pid;
    bool force;
};

struct DashboardSetup {
    SystemMonitoringModel model;
    bool networkCounters = true;
    std::vector<Kill> kills;
    SystemMonitoringDashboard::Done pending;
    SystemMonitoringDashboard dashboard{model, [this] { return networkCounters; },
                                        [this](qint64 pid, bool force, SystemMonitoringDashboard::Done done) {
                                            kills.push_back({pid, force});
                                            pending = std::move(done);
                                        }};
    std::vector<QString> asked;

    DashboardSetup() { dashboard.show(); }
    void answer(SystemMonitoringDashboard::EndChoice choice) {
        dashboard.setConfirmation([this, choice](const QString& name, qint64 pid) {
            asked.push_back(QString("%1 %2").arg(name).arg(pid));
            return choice;
        });
    }
    void select(const QModelIndex& index) {
        dashboard.tree()->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                                       QItemSelectionModel::Rows);
    }
    QString label(const char* name) const { return dashboard.findChild<QLabel*>(name)->text(); }
};

SystemSnapshot sample(qint64 t, double editorCpus = 0.5) {
    return snapshotOf({application(process(200, "Editor", editorCpus, 1'000'000'000, 2'000),
                                   {process(201, "spell-checker", 0.1, 50'000'000)}),
                       systemGroup({process(7, "Xorg", 0.4, 300'000'000)})},
                      t);
}

using Choice = SystemMonitoringDashboard::EndChoice;

} // namespace

TEST(SystemMonitoringDashboard, SaysItIsCollectingUntilTheFirstSnapshotThenShowsChartsTreeAndTotals) {
    DashboardSetup s;
    EXPECT_EQ(s.dashboard.windowTitle(), "System Monitor");
    EXPECT_TRUE(s.dashboard.showsCollecting());
    EXPECT_FALSE(s.dashboard.endButton()->isEnabled());

    s.model.append(sample(1000));
    s.model.append(sample(6000, 1.5));
    EXPECT_FALSE(s.dashboard.showsCollecting());
    EXPECT_EQ(s.dashboard.treeModel()->rowCount(), 2);
    // One point per kept snapshot: the machine's CPU (of 4 cores) and memory in percent.
    EXPECT_EQ(s.dashboard.chart(0)->values(), std::vector<double>({25, 50}));
    EXPECT_EQ(s.dashboard.chart(0)->currentText(), "50%");
    EXPECT_EQ(s.dashboard.chart(1)->values(), std::vector<double>({16, 16}));
    EXPECT_EQ(s.dashboard.chart(2)->currentText(), "2 kB / 5 s");
    EXPECT_TRUE(s.label("totals").contains("CPU 160.0%, memory 1.05 GB, network 2 kB"));
    EXPECT_TRUE(s.label("networkNote").contains("UDP (QUIC) traffic is not counted without root"));

    s.networkCounters = false;
    s.model.append(sample(11000));
    EXPECT_EQ(s.dashboard.chart(2)->currentText(), "unavailable");
    EXPECT_TRUE(s.label("networkNote").contains("unavailable"));
    EXPECT_TRUE(s.label("networkNote").contains("UDP (QUIC)"));
    EXPECT_EQ(s.dashboard.treeModel()->index(0, ProcessTreeModel::Network).data().toString(), "unavailable");
}

TEST(SystemMonitoringDashboard, TheResourceSelectorAndTheModelsResourceFollowEachOther) {
    DashboardSetup s;
    s.model.append(sample(0));
    EXPECT_EQ(s.dashboard.treeModel()->index(0, 0).data().toString(), "Editor");
    s.dashboard.resourceSelector()->activated(1); // Memory, as a click picks it
    EXPECT_EQ(s.model.resource(), ResourceType::memory);
    s.model.setResource(ResourceType::network);
    EXPECT_EQ(s.dashboard.resourceSelector()->currentText(), "Network");
    EXPECT_EQ(s.dashboard.treeModel()->resource(), ResourceType::network);
}

TEST(SystemMonitoringDashboard, EndingAProcessAsksFirstAndSendsTheChosenSignal) {
    DashboardSetup s;
    s.model.append(sample(0));
    ProcessTreeModel& tree = *s.dashboard.treeModel();

    // "System" is no process.
    s.select(tree.groupIndex(0));
    EXPECT_FALSE(s.dashboard.endButton()->isEnabled());

    s.select(tree.processIndex(200, 201));
    EXPECT_TRUE(s.dashboard.endButton()->isEnabled());
    s.answer(Choice::cancel);
    s.dashboard.endButton()->click();
    EXPECT_EQ(s.asked, std::vector<QString>({"spell-checker 201"}));
    EXPECT_TRUE(s.kills.empty());

    s.answer(Choice::end);
    s.dashboard.endSelectedProcess();
    ASSERT_EQ(s.kills.size(), 1u);
    EXPECT_EQ(s.kills[0].pid, 201);
    EXPECT_FALSE(s.kills[0].force);
    s.pending(true, "Successfully killed process 201");
    EXPECT_EQ(s.dashboard.outcome(), "spell-checker (201) was ended.");

    // Gone with the next sample: nothing is selected, rather than the row that took its place.
    SystemSnapshot after = sample(5000);
    after.processGroups[0].children.clear();
    s.model.append(after);
    EXPECT_TRUE(s.dashboard.tree()->selectionModel()->selectedRows().isEmpty());
    EXPECT_FALSE(s.dashboard.endButton()->isEnabled());

    s.select(tree.groupIndex(200));
    s.answer(Choice::forceEnd);
    s.dashboard.endSelectedProcess();
    ASSERT_EQ(s.kills.size(), 2u);
    EXPECT_EQ(s.kills[1].pid, 200);
    EXPECT_TRUE(s.kills[1].force);
    s.pending(false, "Failed to kill process 200");
    EXPECT_EQ(s.dashboard.outcome(), "Editor (200) could not be ended: Failed to kill process 200");
}
