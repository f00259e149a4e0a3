#include "platform/linux/SocketCounters.h"

#include "platform/linux/LinuxLog.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/sock_diag.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velmora {

namespace {

// A kernel older than 4.2 sends a shorter tcp_info, without the two counters.
constexpr std::size_t kCountersEnd = offsetof(tcp_info, tcpi_bytes_received) + sizeof(quint64);

// The counters of one answer, when it is a socket of the user with a tcp_info that holds them.
std::optional<std::pair<quint64, SocketBytes>> socketOf(const nlmsghdr* message, uid_t uid) {
    if (message->nlmsg_len < NLMSG_LENGTH(sizeof(inet_diag_msg)))
        return std::nullopt;
    const auto* diag = static_cast<const inet_diag_msg*>(NLMSG_DATA(message));
    if (diag->idiag_inode == 0 || diag->idiag_uid != uid) // inode 0: a connection no process holds
        return std::nullopt;
    int length = int(message->nlmsg_len - NLMSG_LENGTH(sizeof(inet_diag_msg)));
    for (auto* attribute = reinterpret_cast<const rtattr*>(diag + 1); RTA_OK(attribute, length);
         attribute = RTA_NEXT(attribute, length)) {
        if (attribute->rta_type != INET_DIAG_INFO || RTA_PAYLOAD(attribute) < kCountersEnd)
            continue;
        tcp_info info{};
        std::memcpy(&info, RTA_DATA(attribute), std::min<std::size_t>(RTA_PAYLOAD(attribute), sizeof info));
        return std::pair(quint64(diag->idiag_inode),
                         SocketBytes{info.tcpi_bytes_received, info.tcpi_bytes_acked});
    }
    return std::nullopt;
}

} // namespace

SocketCounters::SocketCounters(uid_t uid) : m_uid(uid) {}

SocketCounters::~SocketCounters() {
    close();
}

bool SocketCounters::open() {
    if (m_fd >= 0)
        return true;
    m_fd = ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG);
    if (m_fd < 0 && !std::exchange(m_complained, true))
        qCWarning(lcLinux) << "No socket diagnostics, so no network counters per process:"
                           << std::strerror(errno);
    return m_fd >= 0;
}

void SocketCounters::close() {
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

std::optional<std::unordered_map<quint64, SocketBytes>> SocketCounters::read() {
    if (!open()) {
        m_answered = false;
        return std::nullopt;
    }
    std::unordered_map<quint64, SocketBytes> sockets;
    m_answered = dump(AF_INET, sockets) && dump(AF_INET6, sockets);
    if (!m_answered) {
        if (!std::exchange(m_complained, true))
            qCWarning(lcLinux) << "The kernel did not answer for its TCP sockets:" << std::strerror(errno);
        close(); // a half-read dump would answer the next request
        return std::nullopt;
    }
    return sockets;
}

bool SocketCounters::dump(unsigned char family, std::unordered_map<quint64, SocketBytes>& sockets) {
    struct {
        nlmsghdr header;
        inet_diag_req_v2 request;
    } message{};
    message.header.nlmsg_len = sizeof message;
    message.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    message.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    message.header.nlmsg_seq = ++m_sequence;
    message.request.sdiag_family = family;
    message.request.sdiag_protocol = IPPROTO_TCP;
    message.request.idiag_ext = 1 << (INET_DIAG_INFO - 1);
    message.request.idiag_states = ~0u;
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    if (::sendto(m_fd, &message, sizeof message, 0, reinterpret_cast<sockaddr*>(&kernel), sizeof kernel) < 0)
        return false;

    alignas(nlmsghdr) char buffer[64 * 1024];
    for (;;) {
        const ssize_t got = ::recv(m_fd, buffer, sizeof buffer, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        int length = int(got);
        for (auto* answer = reinterpret_cast<const nlmsghdr*>(buffer); NLMSG_OK(answer, length);
             answer = NLMSG_NEXT(answer, length)) {
            if (answer->nlmsg_seq != m_sequence)
                continue;
            if (answer->nlmsg_type == NLMSG_DONE)
                return true;
            if (answer->nlmsg_type == NLMSG_ERROR) {
                const auto* error = static_cast<const nlmsgerr*>(NLMSG_DATA(answer));
                errno = answer->nlmsg_len >= NLMSG_LENGTH(sizeof(nlmsgerr)) ? -error->error : EPROTO;
                return false;
            }
            if (const auto socket = socketOf(answer, m_uid))
                sockets[socket->first] = socket->second;
        }
    }
}

} // namespace velmora
