// One reading of the system monitor's counters on a busy user session, beside the programs that tell
// the same (`ps` for the processes, `ss -tinp` for the TCP byte counters and their owners), in one run:
// 300 idle processes and 100 processes holding two loopback TCP connections each (200 connections, both
// ends open) are started first, then READINGS readings of each are timed alternately. Also the CPU time
// one reading costs the reading thread, and what that comes to at one reading every 5 s.
//   bench_monitor_snapshot [READINGS]
#include "fail.h"
#include "results.h"
#include "samples.h"

#include "platform/linux/LinuxSystemProbes.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

using namespace bench;

namespace {

constexpr int kIdleProcesses = 300;
constexpr int kSocketHolders = 100;
constexpr int kConnectionsPerHolder = 2;
constexpr double kSamplingSeconds = 5;

double cpuMs(int who) {
    rusage usage{};
    ::getrusage(who, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

double msSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// Children die with the benchmark, however it ends.
void dieWithParent() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

// A child that holds kConnectionsPerHolder loopback connections (both ends), each having moved a little
// data, and then waits to be killed. It writes one byte to `ready` once they are up.
[[noreturn]] void holdConnections(int ready) {
    dieWithParent();
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener, kConnectionsPerHolder) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        ::_exit(1);
    char data[4096] = {};
    for (int i = 0; i < kConnectionsPerHolder; ++i) {
        const int client = ::socket(AF_INET, SOCK_STREAM, 0);
        if (::connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            ::_exit(2);
        const int server = ::accept(listener, nullptr, nullptr);
        if (server < 0 || ::write(client, data, sizeof data) != ssize_t(sizeof data) ||
            ::read(server, data, sizeof data) <= 0)
            ::_exit(3);
    }
    ::close(listener);
    if (::write(ready, "r", 1) != 1)
        ::_exit(4);
    for (;;)
        ::pause();
}

class Crowd {
public:
    Crowd() {
        for (int i = 0; i < kIdleProcesses; ++i)
            start([] {
                dieWithParent();
                ::execlp("sleep", "sleep", "600", nullptr);
                ::_exit(127);
            });
        int ready[2];
        if (::pipe(ready) != 0)
            fail("cannot create a pipe");
        for (int i = 0; i < kSocketHolders; ++i)
            start([&] {
                ::close(ready[0]);
                holdConnections(ready[1]);
            });
        ::close(ready[1]);
        char byte;
        for (int i = 0; i < kSocketHolders; ++i)
            if (::read(ready[0], &byte, 1) != 1)
                fail("a connection holder failed to start");
        ::close(ready[0]);
    }
    ~Crowd() {
        for (const pid_t pid : pids)
            ::kill(pid, SIGKILL);
        for (const pid_t pid : pids)
            ::waitpid(pid, nullptr, 0);
    }
    std::size_t size() const { return pids.size(); }

private:
    template <class F> void start(F child) {
        const pid_t pid = ::fork();
        if (pid < 0)
            fail("cannot fork");
        if (pid == 0)
            child();
        pids.push_back(pid);
    }
    std::vector<pid_t> pids;
};

// Runs a program to its end, reading all it prints (as a caller parsing it would).
void runToCompletion(std::vector<std::string> args) {
    int out[2];
    if (::pipe2(out, O_CLOEXEC) != 0)
        fail("cannot create a pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char*> argv;
    for (auto& a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    const int error = ::posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    if (error != 0)
        fail("cannot start %s", args[0].c_str());
    char buffer[65536];
    while (::read(out[0], buffer, sizeof buffer) > 0) {
    }
    ::close(out[0]);
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        fail("%s failed", args[0].c_str());
}

// What the sampler asks for at each sample; the time of its two large parts into `parts` when given.
struct Parts {
    Samples processesMs, networkMs;
};
void readAll(velmora::LinuxSystemProbes& probes, Parts* parts = nullptr, std::size_t* processes = nullptr,
             std::size_t* withBytes = nullptr) {
    auto start = std::chrono::steady_clock::now();
    const auto rows = probes.processRows();
    const double processesMs = msSince(start);
    start = std::chrono::steady_clock::now();
    const auto totals = probes.networkTotals();
    const double networkMs = msSince(start);
    const auto ticks = probes.cpuTicks();
    const float memory = probes.memoryInUseFraction();
    const float storage = probes.storageInUseFraction();
    if (!rows || !ticks || memory <= 0 || storage <= 0)
        fail("the probes read nothing");
    if (parts) {
        parts->processesMs.add(processesMs);
        parts->networkMs.add(networkMs);
    }
    if (processes)
        *processes = rows->size();
    if (withBytes && totals) {
        *withBytes = 0;
        for (const auto& [pid, total] : *totals)
            *withBytes += total.bytesIn > 0 && total.bytesOut > 0;
    }
}

std::string fmt(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

} // namespace

int main(int argc, char** argv) {
    programName = "bench_monitor_snapshot";
    const int readings = argc > 1 ? std::max(1, std::atoi(argv[1])) : 40;
    const std::string uid = std::to_string(::getuid());

    Crowd crowd;
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // the idle ones have become `sleep`
    velmora::LinuxSystemProbes probes;
    if (!probes.hasNetworkCounters())
        fail("no socket diagnostics on this kernel: nothing to compare with ss");

    const auto firstStart = std::chrono::steady_clock::now();
    std::size_t processes = 0, withBytes = 0;
    readAll(probes, nullptr, &processes, &withBytes);
    const double firstMs = msSince(firstStart);
    const quint64 firstScans = probes.socketOwnerScans();
    std::printf("%zu processes started; %zu processes of the user, %zu with bytes both ways; first reading "
                "%.2f ms (%llu descriptor folders read)\n",
                crowd.size(), processes, withBytes, firstMs, static_cast<unsigned long long>(firstScans));
    if (processes < crowd.size() || withBytes < std::size_t(kSocketHolders))
        fail("the probes did not see the processes and connections started");

    Samples probeMs, probeCpuMs, yardstickMs, yardstickCpuMs;
    Parts parts;
    for (int i = 0; i < readings; ++i) {
        double cpu = cpuMs(RUSAGE_THREAD);
        auto start = std::chrono::steady_clock::now();
        readAll(probes, &parts);
        probeMs.add(msSince(start));
        probeCpuMs.add(cpuMs(RUSAGE_THREAD) - cpu);

        cpu = cpuMs(RUSAGE_CHILDREN);
        start = std::chrono::steady_clock::now();
        runToCompletion({"ps", "-U", uid, "-o", "pid,ppid,pcpu,rss,comm,lstart"});
        runToCompletion({"ss", "-tinp"});
        yardstickMs.add(msSince(start));
        yardstickCpuMs.add(cpuMs(RUSAGE_CHILDREN) - cpu);
    }
    const quint64 steadyScans = probes.socketOwnerScans() - firstScans;

    const std::string yardstick = "ps -U + ss -tinp";
    const auto share = [](double ms) { return 100.0 * ms / (kSamplingSeconds * 1000); };
    const Result results[] = {
        {"one reading (processes, sockets, host)",
         "ms",
         {probeMs.median(), probeMs.p99()},
         yardstick,
         Figure{yardstickMs.median(), yardstickMs.p99()},
         "below the yardstick",
         probeMs.median() < yardstickMs.median()},
        {"CPU time of one reading",
         "ms",
         {probeCpuMs.median(), probeCpuMs.p99()},
         yardstick,
         Figure{yardstickCpuMs.median(), yardstickCpuMs.p99()},
         "",
         std::nullopt},
        {"CPU at one reading every 5 s",
         "%",
         {share(probeCpuMs.median()), share(probeCpuMs.p99())},
         yardstick,
         Figure{share(yardstickCpuMs.median()), share(yardstickCpuMs.p99())},
         "< 1 % of a core",
         share(probeCpuMs.median()) < 1},
        {"  of which the processes",
         "ms",
         {parts.processesMs.median(), parts.processesMs.p99()},
         "",
         std::nullopt,
         "",
         std::nullopt},
        {"  of which the sockets and their owners",
         "ms",
         {parts.networkMs.median(), parts.networkMs.p99()},
         "",
         std::nullopt,
         "",
         std::nullopt},
        {"first reading (every process new)",
         "ms",
         {firstMs, std::nullopt},
         "",
         std::nullopt,
         "",
         std::nullopt},
    };
    for (const Result& r : results) {
        record(r);
        std::printf("%-42s median %10s  p99 %10s   %s median %10s  p99 %10s\n", r.name.c_str(),
                    fmt("%.3f", r.measured.median).c_str(),
                    r.measured.p99 ? fmt("%.3f", *r.measured.p99).c_str() : "-",
                    r.yardstick.empty() ? "-" : r.yardstick.c_str(),
                    r.yardstickFigure ? fmt("%.3f", r.yardstickFigure->median).c_str() : "-",
                    r.yardstickFigure && r.yardstickFigure->p99 ? fmt("%.3f", *r.yardstickFigure->p99).c_str()
                                                                : "-");
    }
    std::printf(
        "ratio of medians (reading / yardstick): %.3f; descriptor folders read after the first reading: "
        "%llu over %d readings\n",
        probeMs.median() / yardstickMs.median(), static_cast<unsigned long long>(steadyScans), readings);
    return 0;
}
