// The system monitor as a user meets it: real processes on this machine show up with the CPU they
// burn, the bytes they send and the application they belong to, and one can be ended from the agent.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using Json = AgentUnderTest::Json;

struct Found {
    Json group;
    Json process;
};

// The process with this pid in the snapshot: as an application or as one of its group's processes.
std::optional<Found> findProcess(const Json& snapshot, qint64 pid) {
    for (const Json& group : snapshot["processGroups"]) {
        if (group.contains("parent") && group["parent"]["pid"] == pid)
            return Found{group, group["parent"]};
        for (const Json& child : group["children"])
            if (child["pid"] == pid)
                return Found{group, child};
    }
    return std::nullopt;
}

class SystemMonitor : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(desktop.isReady());
        ASSERT_TRUE(desktop.writeWelcomedSettings());
        ASSERT_TRUE(agent.start());
    }

    // The first snapshot taken after the given one (by timestamp).
    Json nextSnapshot(qint64 afterTimestamp = 0) {
        Json found;
        EXPECT_TRUE(waitUntil(
            [&] {
                const auto s = agent.json({"monitor", "snapshot"});
                if (!s || (*s)["timestamp"].get<qint64>() <= afterTimestamp)
                    return false;
                found = *s;
                return true;
            },
            15000));
        return found;
    }

    VirtualDesktop desktop{VirtualDesktop::Options{1280, 800, false}};
    AgentUnderTest agent{desktop};
};

TEST_F(SystemMonitor, TheSnapshotSaysWhatTheMachineIs) {
    const Json snapshot = nextSnapshot();
    ASSERT_TRUE(snapshot.is_object());
    std::vector<std::string> keys;
    for (const auto& [key, value] : snapshot.items())
        keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"timestamp", "totalCPUs", "totalMemoryBytes",
                                              "appsResourceUsage", "systemResourceUsage", "processGroups"}));
    EXPECT_GE(snapshot["totalCPUs"].get<int>(), 1);
    EXPECT_GT(snapshot["totalMemoryBytes"].get<qint64>(), 0);
    ASSERT_FALSE(snapshot["processGroups"].empty());
    EXPECT_EQ(snapshot["processGroups"].back()["name"], "System");
    // The agent itself is one of the user's processes.
    EXPECT_TRUE(findProcess(snapshot, agent.process()->processId()) ||
                snapshot["systemResourceUsage"]["usedMemoryBytes"].get<qint64>() > 0);
    const Json status = agent.status()["systemMonitoring"];
    EXPECT_TRUE(status["sampling"].get<bool>());
}

// utime + stime of a process, in clock ticks, from /proc/PID/stat (fields 14 and 15, after the name).
static double cpuTicks(qint64 pid) {
    QFile stat(QString("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = stat.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    return fields.size() > 12 ? fields[11].toDouble() + fields[12].toDouble() : 0;
}

TEST_F(SystemMonitor, AProcessThatBurnsACoreShowsAboutOneCore) {
    QProcess burner;
    burner.start("sh", {"-c", "while :; do :; done"});
    ASSERT_TRUE(burner.waitForStarted());
    const qint64 pid = burner.processId();
    // The first sample that saw it counts from its start; the one after is a full interval. What the
    // burner really got in that interval is read from the kernel beside it: on a shared machine it
    // may be well short of a core.
    const Json first = nextSnapshot();
    const double ticksBefore = cpuTicks(pid);
    QElapsedTimer interval;
    interval.start();
    const Json second = nextSnapshot(first["timestamp"].get<qint64>());
    const double truth = (cpuTicks(pid) - ticksBefore) / double(sysconf(_SC_CLK_TCK)) /
                         (double(interval.nsecsElapsed()) / 1e9);
    burner.kill();
    burner.waitForFinished();
    const auto found = findProcess(second, pid);
    ASSERT_TRUE(found) << "the burning process is not among the top consumers";
    const double cpus = found->process["resourceUsage"]["usedCPUs"].get<double>();
    EXPECT_NEAR(cpus, truth, 0.15) << "the kernel counted " << truth << " of a core";
    EXPECT_LT(cpus, 1.1);
    EXPECT_EQ(found->group["name"], "System");
    const auto top = agent.json({"monitor", "top", "--by", "cpu", "--limit", "3"});
    ASSERT_TRUE(top);
    EXPECT_LE(top->size(), 3u);
}

TEST_F(SystemMonitor, BytesSentOverTcpShowInTheIntervalTheyWereSent) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QTcpSocket sender;
    sender.connectToHost(QHostAddress::LocalHost, server.serverPort());
    ASSERT_TRUE(sender.waitForConnected(3000));
    ASSERT_TRUE(server.waitForNewConnection(3000));
    QTcpSocket* receiver = server.nextPendingConnection();
    const qint64 self = QCoreApplication::applicationPid();

    // The connection exists before the sample: the process is known, so its next bytes count.
    const Json before = nextSnapshot();
    constexpr qint64 kBytes = 3'000'000;
    const QByteArray chunk(64 * 1024, 'x');
    qint64 sent = 0, received = 0;
    while (received < kBytes) {
        if (sent < kBytes)
            sent += sender.write(chunk.left(int(std::min<qint64>(chunk.size(), kBytes - sent))));
        sender.waitForBytesWritten(100);
        if (receiver->waitForReadyRead(100))
            received += receiver->readAll().size();
    }
    const Json after = nextSnapshot(before["timestamp"].get<qint64>());
    const auto found = findProcess(after, self);
    ASSERT_TRUE(found) << "the test process is not in the snapshot";
    const auto usage = found->process["resourceUsage"];
    // Sent and received by the same process here: both directions, within a few percent.
    EXPECT_NEAR(double(usage["uploadedBytes"].get<qint64>()), double(kBytes), kBytes * 0.05);
    EXPECT_NEAR(double(usage["downloadedBytes"].get<qint64>()), double(kBytes), kBytes * 0.05);
    const auto top = agent.json({"monitor", "top", "--by", "network", "--limit", "1"});
    ASSERT_TRUE(top && top->size() == 1);
    EXPECT_EQ((*top)[0]["pid"], self);
}

TEST_F(SystemMonitor, AWindowedProgramIsAnApplicationAndItsChildJoinsIt) {
    TestWindow notes(desktop, "Monitored Notes", {"--child", "sleep 600"});
    ASSERT_TRUE(notes.waitUntilMapped());
    qint64 child = 0;
    ASSERT_TRUE(waitUntil([&] {
        const QString out = notes.output();
        const int at = out.indexOf("child ");
        if (at < 0)
            return false;
        child = out.mid(at + 6).section('\n', 0, 0).toLongLong();
        return child > 0;
    }));
    const qint64 app = notes.process()->processId();
    Json snapshot = nextSnapshot();
    if (!findProcess(snapshot, app) || findProcess(snapshot, app)->group["pid"] != app)
        snapshot = nextSnapshot(snapshot["timestamp"].get<qint64>()); // the window arrived mid-sample
    const auto application = findProcess(snapshot, app);
    ASSERT_TRUE(application);
    EXPECT_EQ(application->group["pid"], app);
    const auto helper = findProcess(snapshot, child);
    ASSERT_TRUE(helper) << "the child is not in the application's group";
    EXPECT_EQ(helper->group["pid"], app);
    EXPECT_EQ(helper->process["name"], "sleep");
}

TEST_F(SystemMonitor, KillEndsAProcessAndSaysSoWhenItIsAlreadyGone) {
    QProcess victim;
    victim.start("sleep", {"600"});
    ASSERT_TRUE(victim.waitForStarted());
    const QString pid = QString::number(victim.processId());
    const auto killed = agent.json({"monitor", "kill", pid});
    ASSERT_TRUE(killed);
    EXPECT_EQ((*killed)["signal"], 15);
    EXPECT_EQ((*killed)["result"], ("Successfully killed process " + pid).toStdString());
    ASSERT_TRUE(victim.waitForFinished(3000));
    EXPECT_EQ(victim.exitStatus(), QProcess::CrashExit);

    const auto again = agent.command({"monitor", "kill", pid, "--force"});
    EXPECT_NE(again.exitCode, 0);
    EXPECT_TRUE(again.err.contains("Failed to kill process " + pid)) << again.err.toStdString();
    EXPECT_NE(agent.command({"monitor", "kill", "nonsense"}).exitCode, 0);
}

} // namespace
