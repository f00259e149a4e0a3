#include "monitoring/MBSMWidgetText.h"

#include <gtest/gtest.h>

#include <limits>

using namespace velmora;

namespace {

// 8 CPUs and 16 GB, the usage split between the system and the applications.
SystemSnapshot machine(double cpus, qint64 memory, qint64 up = 0, qint64 down = 0) {
    SystemSnapshot s;
    s.totalCPUs = 8;
    s.totalMemoryBytes = 16'000'000'000;
    s.systemResourceUsage = {cpus / 2, memory / 2, up / 2, down / 2};
    s.appsResourceUsage = {cpus - cpus / 2, memory - memory / 2, up - up / 2, down - down / 2};
    return s;
}

} // namespace

TEST(MBSMWidgetText, PercentagesOfTheWholeMachineTruncated) {
    const SystemSnapshot s = machine(2.5, 7'999'999'999);
    EXPECT_EQ(widgetText(ResourceType::cpu, &s), "31%");    // 31.25
    EXPECT_EQ(widgetText(ResourceType::memory, &s), "49%"); // 49.99...
    const SystemSnapshot full = machine(8, 16'000'000'000);
    EXPECT_EQ(widgetText(ResourceType::cpu, &full), "100%");
    EXPECT_EQ(widgetText(ResourceType::memory, &full), "100%");
    const SystemSnapshot idle = machine(0.0799, 0);
    EXPECT_EQ(widgetText(ResourceType::cpu, &idle), "0%");
}

TEST(MBSMWidgetText, OutOfRangeValuesAreClampedNotFatal) {
    SystemSnapshot over = machine(12, 20'000'000'000);
    EXPECT_EQ(widgetText(ResourceType::cpu, &over), "100%");
    EXPECT_EQ(widgetText(ResourceType::memory, &over), "100%");
    SystemSnapshot negative = machine(-1, -5);
    EXPECT_EQ(widgetText(ResourceType::cpu, &negative), "0%");
    EXPECT_EQ(widgetText(ResourceType::memory, &negative), "0%");
    SystemSnapshot empty; // no CPUs, no memory: 0 / 0
    EXPECT_EQ(widgetText(ResourceType::cpu, &empty), "0%");
    EXPECT_EQ(widgetText(ResourceType::memory, &empty), "0%");
    SystemSnapshot nan = machine(std::numeric_limits<double>::quiet_NaN(), 0);
    EXPECT_EQ(widgetText(ResourceType::cpu, &nan), "0%");
}

TEST(MBSMWidgetText, NetworkIsTheBytesOfTheLastIntervalInDecimalUnits) {
    const SystemSnapshot s = machine(0, 0, 500'000, 1'000'000);
    EXPECT_EQ(widgetText(ResourceType::network, &s), "1.5 MB");
    EXPECT_EQ(byteCountText(0), "0 kB");
    EXPECT_EQ(byteCountText(1), "1 kB"); // never bytes, and never "0" for some traffic
    EXPECT_EQ(byteCountText(999), "1 kB");
    EXPECT_EQ(byteCountText(1'499), "1 kB");
    EXPECT_EQ(byteCountText(1'500), "2 kB");
    EXPECT_EQ(byteCountText(999'499), "999 kB");
    EXPECT_EQ(byteCountText(999'999), "1 MB"); // rounding up reaches the next unit
    EXPECT_EQ(byteCountText(1'000'000), "1 MB");
    EXPECT_EQ(byteCountText(12'345'678), "12.3 MB");
    EXPECT_EQ(byteCountText(2'350'000'000), "2.35 GB");
    EXPECT_EQ(byteCountText(5'000'000'000'000), "5 TB");
    EXPECT_EQ(byteCountText(5'000'000'000'000'000), "5000 TB"); // TB is the largest unit
    EXPECT_EQ(byteCountText(-10), "0 kB");
}

TEST(MBSMWidgetText, CompactFormsFitATrayIcon) {
    EXPECT_EQ(compactByteCountText(0), "0k");
    EXPECT_EQ(compactByteCountText(999), "1k");
    EXPECT_EQ(compactByteCountText(12'400), "12k");
    EXPECT_EQ(compactByteCountText(1'540'000), "1.5M");
    EXPECT_EQ(compactByteCountText(9'960'000), "10M");
    EXPECT_EQ(compactByteCountText(999'600), "1M");
    EXPECT_EQ(compactByteCountText(2'100'000'000), "2.1G");
    for (qint64 bytes : {qint64(0), qint64(999'499), qint64(99'000'000), qint64(999'000'000'000)})
        EXPECT_LE(compactByteCountText(bytes).size(), 4) << bytes;
    const SystemSnapshot s = machine(2.5, 0, 0, 1'540'000);
    EXPECT_EQ(compactWidgetText(ResourceType::network, &s), "1.5M");
    EXPECT_EQ(compactWidgetText(ResourceType::cpu, &s), "31%");
}

TEST(MBSMWidgetText, BeforeTheFirstSnapshotEveryGaugeReadsADash) {
    for (ResourceType r : {ResourceType::cpu, ResourceType::memory, ResourceType::network}) {
        EXPECT_EQ(widgetText(r, nullptr), "–");
        EXPECT_EQ(compactWidgetText(r, nullptr), "–");
    }
    EXPECT_EQ(widgetLabel(ResourceType::memory), "MEM");
}
