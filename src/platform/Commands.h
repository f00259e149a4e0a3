#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

namespace velmora {

struct CommandResult {
    bool started = false;
    int exitCode = -1;
    QByteArray standardOutput;
    QByteArray standardError;
};

// Runs child programs without blocking the main thread; the callback comes back on the main thread.
class Commands {
public:
    virtual ~Commands() = default;
    virtual void run(const QString& program, const QStringList& arguments,
                     std::function<void(const CommandResult&)> done) = 0;
};

} // namespace velmora
