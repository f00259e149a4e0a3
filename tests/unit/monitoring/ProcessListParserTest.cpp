#include "monitoring/ProcessListParser.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

using namespace velmora;

TEST(ProcessListParser, ReadsTheColumnsAndDropsTheHeader) {
    const QString output = "  PID  PPID  %CPU    RSS COMMAND          STARTED\n"
                           "  123     1  12.5  20480 Finder           Mon Nov 23  9:05:01 2026  \n"
                           "\n"
                           "  456   123   0    100 Google Chrome Helper Tue Nov 24 10:00:00 2026\n";
    RunningApplicationMap applications;
    applications[456] = {456, QString("Chrome Helper App"), QString("com.example.helper")};
    const auto processes = parseProcessList(output, applications);
    ASSERT_EQ(processes.size(), 2u);
    const ProcessSnapshot& finder = processes[0];
    EXPECT_EQ(finder.pid, 123);
    EXPECT_EQ(finder.parentPid, 1);
    EXPECT_DOUBLE_EQ(finder.resourceUsage.usedCPUs, 0.125);
    EXPECT_EQ(finder.resourceUsage.usedMemoryBytes, 20971520);
    EXPECT_EQ(finder.name, "Finder");
    EXPECT_EQ(finder.lstart, "Mon Nov 23  9:05:01 2026"); // inner spacing kept, ends trimmed
    EXPECT_FALSE(finder.bundleIdentifier);
    EXPECT_FALSE(finder.isRunningApplication);

    // A command with a space is cut there; the rest joins the start time. A running application
    // gives its own name and identifier.
    const ProcessSnapshot& helper = processes[1];
    EXPECT_EQ(helper.name, "Chrome Helper App");
    EXPECT_EQ(helper.lstart, "Chrome Helper Tue Nov 24 10:00:00 2026");
    EXPECT_EQ(helper.bundleIdentifier, "com.example.helper");
    EXPECT_TRUE(helper.isRunningApplication);
}

TEST(ProcessListParser, SkipsLinesWhoseNumbersDoNotFit) {
    const QString output = "99999999999999999999999 1 0.0 10 big Mon Nov 23 9:05:01 2026\n"
                           "7 1 0.0 99999999999999999999 huge Mon Nov 23 9:05:01 2026\n"
                           "-8 1 0.0 10 negative Mon Nov 23 9:05:01 2026\n"
                           "9 1 0.0 10 fine Mon Nov 23 9:05:01 2026\n";
    const auto processes = parseProcessList(output, {});
    ASSERT_EQ(processes.size(), 1u);
    EXPECT_EQ(processes[0].name, "fine");
}

// Whatever the tool prints, the parser neither crashes nor invents a negative size.
TEST(ProcessListParser, SurvivesAnyText) {
    QRandomGenerator random(7);
    const QString alphabet = QStringLiteral("0123456789 .\t\n-+abcé☃\u0301");
    for (int round = 0; round < 2000; ++round) {
        QString text = "1 2 3.5 4 cmd ";
        const int length = random.bounded(200);
        for (int i = 0; i < length; ++i)
            text += alphabet[random.bounded(int(alphabet.size()))];
        for (const ProcessSnapshot& p : parseProcessList(text, {})) {
            EXPECT_GE(p.pid, 0);
            EXPECT_GE(p.resourceUsage.usedMemoryBytes, 0);
            EXPECT_FALSE(p.name.isEmpty());
        }
    }
}
