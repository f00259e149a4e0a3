#include "platform/linux/SocketOwners.h"

#include <gtest/gtest.h>

#include "FakeProc.h"

using namespace velmora;

namespace {

struct Owners {
    FakeProc proc;
    ProcDirectory directory{proc.root()};
    SocketOwners owners{directory};

    void opens(qint64 pid, int fd, const QByteArray& target) const {
        proc.link(QString::number(pid) + "/fd/" + QString::number(fd), target);
    }
};

} // namespace

TEST(SocketOwners, FindsTheHolderOfEachSocket) {
    Owners o;
    o.opens(100, 0, "/dev/null");
    o.opens(100, 3, "socket:[5001]");
    o.opens(100, 4, "pipe:[77]");
    o.opens(200, 7, "socket:[5002]");
    o.opens(200, 8, "socket:[notanumber]");
    o.owners.update({100, 200}, {5001, 5002});
    EXPECT_EQ(o.owners.ownerOf(5001), 100);
    EXPECT_EQ(o.owners.ownerOf(5002), 200);
    EXPECT_EQ(o.owners.ownerOf(77), std::nullopt);
    EXPECT_EQ(o.owners.scans(), 2u);
}

// Reading every descriptor is the cost: a process is read once, again only for a socket nobody holds.
TEST(SocketOwners, ReadsDescriptorsOnlyForNewProcessesAndUnknownSockets) {
    Owners o;
    o.opens(100, 3, "socket:[5001]");
    o.proc.write("200/stat", "");
    o.owners.update({100, 200}, {5001});
    EXPECT_EQ(o.owners.scans(), 2u);
    o.owners.update({100, 200}, {5001});
    EXPECT_EQ(o.owners.scans(), 2u) << "nothing new: nothing read";

    o.opens(300, 3, "socket:[5003]");
    o.owners.update({100, 200, 300}, {5001, 5003});
    EXPECT_EQ(o.owners.scans(), 3u) << "only the new process";
    EXPECT_EQ(o.owners.ownerOf(5003), 300);

    o.opens(200, 9, "socket:[5004]"); // a known process opens a socket
    o.owners.update({100, 200, 300}, {5001, 5003, 5004});
    EXPECT_EQ(o.owners.scans(), 6u) << "every known process once";
    EXPECT_EQ(o.owners.ownerOf(5004), 200);
}

// Held by a process whose folder is closed to us (or of another user): looked for once, not every time.
TEST(SocketOwners, ASocketNobodyHoldsIsLookedForOnce) {
    Owners o;
    o.opens(100, 3, "socket:[5001]");
    o.owners.update({100}, {5001, 9999});
    EXPECT_EQ(o.owners.ownerOf(9999), std::nullopt);
    const quint64 scans = o.owners.scans();
    o.owners.update({100}, {5001, 9999});
    o.owners.update({100}, {5001, 9999});
    EXPECT_EQ(o.owners.scans(), scans);
}

// The parent that made a socket ended; the child that inherited it holds it now.
TEST(SocketOwners, ASocketOutlivingItsHolderIsFoundInTheNextOne) {
    Owners o;
    o.opens(100, 3, "socket:[5001]");
    o.opens(101, 3, "socket:[5001]");
    o.owners.update({100, 101}, {5001});
    EXPECT_EQ(o.owners.ownerOf(5001), 100);
    o.proc.remove(100);
    o.owners.update({101}, {5001});
    EXPECT_EQ(o.owners.ownerOf(5001), 101);
}

TEST(SocketOwners, ClosedSocketsAndEndedProcessesAreForgotten) {
    Owners o;
    o.opens(100, 3, "socket:[5001]");
    o.owners.update({100}, {5001});
    o.owners.update({100}, {});
    EXPECT_EQ(o.owners.ownerOf(5001), std::nullopt);
    o.owners.update({}, {5001});
    EXPECT_EQ(o.owners.ownerOf(5001), std::nullopt);
}
