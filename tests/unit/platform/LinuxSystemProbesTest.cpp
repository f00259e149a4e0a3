// The probes against this machine's kernel: real processes, real sockets.
#include "platform/linux/LinuxSystemProbes.h"

#include <QProcess>
#include <QStandardPaths>
#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace velmora;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kTransferBytes = 3'000'000;

const ProcessRow* rowOf(const std::vector<ProcessRow>& rows, qint64 pid) {
    const auto row =
        std::find_if(rows.begin(), rows.end(), [pid](const ProcessRow& r) { return r.pid == pid; });
    return row != rows.end() ? &*row : nullptr;
}

bool writeAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t sent = ::write(fd, data, size);
        if (sent <= 0)
            return false;
        data += sent;
        size -= std::size_t(sent);
    }
    return true;
}

qint64 readUpTo(int fd, qint64 bytes) {
    char buffer[65536];
    qint64 got = 0;
    while (got < bytes) {
        const ssize_t n = ::read(fd, buffer, std::size_t(std::min<qint64>(bytes - got, sizeof buffer)));
        if (n <= 0)
            break;
        got += n;
    }
    return got;
}

// A child process that, told so over a pipe, connects to a listener of the test and sends it
// kTransferBytes, then closes the connection when told, then ends when told. Each step is answered
// with one byte, so that the test reads the counters between steps.
class Sender {
public:
    explicit Sender(quint16 port) {
        int toChild[2], fromChild[2];
        if (::pipe(toChild) != 0 || ::pipe(fromChild) != 0)
            return;
        m_pid = ::fork();
        if (m_pid == 0) {
            ::close(toChild[1]);
            ::close(fromChild[0]);
            run(port, toChild[0], fromChild[1]);
        }
        ::close(toChild[0]);
        ::close(fromChild[1]);
        m_go = toChild[1];
        m_done = fromChild[0];
    }
    ~Sender() {
        if (m_pid > 0) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, nullptr, 0);
        }
        ::close(m_go);
        ::close(m_done);
    }

    pid_t pid() const { return m_pid; }
    // Asks for the next step; true once the child has done it.
    bool step() {
        char byte = 'g';
        return ::write(m_go, &byte, 1) == 1 && ::read(m_done, &byte, 1) == 1;
    }

private:
    // The child: only system calls, then _exit, nothing of the test's own state.
    [[noreturn]] static void run(quint16 port, int go, int done) {
        char byte = 0;
        if (::read(go, &byte, 1) != 1)
            ::_exit(1);
        const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            ::_exit(2);
        static char data[kTransferBytes];
        // The listener's one-byte answer carries its acknowledgement of everything sent.
        if (!writeAll(fd, data, sizeof data) || ::read(fd, &byte, 1) != 1 || ::write(done, &byte, 1) != 1)
            ::_exit(3);
        if (::read(go, &byte, 1) != 1)
            ::_exit(4);
        ::close(fd);
        if (::write(done, &byte, 1) != 1 || ::read(go, &byte, 1) != 1)
            ::_exit(5);
        ::_exit(0);
    }

    pid_t m_pid = -1;
    int m_go = -1;
    int m_done = -1;
};

// A loopback listener on a free port.
struct Listener {
    int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    quint16 port = 0;
    Listener() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && ::listen(fd, 4) == 0 &&
            ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
            port = ntohs(address.sin_port);
    }
    ~Listener() { ::close(fd); }
    // The accepted connection, after reading everything sent and answering it.
    int receiveAll() const {
        const int connection = ::accept4(fd, nullptr, nullptr, SOCK_CLOEXEC);
        const char answer = 'k';
        if (connection < 0 || readUpTo(connection, kTransferBytes) != kTransferBytes ||
            ::write(connection, &answer, 1) != 1)
            ADD_FAILURE() << "the transfer did not arrive whole";
        return connection;
    }
};

// Why the network figures cannot be checked here, if they cannot.
std::optional<std::string> networkCountersMissing(LinuxSystemProbes& probes, int connection) {
    if (!probes.hasNetworkCounters())
        return "this kernel answers no socket diagnostics (NETLINK_SOCK_DIAG)";
    struct stat info {};
    ::fstat(connection, &info);
    const auto sockets = SocketCounters(::getuid()).read();
    if (!sockets || !sockets->contains(info.st_ino))
        return "this kernel's socket diagnostics give no tcp_info byte counters (tcpi_bytes_acked, "
               "tcpi_bytes_received)";
    return std::nullopt;
}

// A child that keeps one core busy for a while.
pid_t busyChild(std::chrono::milliseconds howLong) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        const auto end = std::chrono::steady_clock::now() + howLong;
        volatile unsigned spin = 0;
        while (std::chrono::steady_clock::now() < end)
            spin = spin + 1;
        ::_exit(0);
    }
    return pid;
}

} // namespace

TEST(LinuxSystemProbes, ThisProcessAsPsShowsIt) {
    LinuxSystemProbes probes;
    const auto rows = probes.processRows();
    ASSERT_TRUE(rows);
    const ProcessRow* self = rowOf(*rows, ::getpid());
    ASSERT_TRUE(self);
    EXPECT_EQ(self->parentPid, ::getppid());
    EXPECT_EQ(self->command, QString("velmora_unit_tests").left(15));
    char exe[4096];
    const ssize_t length = ::readlink("/proc/self/exe", exe, sizeof exe);
    EXPECT_EQ(self->executablePath, QString::fromUtf8(exe, int(std::max<ssize_t>(length, 0))));
    EXPECT_GT(self->residentBytes, 1 << 20);
    EXPECT_EQ(self->usedCPUs, 0);
    for (const ProcessRow& row : *rows)
        EXPECT_FALSE(row.lstart.isEmpty()) << row.pid;
    const QString ps = QStandardPaths::findExecutable("ps");
    if (ps.isEmpty())
        GTEST_SKIP() << "no ps to compare the start time with";
    QProcess process;
    process.start(ps, {"-o", "lstart=", "-p", QString::number(::getpid())});
    ASSERT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(self->lstart, QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed());
}

TEST(LinuxSystemProbes, ABusyChildUsesAboutOneCore) {
    LinuxSystemProbes probes;
    ASSERT_TRUE(probes.processRows());
    const pid_t child = busyChild(1500ms);
    ASSERT_GT(child, 0);
    std::this_thread::sleep_for(500ms);
    const auto first = probes.processRows(); // seen for the first time: counted from its start
    std::this_thread::sleep_for(700ms);
    const auto second = probes.processRows(); // counted since the previous reading
    ::waitpid(child, nullptr, 0);
    ASSERT_TRUE(first && second);
    const ProcessRow* new_ = rowOf(*first, child);
    const ProcessRow* seen = rowOf(*second, child);
    ASSERT_TRUE(new_ && seen);
    EXPECT_GT(new_->usedCPUs, 0.5);
    EXPECT_LT(new_->usedCPUs, 1.5);
    EXPECT_GT(seen->usedCPUs, 0.5);
    EXPECT_LT(seen->usedCPUs, 1.5);
    EXPECT_EQ(seen->parentPid, ::getpid());
}

TEST(LinuxSystemProbes, HostCountersOfThisMachine) {
    LinuxSystemProbes probes;
    EXPECT_EQ(probes.processorCount(), ::sysconf(_SC_NPROCESSORS_ONLN));
    EXPECT_GT(probes.physicalMemoryBytes(), 0);
    EXPECT_TRUE(probes.cpuTicks());
    EXPECT_GT(probes.memoryInUseFraction(), 0.0f);
    EXPECT_GT(probes.storageInUseFraction(), 0.0f);
}

// The sender was read (with no socket) before it connected: its new socket is still found.
TEST(LinuxSystemProbes, ALoopbackTransferCountsForSenderAndReceiver) {
    Listener listener;
    ASSERT_NE(listener.port, 0);
    Sender sender(listener.port);
    ASSERT_GT(sender.pid(), 0);
    LinuxSystemProbes probes;
    const auto before = probes.networkTotals();
    if (before) {
        ASSERT_TRUE(before->contains(sender.pid()));
        EXPECT_EQ(before->at(sender.pid()).bytesOut, 0);
    }
    std::thread transfer([&] { ASSERT_TRUE(sender.step()); });
    const int connection = listener.receiveAll();
    transfer.join();
    if (const auto missing = networkCountersMissing(probes, connection)) {
        ::close(connection);
        GTEST_SKIP() << *missing;
    }
    const auto totals = probes.networkTotals();
    ASSERT_TRUE(totals);
    ASSERT_TRUE(totals->contains(sender.pid()));
    ASSERT_TRUE(totals->contains(::getpid()));
    EXPECT_GE(totals->at(sender.pid()).bytesOut, kTransferBytes);
    EXPECT_GE(totals->at(::getpid()).bytesIn, kTransferBytes);
    EXPECT_GE(totals->at(sender.pid()).bytesIn, 1);
    ::close(connection);
}

// Both ends close after one reading and before the next: what the first reading saw stays counted.
TEST(LinuxSystemProbes, AConnectionClosedBetweenReadingsKeepsItsBytes) {
    Listener listener;
    ASSERT_NE(listener.port, 0);
    Sender sender(listener.port);
    ASSERT_GT(sender.pid(), 0);
    std::thread transfer([&] { ASSERT_TRUE(sender.step()); });
    const int connection = listener.receiveAll();
    transfer.join();
    LinuxSystemProbes probes;
    if (const auto missing = networkCountersMissing(probes, connection)) {
        ::close(connection);
        GTEST_SKIP() << *missing;
    }
    const auto open = probes.networkTotals();
    ASSERT_TRUE(open);
    ASSERT_TRUE(open->contains(sender.pid()));
    EXPECT_GE(open->at(sender.pid()).bytesOut, kTransferBytes);

    ASSERT_TRUE(sender.step()); // the sender closes its end
    char rest = 0;
    EXPECT_EQ(::read(connection, &rest, 1), 0);
    ::close(connection);
    const auto closed = probes.networkTotals();
    ASSERT_TRUE(closed);
    ASSERT_TRUE(closed->contains(sender.pid()));
    EXPECT_GE(closed->at(sender.pid()).bytesOut, kTransferBytes);
    EXPECT_GE(closed->at(::getpid()).bytesIn, kTransferBytes);
}
