#pragma once

#include <QtGlobal>

namespace velmora {

class LoggingManager;

// Routes the messages of the agent's logging categories ("velmora.*", one per subsystem and backend)
// into the support log, from any thread; every other message goes to the handler that was there
// before. Lives as long as the log it feeds; one at a time. Messages from before it existed are kept
// by an early handler and replayed into the log when it starts.
class LogRouter {
public:
    explicit LogRouter(LoggingManager& log);
    ~LogRouter();
    LogRouter(const LogRouter&) = delete;
    LogRouter& operator=(const LogRouter&) = delete;

    // Called for messages written before any router exists (the default handler prints them); the
    // next router replays them into its log.
    static void keepEarly(QtMsgType type, const QMessageLogContext& context, const QString& message);

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message);
};

} // namespace velmora
