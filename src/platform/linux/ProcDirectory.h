#pragma once

#include <QtGlobal>

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace velmora {

// The kernel's process folder (/proc, or a copy of its layout for tests), read relative to one open
// descriptor so that each file costs one open and one read. Any read may fail: a process can end
// between listing and reading, and other users' entries may be hidden or closed to us.
class ProcDirectory {
public:
    explicit ProcDirectory(std::string root = "/proc");
    ~ProcDirectory();
    ProcDirectory(const ProcDirectory&) = delete;
    ProcDirectory& operator=(const ProcDirectory&) = delete;

    const std::string& root() const { return m_root; }
    bool isOpen() const { return m_fd >= 0; }

    // The processes whose entry `uid` owns (the owner of /proc/<pid> is the process's user, for any
    // process that is not set-user-id); nothing when the folder cannot be listed.
    std::optional<std::vector<qint64>> processesOf(uid_t uid) const;
    // The whole of <root>/<name> or <root>/<pid>/<name> into `text` (its buffer kept between calls);
    // false when it cannot be read.
    bool read(const char* name, std::string& text) const;
    bool read(qint64 pid, const char* name, std::string& text) const;
    // The target of the link <root>/<pid>/<name>; empty when it cannot be read.
    std::string link(qint64 pid, const char* name) const;
    // The inodes of the sockets the process holds open (links "socket:[inode]" in its fd folder), added
    // to `inodes`; false when the folder cannot be read.
    bool socketInodes(qint64 pid, std::vector<quint64>& inodes) const;

private:
    bool readAt(const char* path, std::string& text) const;

    std::string m_root;
    int m_fd = -1;
};

} // namespace velmora
