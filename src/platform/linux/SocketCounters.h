#pragma once

#include <QtGlobal>

#include <optional>
#include <sys/types.h>
#include <unordered_map>

namespace velmora {

// What one TCP socket moved, as its tcp_info counts it.
struct SocketBytes {
    quint64 received = 0; // tcpi_bytes_received
    quint64 acked = 0;    // tcpi_bytes_acked: what the peer confirmed, so nothing sent twice counts twice
};

// The byte counters of the user's TCP sockets (IPv4 and IPv6, every state), by socket inode, from the
// kernel's socket diagnostics (NETLINK_SOCK_DIAG): no root needed and no program started. Sockets of
// other users are left out by the owner the kernel reports for each.
class SocketCounters {
public:
    explicit SocketCounters(uid_t uid);
    ~SocketCounters();
    SocketCounters(const SocketCounters&) = delete;
    SocketCounters& operator=(const SocketCounters&) = delete;

    // Whether the diagnostics socket is open and the last dump was answered.
    bool isAvailable() const { return m_fd >= 0 && m_answered; }
    // Nothing when the kernel cannot be asked or does not answer; the socket is opened again next time.
    std::optional<std::unordered_map<quint64, SocketBytes>> read();

private:
    bool open();
    bool dump(unsigned char family, std::unordered_map<quint64, SocketBytes>& sockets);
    void close();

    const uid_t m_uid;
    int m_fd = -1;
    bool m_answered = true;
    unsigned m_sequence = 0;
    bool m_complained = false;
};

} // namespace velmora
