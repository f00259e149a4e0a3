#pragma once

#include "app/AppAction.h"
#include "app/LoggingManager.h"

#include <QHash>
#include <functional>

namespace velmora {

// Carries out application actions on the main thread through a table of handlers that each module
// fills in. An action is available when a handler is registered and its availability check (a
// switched-off feature) raises no objection; only available actions are matched, grabbed or run.
class AppActionDispatcher : public QObject {
    Q_OBJECT
public:
    // The reason an action cannot run now, or an empty string when it can.
    using Availability = std::function<QString()>;

    explicit AppActionDispatcher(LoggingManager& log, QObject* parent = nullptr);

    template <class Action>
    void setHandler(std::function<void(const Action&)> handler, Availability availability = {}) {
        m_handlers.insert(
            int(AppAction(Action{}).index()),
            {[handler = std::move(handler)](const AppAction& a) { handler(std::get<Action>(a)); },
             std::move(availability)});
    }

    // Why the action cannot run now; absent when it can.
    std::optional<QString> unavailableReason(const AppAction& action) const;
    bool isAvailable(const AppAction& action) const { return !unavailableReason(action); }

    // Runs the action; false (with the reason logged) when it is unavailable.
    bool dispatch(const AppAction& action, const QString& source);

    // The last action dispatched and what asked for it (a binding's id, "command line"), for status.
    const QString& lastAction() const { return m_lastAction; }
    const QString& lastSource() const { return m_lastSource; }
    int dispatchCount() const { return m_count; }

signals:
    void dispatched(const QString& action, const QString& source);

private:
    struct Entry {
        std::function<void(const AppAction&)> run;
        Availability availability;
    };
    LoggingManager& m_log;
    QHash<int, Entry> m_handlers;
    QString m_lastAction;
    QString m_lastSource;
    int m_count = 0;
};

} // namespace velmora
