#include "app/AppActionDispatcher.h"

#include "core/MainThread.h"

namespace velmora {

AppActionDispatcher::AppActionDispatcher(LoggingManager& log, QObject* parent)
    : QObject(parent), m_log(log) {}

std::optional<QString> AppActionDispatcher::unavailableReason(const AppAction& action) const {
    if (std::holds_alternative<action::Noop>(action))
        return std::nullopt;
    const auto it = m_handlers.constFind(int(action.index()));
    if (it == m_handlers.constEnd())
        return QString("%1 is not available in this version").arg(actionName(action));
    if (it->availability) {
        const QString reason = it->availability();
        if (!reason.isEmpty())
            return reason;
    }
    return std::nullopt;
}

bool AppActionDispatcher::dispatch(const AppAction& action, const QString& source) {
    assertMainThread("AppActionDispatcher::dispatch");
    if (const auto reason = unavailableReason(action)) {
        VELMORA_LOG(m_log, LogContext::Default, LogLevel::Info, *reason + ".");
        return false;
    }
    m_lastAction = actionName(action);
    m_lastSource = source;
    ++m_count;
    emit dispatched(m_lastAction, source);
    if (const auto it = m_handlers.constFind(int(action.index())); it != m_handlers.constEnd())
        it->run(action);
    return true;
}

} // namespace velmora
