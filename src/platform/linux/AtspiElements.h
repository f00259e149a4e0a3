#pragma once

#include "platform/AccessibleElements.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QMutex>
#include <optional>

class QDBusMessage;

namespace velmora {

// Programs' accessibility trees over the desktop's accessibility bus (AT-SPI): the bus's address is
// asked of org.a11y.Bus on the session bus, a window's program is found by its process id among the
// programs the registry lists, and the window's element by its title among the program's top
// elements. Every call carries a time-out and a query has a budget, so a program that never answers
// or exposes a huge tree costs at most that long.
class AtspiElements final : public AccessibleElements {
public:
    std::vector<AccessibleElement> query(const AccessibleWindow& window,
                                         const AXElementQuery& query) override;
    bool press(const AccessibleElement& element) override;

private:
    struct Ref {
        QString service;
        QString path;
    };
    struct Walk {
        QDBusConnection bus;
        QDeadlineTimer deadline;
        int visited = 0;
    };

    std::optional<QDBusConnection> bus();
    static QDBusMessage call(Walk& walk, const Ref& ref, const QString& interface, const QString& method,
                             const QVariantList& arguments = {});
    static std::vector<Ref> children(Walk& walk, const Ref& ref);
    static QString roleName(Walk& walk, const Ref& ref);
    static std::optional<QString> text(Walk& walk, const Ref& ref, const QString& property);
    static bool showing(Walk& walk, const Ref& ref);
    static std::optional<Ref> parent(Walk& walk, const Ref& ref);
    static QStringList interfaces(Walk& walk, const Ref& ref);
    static std::optional<Ref> windowElement(Walk& walk, const AccessibleWindow& window);
    static bool matches(Walk& walk, const Ref& ref, const AXElementSelector& selector);
    static void collectDescendants(Walk& walk, const Ref& ref, const AXElementSelector& selector, int depth,
                                   std::vector<Ref>& found);
    static AccessibleElement element(Walk& walk, const Ref& ref);

    QMutex m_mutex;
    std::optional<QDBusConnection> m_bus;
    // After a failed look for the bus, the next one waits a while: each look costs a time-out.
    QDeadlineTimer m_retryAfter;
};

} // namespace velmora
