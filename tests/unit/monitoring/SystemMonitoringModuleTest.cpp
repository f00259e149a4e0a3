#include "monitoring/SystemMonitoringModule.h"
#include "../agent/FakeAgent.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

// The agent over the in-memory desktop with a machine of four processes.
struct MonitoredAgent {
    MonitoredAgent() {
        fake().systemProbes->change([](auto& m) {
            m.rows = std::vector<ProcessRow>{row(10, "editor", 0.5, 3000), row(11, "daemon", 0.1, 9000),
                                             row(12, "idle", 0, 10), row(13, "busy", 2.0, 100)};
        });
        fake().workspace->running = {{10, QString("Editor"), QString("org.example.Editor")}};
    }
    static ProcessRow row(qint64 pid, QString command, double cpu, qint64 memory) {
        ProcessRow r;
        r.pid = pid;
        r.parentPid = 1;
        r.command = std::move(command);
        r.usedCPUs = cpu;
        r.residentBytes = memory;
        return r;
    }
    FakePlatform& fake() { return agent.fake; }
    SystemMonitoringModule& module() { return *agent.app.module<SystemMonitoringModule>(); }

    // Asks as the command line does, and lets the agent work until the answer comes.
    ControlReply ask(const QStringList& args) {
        std::optional<ControlReply> answer;
        agent.commands.handle(args, [&](ControlReply r) { answer = std::move(r); });
        QElapsedTimer waited;
        waited.start();
        while (!answer && waited.elapsed() < 5000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
            QThread::msleep(1);
        }
        return answer.value_or(ControlReply::failure("no answer"));
    }
    // A snapshot of the machine as set now.
    void sample() {
        // The start-up sample first: it may have read the machine before the test set it up.
        waitForSnapshots(1);
        waitForSnapshots(module().model().snapshots().size() + 1, [this] { module().sampleNow(); });
    }
    void waitForSnapshots(std::size_t count, const std::function<void()>& ask = {}) {
        if (ask)
            ask();
        QElapsedTimer waited;
        waited.start();
        while (module().model().snapshots().size() < count && waited.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    FakeAgent agent;
};

} // namespace

TEST(SystemMonitoringModule, AnswersWithTheNewestSnapshotAndTheTopProcesses) {
    MonitoredAgent monitored;
    monitored.sample();
    const ControlReply snapshot = monitored.ask({"monitor", "snapshot"});
    ASSERT_TRUE(snapshot.ok) << snapshot.error.toStdString();
    EXPECT_EQ(snapshot.result["processGroups"][0]["name"], "Editor");
    EXPECT_EQ(snapshot.result["processGroups"][1]["name"], "System");

    const ControlReply byMemory = monitored.ask({"monitor", "top", "--by", "memory", "--limit", "2"});
    ASSERT_TRUE(byMemory.ok) << byMemory.error.toStdString();
    ASSERT_EQ(byMemory.result.size(), 2u);
    EXPECT_EQ(byMemory.result[0]["pid"], 11);
    EXPECT_EQ(byMemory.result[1]["pid"], 10);
    EXPECT_EQ(byMemory.result[1]["group"], "Editor");
    const ControlReply byCpu = monitored.ask({"monitor", "top"});
    ASSERT_TRUE(byCpu.ok);
    EXPECT_EQ(byCpu.result[0]["pid"], 13);
    EXPECT_EQ(byCpu.result.size(), 4u);

    for (const QStringList& bad :
         {QStringList{"monitor", "top", "--by", "disk"}, QStringList{"monitor", "top", "--limit", "0"},
          QStringList{"monitor", "frob"}, QStringList{"monitor", "kill", "-5"},
          QStringList{"monitor", "kill", "5", "-9"}})
        EXPECT_FALSE(monitored.ask(bad).ok) << bad.join(' ').toStdString();
    EXPECT_TRUE(
        monitored.agent.commands.handle({"status"}).result["systemMonitoring"]["sampling"].get<bool>());
}

TEST(SystemMonitoringModule, KillSendsTheRightSignalAndReportsWhatKillSaid) {
    MonitoredAgent monitored;
    auto& commands = *monitored.fake().commands;
    commands.results["/bin/kill"] = CommandResult{true, 0, {}, {}};
    const ControlReply term = monitored.ask({"monitor", "kill", "42"});
    ASSERT_TRUE(term.ok) << term.error.toStdString();
    EXPECT_EQ(term.result["result"], "Successfully killed process 42");
    ASSERT_FALSE(commands.calls.empty());
    EXPECT_EQ(commands.calls.back().program, "/bin/kill");
    EXPECT_EQ(commands.calls.back().arguments, QStringList({"-15", "42"}));

    ASSERT_TRUE(monitored.ask({"monitor", "kill", "42", "--force"}).ok);
    EXPECT_EQ(commands.calls.back().arguments, QStringList({"-9", "42"}));

    commands.results["/bin/kill"] = CommandResult{true, 1, {}, "kill: (42) - No such process"};
    EXPECT_EQ(monitored.ask({"monitor", "kill", "42"}).error, "Failed to kill process 42");
    commands.results.remove("/bin/kill");
    EXPECT_TRUE(monitored.ask({"monitor", "kill", "42"}).error.startsWith("Error killing process 42: "));
}
