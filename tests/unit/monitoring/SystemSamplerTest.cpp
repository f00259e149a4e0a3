#include "monitoring/SystemSampler.h"
#include "core/SystemMonitoringModel.h"
#include "monitoring/HostCpuLoad.h"
#include "platform/fake/FakeSystemProbes.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

ProcessRow row(qint64 pid, QString command, double cpu = 0, qint64 memory = 0, qint64 parent = 1) {
    ProcessRow r;
    r.pid = pid;
    r.parentPid = parent;
    r.command = std::move(command);
    r.usedCPUs = cpu;
    r.residentBytes = memory;
    r.lstart = "Mon Nov 23 13:40:09 2026";
    return r;
}

} // namespace

TEST(HostCpuLoad, TheFirstReadingIsZeroThenTheShareOfBusyTicks) {
    HostCpuLoad load;
    EXPECT_EQ(load.sample(CpuTicks{100, 400}), 0.0f);
    EXPECT_FLOAT_EQ(load.sample(CpuTicks{130, 500}), 0.3f);
    EXPECT_EQ(load.sample(CpuTicks{130, 500}), 0.0f); // no time passed
    EXPECT_EQ(load.sample(std::nullopt), 0.0f);       // unreadable: the previous pair stays
    EXPECT_FLOAT_EQ(load.sample(CpuTicks{230, 600}), 1.0f);
}

TEST(SystemMonitoringModel, KeepsTheNewest200) {
    SystemMonitoringModel model;
    int changes = 0;
    QObject::connect(&model, &SystemMonitoringModel::snapshotsChanged, [&] { ++changes; });
    for (int i = 1; i <= 201; ++i) {
        SystemSnapshot s;
        s.timestamp = i;
        model.append(s);
    }
    EXPECT_EQ(model.snapshots().size(), 200u);
    EXPECT_EQ(model.snapshots().front().timestamp, 2);
    EXPECT_EQ(model.newest()->timestamp, 201);
    EXPECT_EQ(changes, 201);
}

TEST(SystemSampler, BuildsTheSnapshotFromTheProbes) {
    FakeSystemProbes probes;
    probes.change([](auto& m) {
        m.processors = 4;
        m.physicalMemory = 1000000;
        m.memoryFraction = 0.5f;
        auto editor = row(10, "gedit", 0.5, 100000);
        auto helper = row(11, "gedit-helper", 0.25, 50000, 10);
        auto daemon = row(12, "daemon", 0.1, 50000);
        m.rows = std::vector<ProcessRow>{daemon, editor, helper};
        m.network = std::map<qint64, NetworkTotals>{{10, {1000, 500}}, {12, {5, 5}}};
    });
    SystemSampler sampler(probes);
    RunningApplicationMap applications;
    applications[10] = {10, QString("Text Editor"), QString("org.gnome.gedit")};

    const auto first = sampler.generate(applications, 1700000000000);
    ASSERT_TRUE(first.snapshot);
    const SystemSnapshot& s = *first.snapshot;
    EXPECT_EQ(s.timestamp, 1700000000000);
    EXPECT_EQ(s.totalCPUs, 4);
    EXPECT_EQ(s.totalMemoryBytes, 1000000);
    ASSERT_EQ(s.processGroups.size(), 2u);
    EXPECT_EQ(s.processGroups[0].name, "Text Editor");
    EXPECT_EQ(s.processGroups[0].parent->bundleIdentifier, "org.gnome.gedit");
    ASSERT_EQ(s.processGroups[0].children.size(), 1u);
    EXPECT_DOUBLE_EQ(s.appsResourceUsage.usedCPUs, 0.75);
    EXPECT_EQ(s.appsResourceUsage.usedMemoryBytes, 150000);
    // 500,000 in use, 200,000 counted: the system's 50,000 is scaled by 2.5.
    EXPECT_EQ(s.systemResourceUsage.usedMemoryBytes, 125000);
    EXPECT_EQ(s.appsResourceUsage.totalNetworkBytes(), 0); // first sight of every pid
    EXPECT_TRUE(first.networkAvailable);

    probes.change([](auto& m) {
        m.network = std::map<qint64, NetworkTotals>{{10, {4000, 700}}, {12, {5, 5}}};
    });
    const auto second = sampler.generate(applications, 1700000005000);
    EXPECT_EQ(second.snapshot->processGroups[0].resourceUsage.downloadedBytes, 3000);
    EXPECT_EQ(second.snapshot->processGroups[0].resourceUsage.uploadedBytes, 200);
}

TEST(SystemSampler, WhatCannotBeReadLeavesNoSnapshotOrNoNetwork) {
    FakeSystemProbes probes;
    probes.change([](auto& m) {
        m.rows = std::vector<ProcessRow>{row(10, "a")};
        m.network = std::map<qint64, NetworkTotals>{{10, {100, 100}}};
    });
    SystemSampler sampler(probes);
    sampler.generate({}, 1);

    // The counters are gone for one sample: no network, and the totals before stay the reference.
    probes.change([](auto& m) { m.network.reset(); });
    const auto without = sampler.generate({}, 2);
    ASSERT_TRUE(without.snapshot);
    EXPECT_FALSE(without.networkAvailable);
    probes.change([](auto& m) { m.network = std::map<qint64, NetworkTotals>{{10, {150, 100}}}; });
    EXPECT_EQ(sampler.generate({}, 3).snapshot->systemResourceUsage.downloadedBytes, 50);

    probes.change([](auto& m) { m.rows.reset(); });
    const auto failed = sampler.generate({}, 4);
    EXPECT_FALSE(failed.snapshot);
}
