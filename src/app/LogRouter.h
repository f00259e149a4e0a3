#pragma once

#include <QtGlobal>

namespace velmora {

class LoggingManager;

// Routes the messages of the agent's logging categories ("velmora.*", one per subsystem and backend)
// into the support log, from any thread; every other message goes to the handler that was there
// before. Lives as long as the log it feeds; one at a time.
class LogRouter {
public:
    explicit LogRouter(LoggingManager& log);
    ~LogRouter();
    LogRouter(const LogRouter&) = delete;
    LogRouter& operator=(const LogRouter&) = delete;

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message);
};

} // namespace velmora
