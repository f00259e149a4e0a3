#pragma once

#include <QString>
#include <functional>

namespace velmora {

class Commands;

// Ends a process through /bin/kill: SIGTERM, or SIGKILL when forced. What happened is logged as one
// line and handed to done; the process leaves the next snapshot.
class ProcessKiller {
public:
    explicit ProcessKiller(Commands& commands) : m_commands(commands) {}

    void kill(qint64 pid, bool force, std::function<void(bool killed, const QString& line)> done = {});

    static QStringList arguments(qint64 pid, bool force);

private:
    Commands& m_commands;
};

} // namespace velmora
