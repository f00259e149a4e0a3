#include "platform/linux/ProcDirectory.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

namespace {

std::optional<qint64> pidOf(const char* name) {
    qint64 pid = 0;
    const char* end = name + std::strlen(name);
    const auto [stop, error] = std::from_chars(name, end, pid);
    if (error != std::errc() || stop != end || pid <= 0)
        return std::nullopt;
    return pid;
}

// "1234/stat"
std::string_view pidPath(char (&buffer)[64], qint64 pid, const char* name) {
    const int length = std::snprintf(buffer, sizeof buffer, "%lld/%s", static_cast<long long>(pid), name);
    return {buffer, std::size_t(length > 0 ? length : 0)};
}

} // namespace

ProcDirectory::ProcDirectory(std::string root)
    : m_root(std::move(root)), m_fd(::open(m_root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

ProcDirectory::~ProcDirectory() {
    if (m_fd >= 0)
        ::close(m_fd);
}

std::optional<std::vector<qint64>> ProcDirectory::processesOf(uid_t uid) const {
    if (m_fd < 0)
        return std::nullopt;
    // A descriptor of its own: the directory stream reads from where its descriptor stands.
    const int fd = ::openat(m_fd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* dir = fd >= 0 ? ::fdopendir(fd) : nullptr;
    if (!dir) {
        if (fd >= 0)
            ::close(fd);
        return std::nullopt;
    }
    std::vector<qint64> pids;
    while (const dirent* entry = ::readdir(dir)) {
        const auto pid = pidOf(entry->d_name);
        struct stat info;
        if (pid && ::fstatat(fd, entry->d_name, &info, 0) == 0 && info.st_uid == uid)
            pids.push_back(*pid);
    }
    ::closedir(dir);
    return pids;
}

bool ProcDirectory::readAt(const char* path, std::string& text) const {
    text.clear();
    const int fd = m_fd < 0 ? -1 : ::openat(m_fd, path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    char buffer[4096];
    bool ok = true;
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0) {
            ok = false; // ESRCH: the process ended while it was read
            break;
        }
        text.append(buffer, std::size_t(got));
        // The kernel fills a read as far as the file goes: a short one was the end, no need to ask again.
        if (std::size_t(got) < sizeof buffer)
            break;
    }
    ::close(fd);
    return ok;
}

bool ProcDirectory::read(const char* name, std::string& text) const {
    return readAt(name, text);
}

bool ProcDirectory::read(qint64 pid, const char* name, std::string& text) const {
    char path[64];
    return readAt(pidPath(path, pid, name).data(), text);
}

std::string ProcDirectory::link(qint64 pid, const char* name) const {
    char path[64];
    char target[4096];
    const ssize_t length =
        m_fd < 0 ? -1 : ::readlinkat(m_fd, pidPath(path, pid, name).data(), target, sizeof target);
    return length > 0 ? std::string(target, std::size_t(length)) : std::string();
}

bool ProcDirectory::socketInodes(qint64 pid, std::vector<quint64>& inodes) const {
    char path[64];
    const int fd =
        m_fd < 0 ? -1 : ::openat(m_fd, pidPath(path, pid, "fd").data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* dir = fd >= 0 ? ::fdopendir(fd) : nullptr;
    if (!dir) {
        if (fd >= 0)
            ::close(fd);
        return false;
    }
    constexpr std::string_view prefix = "socket:[";
    char target[64];
    while (const dirent* entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.')
            continue;
        const ssize_t length = ::readlinkat(fd, entry->d_name, target, sizeof target);
        if (length <= ssize_t(prefix.size()) + 1)
            continue;
        const std::string_view text(target, std::size_t(length));
        if (!text.starts_with(prefix) || text.back() != ']')
            continue;
        quint64 inode = 0;
        const auto [end, error] =
            std::from_chars(text.data() + prefix.size(), text.data() + text.size() - 1, inode);
        if (error == std::errc() && end == text.data() + text.size() - 1)
            inodes.push_back(inode);
    }
    ::closedir(dir);
    return true;
}

} // namespace velmora
