#include "app/LogRouter.h"

#include "app/LoggingManager.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>
#include <QThread>
#include <utility>
#include <vector>

namespace velmora {

namespace {

QPointer<LoggingManager> g_log;
QtMessageHandler g_previous = nullptr;

// Messages of our categories from before the log existed (the settings file is opened first), kept
// to be replayed into it, so that an export shows them too.
struct EarlyMessage {
    QtMsgType type;
    QByteArray category;
    int line;
    QString message;
};
std::vector<EarlyMessage>& earlyMessages() {
    static std::vector<EarlyMessage> messages;
    return messages;
}
constexpr std::size_t kMaxEarlyMessages = 50;

LogContext contextOf(const char* category) {
    const QByteArray name(category ? category : "");
    if (name.startsWith("velmora.windowmanager"))
        return LogContext::WindowManager;
    if (name.startsWith("velmora.keyboardcleaning"))
        return LogContext::KeyboardCleaning;
    if (name.startsWith("velmora.clipboard"))
        return LogContext::ClipboardHistory;
    return LogContext::Default;
}

} // namespace

LogRouter::LogRouter(LoggingManager& log) {
    g_log = &log;
    g_previous = qInstallMessageHandler(&LogRouter::handle);
    for (const EarlyMessage& early : std::exchange(earlyMessages(), {}))
        log.append(contextOf(early.category.constData()),
                   early.type == QtInfoMsg || early.type == QtDebugMsg ? LogLevel::Info : LogLevel::Error,
                   QString::fromLatin1(early.category), early.line, early.message);
}

void LogRouter::keepEarly(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (context.category && QByteArray(context.category).startsWith("velmora.") &&
        earlyMessages().size() < kMaxEarlyMessages)
        earlyMessages().push_back({type, context.category, context.line, message});
}

LogRouter::~LogRouter() {
    qInstallMessageHandler(g_previous);
    g_log = nullptr;
}

void LogRouter::handle(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const bool ours = context.category && QByteArray(context.category).startsWith("velmora.");
    LoggingManager* log = g_log.data();
    if (!ours || !log) {
        if (!log)
            keepEarly(type, context, message);
        if (g_previous)
            g_previous(type, context, message);
        return;
    }
    const LogContext where = contextOf(context.category);
    const LogLevel level = type == QtInfoMsg || type == QtDebugMsg ? LogLevel::Info : LogLevel::Error;
    // The category stands where a function name would: release builds carry no function names.
    const QString source = QString::fromLatin1(context.category);
    if (QThread::currentThread() == log->thread()) {
        log->append(where, level, source, context.line, message);
        return;
    }
    QMetaObject::invokeMethod(
        log,
        [log, where, level, source, line = context.line, message] {
            log->append(where, level, source, line, message);
        },
        Qt::QueuedConnection);
}

} // namespace velmora
