#include "platform/linux/HostCounters.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace velmora;

TEST(HostCounters, CpuTicksFromTheCpuLine) {
    // user nice system idle iowait irq softirq steal guest guest_nice
    const auto ticks =
        HostCounters::parseCpuTicks("cpu  100 5 30 1000 20 3 2 1 50 0\ncpu0 50 2 15 500 10 1 1 0 25 0\n");
    ASSERT_TRUE(ticks);
    EXPECT_EQ(ticks->busy, 100u + 5 + 30 + 3 + 2 + 1); // guest is already in user
    EXPECT_EQ(ticks->total, ticks->busy + 1000 + 20);
    // An old kernel's four counters.
    const auto old = HostCounters::parseCpuTicks("cpu 7 0 3 90\n");
    ASSERT_TRUE(old);
    EXPECT_EQ(old->busy, 10u);
    EXPECT_EQ(old->total, 100u);
    for (const char* bad : {"", "cpu0 1 2 3 4\n", "cpu 1 2\n", "intr 1 2 3 4 5\n"})
        EXPECT_FALSE(HostCounters::parseCpuTicks(bad)) << bad;
}

TEST(HostCounters, MemoryFromMeminfo) {
    const auto memory =
        HostCounters::parseMemInfo("MemTotal:       16318480 kB\nMemFree:         1024000 kB\n"
                                   "MemAvailable:    8159240 kB\nMemAvailableX: 1 kB\n");
    ASSERT_TRUE(memory);
    EXPECT_EQ(memory->totalBytes, 16318480ull * 1024);
    EXPECT_EQ(memory->availableBytes, 8159240ull * 1024);
    const auto old = HostCounters::parseMemInfo("MemTotal: 1000 kB\nMemFree: 250 kB\n");
    ASSERT_TRUE(old);
    EXPECT_EQ(old->availableBytes, 250u * 1024);
    EXPECT_FALSE(HostCounters::parseMemInfo("MemFree: 250 kB\n"));
}

TEST(HostCounters, ThisMachine) {
    ProcDirectory proc;
    QTemporaryDir documents;
    HostCounters host(proc, documents.path());
    EXPECT_GE(host.processorCount(), 1);
    EXPECT_GT(host.physicalMemoryBytes(), 0);
    const auto ticks = host.cpuTicks();
    ASSERT_TRUE(ticks);
    EXPECT_GT(ticks->total, ticks->busy);
    const float memory = host.memoryInUseFraction();
    EXPECT_GT(memory, 0.0f);
    EXPECT_LT(memory, 1.0f);
    const float storage = host.storageInUseFraction();
    EXPECT_GT(storage, 0.0f);
    EXPECT_LE(storage, 1.0f);
    // A documents folder that does not exist yet is on the home folder's volume.
    HostCounters missing(proc, documents.path() + "/not-yet");
    EXPECT_GT(missing.storageInUseFraction(), 0.0f);
}

TEST(HostCounters, NothingFromAMissingFolder) {
    ProcDirectory proc("/nonexistent-proc");
    HostCounters host(proc, "/nonexistent");
    EXPECT_FALSE(host.cpuTicks());
    EXPECT_EQ(host.physicalMemoryBytes(), 0);
    EXPECT_EQ(host.memoryInUseFraction(), 0.0f);
}
