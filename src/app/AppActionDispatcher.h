#pragma once

#include "app/AppAction.h"
#include "app/LoggingManager.h"

#include <QHash>
#include <functional>

namespace velmora {

// Carries out application actions on the main thread through a table of handlers that each area
// fills in. An action whose area has not registered a handler is logged as not available.
class AppActionDispatcher : public QObject {
    Q_OBJECT
public:
    using Handler = std::function<void(const AppAction&)>;

    explicit AppActionDispatcher(LoggingManager& log, QObject* parent = nullptr);

    void setHandler(AppAction::Kind kind, Handler handler);
    void dispatch(const AppAction& action, const QString& source);

    // The last action dispatched and what asked for it (a binding's id, "command line"), for status.
    const QString& lastAction() const { return m_lastAction; }
    const QString& lastSource() const { return m_lastSource; }
    int dispatchCount() const { return m_count; }

signals:
    void dispatched(const QString& action, const QString& source);

private:
    LoggingManager& m_log;
    QHash<int, Handler> m_handlers;
    QString m_lastAction;
    QString m_lastSource;
    int m_count = 0;
};

} // namespace velmora
