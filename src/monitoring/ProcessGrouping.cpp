#include "monitoring/ProcessGrouping.h"

#include <QStringList>
#include <algorithm>
#include <functional>
#include <set>

namespace velmora {

namespace {

constexpr std::size_t kSystemChildren = 10;

// The system's own libraries: helpers there that carry an application's name belong to it.
const QStringList kSystemLibraries{"file:///System/Library", "file:///usr/lib/", "file:///usr/libexec/"};
const QStringList kApplicationFolders{"file:///Applications", "file:///System/Applications", "file:///Users"};

bool underSystemLibrary(const QString& path) {
    return std::any_of(kSystemLibraries.begin(), kSystemLibraries.end(),
                       [&](const QString& prefix) { return path.startsWith(prefix); });
}

// An application bundle inside another bundle ("Big.app/Contents/Helpers/Small.app/").
bool isNested(const QString& path) {
    return path.chopped(std::min<qsizetype>(5, path.size())).contains(".app/");
}

bool belongsTo(const ProcessSnapshot& process, const ProcessSnapshot& application) {
    if (process.parentPid && *process.parentPid == application.pid)
        return true;
    if (process.bundlePath && application.bundlePath) {
        if (process.bundlePath->startsWith(*application.bundlePath))
            return true;
        if (underSystemLibrary(*process.bundlePath) && process.name.startsWith(application.name))
            return true;
    }
    // Desktops that start each application in its own systemd scope put its helpers there too.
    return process.scope && application.scope && *process.scope == *application.scope;
}

std::vector<const ProcessSnapshot*> firstBy(std::vector<const ProcessSnapshot*> sorted, std::size_t n,
                                            const std::function<double(const ProcessSnapshot&)>& value) {
    std::sort(sorted.begin(), sorted.end(), [&](const ProcessSnapshot* a, const ProcessSnapshot* b) {
        const double va = value(*a), vb = value(*b);
        return va != vb ? va > vb : a->pid < b->pid;
    });
    sorted.resize(std::min(n, sorted.size()));
    return sorted;
}

} // namespace

bool isApplication(const ProcessSnapshot& process, ApplicationRule rule) {
    const std::optional<QString>& path = process.bundlePath;
    if (rule == ApplicationRule::windowOwners)
        return process.isRunningApplication && !(path && isNested(*path));
    if (!path)
        return false;
    const bool inApplicationFolder =
        std::any_of(kApplicationFolders.begin(), kApplicationFolders.end(),
                    [&](const QString& prefix) { return path->startsWith(prefix); });
    const bool isBundle = path->endsWith(".app/");
    return (inApplicationFolder || isBundle) && !isNested(*path) &&
           !path->startsWith("file:///System/Library");
}

void groupProcesses(SystemSnapshot& snapshot, const std::vector<ProcessSnapshot>& processes,
                    ApplicationRule rule) {
    std::vector<const ProcessSnapshot*> others;
    for (const ProcessSnapshot& process : processes) {
        if (!isApplication(process, rule)) {
            others.push_back(&process);
            continue;
        }
        ProcessGroup group{process.pid, process.name, process.resourceUsage, process, {}};
        snapshot.appsResourceUsage.add(process.resourceUsage);
        snapshot.processGroups.push_back(std::move(group));
    }
    const std::size_t applications = snapshot.processGroups.size();
    std::vector<ProcessSnapshot> leftovers;
    for (const ProcessSnapshot* process : others) {
        const auto group = std::find_if(
            snapshot.processGroups.begin(), snapshot.processGroups.begin() + qsizetype(applications),
            [&](const ProcessGroup& g) { return belongsTo(*process, *g.parent); });
        if (group == snapshot.processGroups.begin() + qsizetype(applications)) {
            leftovers.push_back(*process);
            continue;
        }
        group->resourceUsage.add(process->resourceUsage);
        snapshot.appsResourceUsage.add(process->resourceUsage);
        group->children.push_back(*process);
    }
    ProcessGroup system{0, "System", {}, std::nullopt, {}};
    for (const ProcessSnapshot& leftover : leftovers) {
        system.resourceUsage.add(leftover.resourceUsage);
        snapshot.systemResourceUsage.add(leftover.resourceUsage);
    }
    system.children = topConsumers(leftovers, kSystemChildren);
    snapshot.processGroups.push_back(std::move(system));
}

std::vector<ProcessSnapshot> topConsumers(const std::vector<ProcessSnapshot>& processes, std::size_t n) {
    std::vector<const ProcessSnapshot*> all;
    all.reserve(processes.size());
    for (const ProcessSnapshot& process : processes)
        all.push_back(&process);
    std::set<const ProcessSnapshot*> chosen;
    for (const auto& value : std::initializer_list<std::function<double(const ProcessSnapshot&)>>{
             [](const ProcessSnapshot& p) { return p.resourceUsage.usedCPUs; },
             [](const ProcessSnapshot& p) { return double(p.resourceUsage.usedMemoryBytes); },
             [](const ProcessSnapshot& p) { return double(p.resourceUsage.totalNetworkBytes()); }})
        for (const ProcessSnapshot* process : firstBy(all, n, value))
            chosen.insert(process);
    std::vector<ProcessSnapshot> result;
    for (const ProcessSnapshot& process : processes)
        if (chosen.contains(&process))
            result.push_back(process);
    return result;
}

} // namespace velmora
