#include "app/AppActionDispatcher.h"

#include "core/MainThread.h"

namespace velmora {

AppActionDispatcher::AppActionDispatcher(LoggingManager& log, QObject* parent)
    : QObject(parent), m_log(log) {}

void AppActionDispatcher::setHandler(AppAction::Kind kind, Handler handler) {
    m_handlers.insert(int(kind), std::move(handler));
}

void AppActionDispatcher::dispatch(const AppAction& action, const QString& source) {
    assertMainThread("AppActionDispatcher::dispatch");
    m_lastAction = action.name();
    m_lastSource = source;
    ++m_count;
    emit dispatched(m_lastAction, source);
    if (action.kind == AppAction::Kind::noop)
        return;
    const auto it = m_handlers.constFind(int(action.kind));
    if (it == m_handlers.constEnd()) {
        VELMORA_LOG(m_log, LogContext::Default, LogLevel::Info,
                    QString("%1 is not available yet in this version.").arg(action.name()));
        return;
    }
    (*it)(action);
}

} // namespace velmora
