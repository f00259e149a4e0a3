#include "monitoring/ProcessGrouping.h"
#include "monitoring/MemoryRescaling.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

ProcessSnapshot process(qint64 pid, QString name, std::optional<QString> bundle = std::nullopt,
                        std::optional<qint64> parent = 1, double cpu = 0, qint64 memory = 0) {
    ProcessSnapshot p;
    p.pid = pid;
    p.name = std::move(name);
    p.bundlePath = std::move(bundle);
    p.parentPid = parent;
    p.resourceUsage.usedCPUs = cpu;
    p.resourceUsage.usedMemoryBytes = memory;
    return p;
}

} // namespace

TEST(ProcessGrouping, BundlePathsDecideWhatIsAnApplication) {
    const auto rule = ApplicationRule::bundlePaths;
    EXPECT_TRUE(isApplication(process(1, "Big", "file:///Applications/Big.app/"), rule));
    EXPECT_TRUE(isApplication(process(1, "Tool", "file:///Users/me/Tools/Tool.app/"), rule));
    EXPECT_TRUE(isApplication(process(1, "Elsewhere", "file:///Volumes/x/Elsewhere.app/"), rule));
    EXPECT_FALSE(
        isApplication(process(1, "Small", "file:///Applications/Big.app/Contents/Small.app/"), rule));
    EXPECT_FALSE(isApplication(process(1, "Agent", "file:///System/Library/CoreServices/Agent.app/"), rule));
    EXPECT_FALSE(isApplication(process(1, "daemon"), rule));
    EXPECT_FALSE(isApplication(process(1, "lib", "file:///usr/lib/thing/"), rule));
}

TEST(ProcessGrouping, OnLinuxAWindowOwnerIsAnApplicationWithOrWithoutItsOwnFolder) {
    const auto rule = ApplicationRule::windowOwners;
    auto editor = process(10, "Text Editor"); // /usr/bin: no installation folder
    EXPECT_FALSE(isApplication(editor, rule));
    editor.isRunningApplication = true;
    EXPECT_TRUE(isApplication(editor, rule));
    auto browser = process(11, "Browser", "file:///usr/lib/browser/");
    browser.isRunningApplication = true;
    EXPECT_TRUE(isApplication(browser, rule));
    auto nested = process(12, "Small", "file:///opt/Big.app/Contents/Small.app/");
    nested.isRunningApplication = true;
    EXPECT_FALSE(isApplication(nested, rule));
}

TEST(ProcessGrouping, ChildrenJoinTheirApplicationAndTheRestIsSystem) {
    std::vector<ProcessSnapshot> processes{
        process(100, "Big", "file:///Applications/Big.app/", 1, 0.5, 1000),
        process(101, "Small", "file:///Applications/Big.app/Contents/Small.app/", 1, 0.25, 100), // rule b
        process(102, "worker", std::nullopt, 100, 0.125, 10),                                    // rule a
        process(103, "Big Web Content", "file:///System/Library/Frameworks/Web.framework/", 1, 0, 1), // c
        process(104, "grandchild", std::nullopt, 102, 1, 5), // only the direct parent counts
        process(105, "daemon", std::nullopt, 1, 0, 7),
    };
    SystemSnapshot snapshot;
    groupProcesses(snapshot, processes, ApplicationRule::bundlePaths);
    ASSERT_EQ(snapshot.processGroups.size(), 2u);
    const ProcessGroup& big = snapshot.processGroups[0];
    EXPECT_EQ(big.pid, 100);
    EXPECT_EQ(big.parent->name, "Big");
    ASSERT_EQ(big.children.size(), 3u);
    EXPECT_EQ(big.children[0].pid, 101);
    EXPECT_EQ(big.children[1].pid, 102);
    EXPECT_EQ(big.children[2].pid, 103);
    EXPECT_DOUBLE_EQ(big.resourceUsage.usedCPUs, 0.875);
    EXPECT_EQ(big.resourceUsage.usedMemoryBytes, 1111);
    EXPECT_EQ(snapshot.appsResourceUsage, big.resourceUsage);

    const ProcessGroup& system = snapshot.processGroups[1];
    EXPECT_EQ(system.pid, 0);
    EXPECT_EQ(system.name, "System");
    EXPECT_FALSE(system.parent);
    ASSERT_EQ(system.children.size(), 2u); // fewer than ten leftovers: all of them
    EXPECT_EQ(system.children[0].pid, 104);
    EXPECT_EQ(system.children[1].pid, 105);
    EXPECT_EQ(system.resourceUsage.usedMemoryBytes, 12);
    EXPECT_EQ(snapshot.systemResourceUsage, system.resourceUsage);
}

TEST(ProcessGrouping, HelpersInTheApplicationsScopeJoinIt) {
    auto terminal = process(200, "Terminal");
    terminal.isRunningApplication = true;
    terminal.scope = "app-org.example.Terminal-200.scope";
    auto shell = process(201, "bash", std::nullopt, 999);
    shell.scope = terminal.scope;
    auto other = process(202, "bash", std::nullopt, 999);
    other.scope = "app-other-1.scope";
    SystemSnapshot snapshot;
    groupProcesses(snapshot, {terminal, shell, other}, ApplicationRule::windowOwners);
    ASSERT_EQ(snapshot.processGroups.size(), 2u);
    ASSERT_EQ(snapshot.processGroups[0].children.size(), 1u);
    EXPECT_EQ(snapshot.processGroups[0].children[0].pid, 201);
    EXPECT_EQ(snapshot.processGroups[1].children[0].pid, 202);
}

TEST(ProcessGrouping, TopConsumersAreTheUnionOfEachResourcesFirst) {
    std::vector<ProcessSnapshot> processes;
    for (int pid = 1; pid <= 30; ++pid)
        processes.push_back(process(pid, "p", std::nullopt, 1, pid == 5 ? 2.0 : 0.0, pid == 9 ? 500 : 1));
    processes[19].resourceUsage.downloadedBytes = 42; // pid 20
    const auto top = topConsumers(processes, 1);
    ASSERT_EQ(top.size(), 3u);
    EXPECT_EQ(top[0].pid, 5);
    EXPECT_EQ(top[1].pid, 9);
    EXPECT_EQ(top[2].pid, 20);
    // The same process first in two resources is listed once; ties go to the lower pid.
    processes[4].resourceUsage.usedMemoryBytes = 900;
    const auto again = topConsumers(processes, 1);
    ASSERT_EQ(again.size(), 2u);
    EXPECT_EQ(again[0].pid, 5);
    EXPECT_EQ(again[1].pid, 20);
    EXPECT_EQ(topConsumers(processes, 10).size(), 11u); // pids 1 to 10 lead two lists (ties), 20 the third
    EXPECT_TRUE(topConsumers({}, 10).empty());
}

TEST(MemoryRescaling, OnlyTheSystemShareIsScaledToTheMemoryInUse) {
    SystemSnapshot snapshot;
    snapshot.totalMemoryBytes = 1000;
    snapshot.appsResourceUsage.usedMemoryBytes = 100;
    snapshot.systemResourceUsage.usedMemoryBytes = 100;
    snapshot.processGroups = {ProcessGroup{7, "App", {0, 100, 0, 0}, std::nullopt, {}},
                              ProcessGroup{0, "System", {0, 100, 0, 0}, std::nullopt, {}}};
    rescaleSystemMemory(snapshot, 0.5f); // 500 used, 200 counted: factor 2.5
    EXPECT_EQ(snapshot.appsResourceUsage.usedMemoryBytes, 100);
    EXPECT_EQ(snapshot.systemResourceUsage.usedMemoryBytes, 250);
    EXPECT_EQ(snapshot.processGroups[0].resourceUsage.usedMemoryBytes, 100);
    EXPECT_EQ(snapshot.processGroups[1].resourceUsage.usedMemoryBytes, 250);

    SystemSnapshot empty;
    empty.totalMemoryBytes = 1000;
    rescaleSystemMemory(empty, 0.5f);
    EXPECT_EQ(empty.systemResourceUsage.usedMemoryBytes, 0);
}
