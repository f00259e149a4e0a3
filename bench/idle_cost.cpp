// What an idle process costs the machine, read from /proc over the same interval for the agent and a
// yardstick process: CPU time (utime + stime of /proc/PID/stat, the figure `top` shows; the
// nanosecond run time of each thread's schedstat beside it) and wake-ups, the voluntary and
// involuntary context switches of all its threads. Threads are looked at every second, so one that
// ends during the interval keeps the switches it made until its last look.
//   idle_cost SECONDS NAME=PID YARDSTICK_NAME=PID
#include "fail.h"
#include "results.h"

#include <chrono>
#include <cstdio>
#include <dirent.h>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>

using namespace bench;

namespace {

struct ThreadCounts {
    std::string name;
    long long switches = 0;
    long long runNs = 0;
};

class Process {
public:
    Process(std::string name, int pid) : name(std::move(name)), pid(pid) {}

    const std::string name;
    const int pid;

    // Adds the threads' newest counts; a thread first seen now started during the interval.
    void look() {
        const std::string tasks = "/proc/" + std::to_string(pid) + "/task";
        DIR* dir = ::opendir(tasks.c_str());
        if (!dir)
            fail("process %s (%d) is gone", name.c_str(), pid);
        while (dirent* entry = ::readdir(dir)) {
            if (entry->d_name[0] == '.')
                continue;
            const std::string task = tasks + "/" + entry->d_name;
            ThreadCounts counts;
            std::ifstream status(task + "/status"), schedstat(task + "/schedstat");
            if (!status || !(schedstat >> counts.runNs))
                continue; // the thread ended just now: its last look stands
            for (std::string line; std::getline(status, line);)
                if (line.rfind("Name:", 0) == 0)
                    counts.name = line.substr(line.find_first_not_of(" \t", 5));
                else if (line.rfind("voluntary_ctxt_switches:", 0) == 0 ||
                         line.rfind("nonvoluntary_ctxt_switches:", 0) == 0)
                    counts.switches += std::stoll(line.substr(line.find(':') + 1));
            newest[entry->d_name] = counts;
        }
        ::closedir(dir);
    }

    void start() {
        look();
        first = newest;
        firstTicks = ticks();
    }

    long long switches() const { return sum(&ThreadCounts::switches); }
    long long runNs() const { return sum(&ThreadCounts::runNs); }
    long long ticksSinceStart() const { return ticks() - firstTicks; }
    std::size_t threadsSeen() const { return newest.size(); }

    // Which threads woke up, to tell where an idle cost comes from.
    void printThreads(double seconds) const {
        for (const auto& [tid, counts] : newest) {
            const auto before = first.find(tid);
            const long long switches =
                counts.switches - (before == first.end() ? 0 : before->second.switches);
            const long long runNs = counts.runNs - (before == first.end() ? 0 : before->second.runNs);
            if (switches > 0)
                std::printf("    thread %-7s %-16s %6.2f wake-ups/s  %.4f %% of a core%s\n", tid.c_str(),
                            counts.name.c_str(), double(switches) / seconds,
                            100.0 * double(runNs) / 1e9 / seconds,
                            before == first.end() ? "  (started during the interval)" : "");
        }
    }

private:
    std::map<std::string, ThreadCounts> first, newest;
    long long firstTicks = 0;

    long long sum(long long ThreadCounts::*field) const {
        long long total = 0;
        for (const auto& [tid, counts] : newest) {
            const auto before = first.find(tid);
            total += counts.*field - (before == first.end() ? 0 : before->second.*field);
        }
        return total;
    }

    // utime + stime of the whole process, dead threads included, in clock ticks.
    long long ticks() const {
        std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
        std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
        const auto afterName = text.rfind(')'); // the name may hold spaces and parentheses
        if (afterName == std::string::npos)
            fail("cannot read /proc/%d/stat", pid);
        std::istringstream fields(text.substr(afterName + 2));
        std::string field;
        long long utime = 0, stime = 0;
        for (int i = 3; i <= 15 && fields >> field; ++i) { // fields 14 and 15 of proc(5)
            if (i == 14)
                utime = std::stoll(field);
            if (i == 15)
                stime = std::stoll(field);
        }
        return utime + stime;
    }
};

Process parse(const char* arg) {
    const std::string text = arg;
    const auto eq = text.find('=');
    if (eq == std::string::npos)
        fail("expected NAME=PID, got \"%s\"", arg);
    return {text.substr(0, eq), std::stoi(text.substr(eq + 1))};
}

} // namespace

int main(int argc, char** argv) {
    programName = "idle_cost";
    if (argc != 4)
        fail("usage: idle_cost SECONDS NAME=PID YARDSTICK_NAME=PID");
    const int seconds = std::atoi(argv[1]);
    Process processes[] = {parse(argv[2]), parse(argv[3])};
    const auto begin = std::chrono::steady_clock::now();
    for (auto& p : processes)
        p.start();
    for (int s = 1; s <= seconds; ++s) {
        std::this_thread::sleep_until(begin + std::chrono::seconds(s));
        for (auto& p : processes)
            p.look();
    }
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    const double tick = double(::sysconf(_SC_CLK_TCK));

    struct Cost {
        double cpuPercent, runPercent, wakeUpsPerSecond;
    };
    Cost costs[2];
    for (int i = 0; i < 2; ++i) {
        const Process& p = processes[i];
        costs[i] = {100.0 * double(p.ticksSinceStart()) / tick / elapsed,
                    100.0 * double(p.runNs()) / 1e9 / elapsed, double(p.switches()) / elapsed};
        std::printf("idle %-8s over %.1f s: CPU %.3f %% of a core (/proc stat; %.4f %% by schedstat), "
                    "%.1f wake-ups/s, %zu threads\n",
                    p.name.c_str(), elapsed, costs[i].cpuPercent, costs[i].runPercent,
                    costs[i].wakeUpsPerSecond, p.threadsSeen());
        p.printThreads(elapsed);
    }
    const std::string over = " (" + std::to_string(seconds) + " s mean)";
    record({"idle: CPU, % of a core" + over,
            "%",
            {costs[0].cpuPercent, std::nullopt},
            "idle " + processes[1].name,
            Figure{costs[1].cpuPercent, std::nullopt},
            "<0.05",
            costs[0].cpuPercent < 0.05});
    record({"idle: CPU by schedstat" + over,
            "%",
            {costs[0].runPercent, std::nullopt},
            "idle " + processes[1].name,
            Figure{costs[1].runPercent, std::nullopt},
            "<0.05",
            costs[0].runPercent < 0.05});
    record({"idle: wake-ups per second" + over,
            "/s",
            {costs[0].wakeUpsPerSecond, std::nullopt},
            "idle " + processes[1].name,
            Figure{costs[1].wakeUpsPerSecond, std::nullopt},
            "<20",
            costs[0].wakeUpsPerSecond < 20});
    return 0;
}
