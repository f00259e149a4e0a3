#include "platform/linux/ProcessTable.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <time.h>

#include "FakeProc.h"
#include "ScopedEnv.h"

using namespace velmora;

namespace {

const double kHz = double(::sysconf(_SC_CLK_TCK));

// A table over a fake folder with a clock the test moves.
struct Table {
    FakeProc proc;
    ProcDirectory directory{proc.root()};
    double now = 1000; // seconds since boot
    ProcessTable table{directory, ::getuid(), [this] { return now; }};

    Table() { proc.bootedAt(1795440000); }
    static quint64 ticksAt(double seconds) { return quint64(seconds * kHz); }

    std::vector<ProcessRow> read() {
        const auto rows = table.read();
        EXPECT_TRUE(rows);
        return rows.value_or(std::vector<ProcessRow>{});
    }
    static const ProcessRow* find(const std::vector<ProcessRow>& rows, qint64 pid) {
        const auto row =
            std::find_if(rows.begin(), rows.end(), [pid](const ProcessRow& r) { return r.pid == pid; });
        return row != rows.end() ? &*row : nullptr;
    }
    static double cpu(const std::vector<ProcessRow>& rows, qint64 pid) {
        const ProcessRow* row = find(rows, pid);
        EXPECT_TRUE(row) << "pid " << pid;
        return row ? row->usedCPUs : -1;
    }
};

struct UtcZone {
    struct ReadAgain {
        ~ReadAgain() { ::tzset(); }
    } readAgain;
    ScopedEnv env;
    UtcZone() {
        env.set("TZ", "UTC0");
        ::tzset();
    }
};

} // namespace

TEST(ProcessTable, ReadsEachProcessOfTheUser) {
    UtcZone utc;
    Table t;
    t.proc.process(42, "Web Content", 7, 500, Table::ticksAt(9.5), 2560);
    t.proc.link("42/exe", "/opt/google/chrome/chrome");
    t.proc.write("42/cgroup",
                 "0::/user.slice/user-1000.slice/user@1000.service/app.slice/app-chrome-42.scope\n");
    t.proc.process(43, "a) (b", 42, 0, Table::ticksAt(20));
    const auto rows = t.read();
    ASSERT_EQ(rows.size(), 2u);
    const ProcessRow* row = Table::find(rows, 42);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->parentPid, 7);
    EXPECT_EQ(row->command, "Web Content");
    EXPECT_EQ(row->residentBytes, 2560 * ::sysconf(_SC_PAGESIZE));
    EXPECT_EQ(row->lstart, "Mon Nov 23 13:20:09 2026"); // boot 13:20:00, started 9.5 s later
    EXPECT_EQ(row->executablePath, "/opt/google/chrome/chrome");
    EXPECT_EQ(row->bundlePath, "file:///opt/google/chrome/");
    EXPECT_EQ(row->scope, "app-chrome-42.scope");
    EXPECT_EQ(row->usedCPUs, 0); // nothing to count over on the first reading
    const ProcessRow* other = Table::find(rows, 43);
    ASSERT_TRUE(other);
    EXPECT_EQ(other->command, "a) (b");
    EXPECT_EQ(other->executablePath, ""); // no exe link: another user's program, or a kernel thread
    EXPECT_EQ(other->bundlePath, std::nullopt);
    EXPECT_EQ(other->scope, std::nullopt);
}

TEST(ProcessTable, CpuIsTicksOverTimeSinceThePreviousReading) {
    Table t;
    t.proc.process(10, "busy", 1, 1000, Table::ticksAt(5));
    t.proc.process(11, "idle", 1, 30, Table::ticksAt(5));
    t.read();
    t.now += 2;
    t.proc.process(10, "busy", 1, 1000 + quint64(3 * kHz), Table::ticksAt(5)); // 1.5 cores over 2 s
    t.proc.process(11, "idle", 1, 30, Table::ticksAt(5));
    const auto rows = t.read();
    EXPECT_DOUBLE_EQ(Table::cpu(rows, 10), 1.5);
    EXPECT_DOUBLE_EQ(Table::cpu(rows, 11), 0);
}

TEST(ProcessTable, AProcessStartedSinceThePreviousReadingCountsFromItsStart) {
    Table t;
    t.read();
    t.now += 5;
    t.proc.process(20, "new", 1, quint64(kHz), Table::ticksAt(t.now - 2)); // one second of CPU in two
    t.proc.process(21, "old", 1, 5000, Table::ticksAt(t.now - 10));        // running before, unseen
    const auto rows = t.read();
    EXPECT_DOUBLE_EQ(Table::cpu(rows, 20), 0.5);
    EXPECT_DOUBLE_EQ(Table::cpu(rows, 21), 0);
}

// The pid came back for another program: its ticks are not compared with the old one's.
TEST(ProcessTable, APidWithAnotherStartTimeIsANewProcess) {
    UtcZone utc;
    Table t;
    t.proc.process(30, "first", 1, 90000, Table::ticksAt(100));
    const auto first = t.read();
    t.now += 4;
    t.proc.process(30, "second", 1, quint64(0.75 * kHz), Table::ticksAt(t.now - 1.5));
    const auto rows = t.read();
    EXPECT_DOUBLE_EQ(Table::cpu(rows, 30), 0.5);
    const ProcessRow* row = Table::find(rows, 30);
    ASSERT_TRUE(row);
    EXPECT_NE(row->lstart, Table::find(first, 30)->lstart);
    EXPECT_EQ(row->lstart, "Mon Nov 23 13:36:42 2026"); // boot + 1002.5 s
}

TEST(ProcessTable, AProcessThatWasGoneIsForgotten) {
    Table t;
    t.proc.process(40, "flaky", 1, 100, Table::ticksAt(50));
    t.read();
    t.now += 1;
    t.proc.remove(40);
    EXPECT_EQ(Table::find(t.read(), 40), nullptr);
    // Back with the same start: it was not seen at the previous reading, so nothing is counted over it.
    t.now += 1;
    t.proc.process(40, "flaky", 1, 100 + quint64(kHz), Table::ticksAt(50));
    EXPECT_DOUBLE_EQ(Table::cpu(t.read(), 40), 0);
}

TEST(ProcessTable, WhatCannotBeReadIsLeftOut) {
    Table t;
    t.proc.process(50, "fine", 1, 0, Table::ticksAt(1));
    t.proc.write("51/statm", "1 1 1 1 0 1 0\n");   // no stat: ended while being read
    t.proc.write("52/stat", "52 (broken S 1 1\n"); // not a stat line
    // A stat line without the resident size, and no statm to take it from.
    t.proc.write("53/stat", "53 (no memory) S 1 1 1 0 -1 4194304 10 0 0 0 0 0 0 0 20 0 1 0 100\n");
    t.proc.write("self/stat", "1 (x) S 0\n"); // not a pid
    t.proc.write("sys/kernel", "");
    const auto rows = t.read();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].pid, 50);
}

TEST(ProcessTable, OnlyTheUsersProcesses) {
    FakeProc proc;
    proc.process(60, "mine", 1, 0, 10);
    ProcDirectory directory(proc.root());
    ProcessTable table(directory, ::getuid() + 1);
    const auto rows = table.read();
    ASSERT_TRUE(rows);
    EXPECT_TRUE(rows->empty());
}

TEST(ProcessTable, NothingWithoutAProcessFolder) {
    ProcDirectory directory("/nonexistent-proc");
    ProcessTable table(directory, ::getuid());
    EXPECT_FALSE(table.read());
}

// A launcher moves its program into a scope just after starting it; an older process's is not read again.
TEST(ProcessTable, TheScopeIsReadAgainOnlyWhileTheProcessIsYoung) {
    Table t;
    const QByteArray scoped = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/app-x-1.scope\n";
    t.proc.process(70, "young", 1, 0, Table::ticksAt(t.now - 1));
    t.proc.process(71, "old", 1, 0, Table::ticksAt(t.now - 300));
    t.proc.write("70/cgroup", "0::/user.slice/user-1000.slice/session-2.scope\n");
    t.proc.write("71/cgroup", "0::/user.slice/user-1000.slice/session-2.scope\n");
    t.read();
    t.now += 5;
    t.proc.write("70/cgroup", scoped);
    t.proc.write("71/cgroup", scoped);
    const auto rows = t.read();
    EXPECT_EQ(Table::find(rows, 70)->scope, "app-x-1.scope");
    EXPECT_EQ(Table::find(rows, 71)->scope, std::nullopt);
}
