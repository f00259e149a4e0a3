#include "platform/linux/AtspiElements.h"

#include "platform/linux/LinuxLog.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QMutexLocker>
#include <QtGlobal>

#include <algorithm>

namespace velmora {

namespace {

const QString kAccessible = "org.a11y.atspi.Accessible";
const QString kRoot = "/org/a11y/atspi/accessible/root";
const QString kRegistry = "org.a11y.atspi.Registry";
constexpr int kCallTimeoutMs = 400;
constexpr int kQueryBudgetMs = 2000;
constexpr int kMaxElements = 5000;
constexpr int kMaxDepth = 48;
constexpr int kStateShowing = 25; // AT-SPI's state bit for an element on screen
constexpr int kRetryBusAfterMs = 30000;

// An (so) pair: a program's connection and an element's path.
std::pair<QString, QString> readReference(const QDBusArgument& argument) {
    QString service;
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> service >> path;
    argument.endStructure();
    return {service, path.path()};
}

QVariant unwrap(const QVariant& value) {
    if (value.canConvert<QDBusVariant>())
        return value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

std::optional<QDBusConnection> AtspiElements::bus() {
    QMutexLocker lock(&m_mutex);
    if (m_bus && m_bus->isConnected())
        return m_bus;
    if (!m_retryAfter.hasExpired())
        return std::nullopt;
    m_bus.reset();
    QString address = qEnvironmentVariable("AT_SPI_BUS_ADDRESS");
    if (address.isEmpty()) {
        auto ask =
            QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress");
        const QDBusMessage reply = QDBusConnection::sessionBus().call(ask, QDBus::Block, kCallTimeoutMs * 2);
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
            address = reply.arguments().first().toString();
        else
            qCInfo(lcLinux) << "No accessibility bus on the session bus, so windows show no tabs:"
                            << reply.errorMessage();
    }
    if (!address.isEmpty()) {
        QDBusConnection::disconnectFromBus("velmora-accessibility");
        QDBusConnection connection = QDBusConnection::connectToBus(address, "velmora-accessibility");
        if (connection.isConnected())
            m_bus = connection;
        else
            qCWarning(lcLinux) << "The accessibility bus at" << address
                               << "cannot be reached:" << connection.lastError().message();
    }
    if (!m_bus)
        m_retryAfter = QDeadlineTimer(kRetryBusAfterMs);
    return m_bus;
}

QDBusMessage AtspiElements::call(Walk& walk, const Ref& ref, const QString& interface, const QString& method,
                                 const QVariantList& arguments) {
    const qint64 left = walk.deadline.remainingTime();
    if (left == 0)
        return QDBusMessage::createError("org.velmora.TimedOut", "the query's time is up");
    auto message = QDBusMessage::createMethodCall(ref.service, ref.path, interface, method);
    message.setArguments(arguments);
    const int timeout = left < 0 ? kCallTimeoutMs : int(std::min<qint64>(left, kCallTimeoutMs));
    return walk.bus.call(message, QDBus::Block, timeout);
}

std::vector<AtspiElements::Ref> AtspiElements::children(Walk& walk, const Ref& ref) {
    std::vector<Ref> list;
    const QDBusMessage reply = call(walk, ref, kAccessible, "GetChildren");
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return list;
    const auto argument = reply.arguments().first().value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        auto [service, path] = readReference(argument);
        list.push_back({service, path});
    }
    argument.endArray();
    return list;
}

QString AtspiElements::roleName(Walk& walk, const Ref& ref) {
    const QDBusMessage reply = call(walk, ref, kAccessible, "GetRoleName");
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()
               ? reply.arguments().first().toString()
               : QString();
}

std::optional<QString> AtspiElements::text(Walk& walk, const Ref& ref, const QString& property) {
    const QDBusMessage reply =
        call(walk, ref, "org.freedesktop.DBus.Properties", "Get", {kAccessible, property});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return std::nullopt; // a failed read counts as no text
    return unwrap(reply.arguments().first()).toString();
}

bool AtspiElements::showing(Walk& walk, const Ref& ref) {
    const QDBusMessage reply = call(walk, ref, kAccessible, "GetState");
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return false;
    const auto argument = reply.arguments().first().value<QDBusArgument>();
    QList<uint> words;
    argument >> words;
    return !words.isEmpty() && (words.first() & (1u << kStateShowing));
}

std::optional<AtspiElements::Ref> AtspiElements::parent(Walk& walk, const Ref& ref) {
    const QDBusMessage reply =
        call(walk, ref, "org.freedesktop.DBus.Properties", "Get", {kAccessible, "Parent"});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return std::nullopt;
    const QVariant value = unwrap(reply.arguments().first());
    if (!value.canConvert<QDBusArgument>())
        return std::nullopt;
    auto [service, path] = readReference(value.value<QDBusArgument>());
    return Ref{service, path};
}

QStringList AtspiElements::interfaces(Walk& walk, const Ref& ref) {
    const QDBusMessage reply = call(walk, ref, kAccessible, "GetInterfaces");
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()
               ? reply.arguments().first().toStringList()
               : QStringList();
}

// The program is the one whose connection belongs to the window's process; the window, the top
// element carrying its title (or the only one).
std::optional<AtspiElements::Ref> AtspiElements::windowElement(Walk& walk, const AccessibleWindow& window) {
    const Ref dbus{"org.freedesktop.DBus", "/org/freedesktop/DBus"};
    for (const Ref& program : children(walk, {kRegistry, kRoot})) {
        const QDBusMessage pid =
            call(walk, dbus, "org.freedesktop.DBus", "GetConnectionUnixProcessID", {program.service});
        if (pid.type() != QDBusMessage::ReplyMessage || pid.arguments().isEmpty() ||
            qint32(pid.arguments().first().toUInt()) != window.pid)
            continue;
        const auto tops = children(walk, {program.service, kRoot});
        for (const Ref& top : tops)
            if (text(walk, top, "Name").value_or(QString()) == window.title)
                return top;
        if (tops.size() == 1)
            return tops.front();
        return std::nullopt;
    }
    return std::nullopt;
}

bool AtspiElements::matches(Walk& walk, const Ref& ref, const AXElementSelector& selector) {
    // AT-SPI has no subroles: a selector that asks for one matches nothing here.
    return !selector.subrole && roleName(walk, ref) == selector.role;
}

void AtspiElements::collectDescendants(Walk& walk, const Ref& ref, const AXElementSelector& selector,
                                       int depth, std::vector<Ref>& found) {
    if (depth > kMaxDepth)
        return;
    for (const Ref& child : children(walk, ref)) {
        if (++walk.visited > kMaxElements || walk.deadline.hasExpired())
            return;
        if (matches(walk, child, selector))
            found.push_back(child);
        else
            collectDescendants(walk, child, selector, depth + 1, found);
    }
}

AccessibleElement AtspiElements::element(Walk& walk, const Ref& ref) {
    return {ref.service, ref.path, text(walk, ref, "Name"), text(walk, ref, "Description")};
}

std::vector<AccessibleElement> AtspiElements::query(const AccessibleWindow& window,
                                                    const AXElementQuery& query) {
    std::vector<AccessibleElement> result;
    if (query.kind == AXElementQuery::Kind::discard)
        return result;
    const auto connection = bus();
    if (!connection)
        return result;
    Walk walk{*connection, QDeadlineTimer(kQueryBudgetMs)};
    const auto root = windowElement(walk, window);
    if (!root)
        return result;
    std::vector<Ref> found;
    switch (query.kind) {
    case AXElementQuery::Kind::match:
        if (matches(walk, *root, query.selector))
            found.push_back(*root);
        break;
    case AXElementQuery::Kind::matchChildren:
    case AXElementQuery::Kind::matchVisibleChildren:
        for (const Ref& child : children(walk, *root))
            if (matches(walk, child, query.selector) &&
                (query.kind == AXElementQuery::Kind::matchChildren || showing(walk, child)))
                found.push_back(child);
        break;
    case AXElementQuery::Kind::matchDescendants:
        collectDescendants(walk, *root, query.selector, 0, found);
        break;
    case AXElementQuery::Kind::discard:
        break;
    }
    if (walk.deadline.hasExpired() || walk.visited > kMaxElements)
        qCWarning(lcLinux) << "The accessibility tree of window" << window.id << "was read only in part ("
                           << walk.visited << "elements before the time or size limit)";
    for (const Ref& ref : found)
        result.push_back(element(walk, ref));
    return result;
}

// A tab is selected through its list's selection where the toolkit offers one (GTK's notebooks),
// else by its own default action.
bool AtspiElements::press(const AccessibleElement& target) {
    const auto connection = bus();
    if (!connection)
        return false;
    Walk walk{*connection, QDeadlineTimer(kQueryBudgetMs)};
    const Ref ref{target.service, target.path};
    if (const auto list = parent(walk, ref);
        list && interfaces(walk, *list).contains("org.a11y.atspi.Selection")) {
        const QDBusMessage index = call(walk, ref, kAccessible, "GetIndexInParent");
        if (index.type() == QDBusMessage::ReplyMessage && !index.arguments().isEmpty()) {
            const QDBusMessage selected = call(walk, *list, "org.a11y.atspi.Selection", "SelectChild",
                                               {index.arguments().first().toInt()});
            if (selected.type() == QDBusMessage::ReplyMessage && !selected.arguments().isEmpty() &&
                selected.arguments().first().toBool())
                return true;
        }
    }
    if (interfaces(walk, ref).contains("org.a11y.atspi.Action")) {
        const QDBusMessage done = call(walk, ref, "org.a11y.atspi.Action", "DoAction", {0});
        return done.type() == QDBusMessage::ReplyMessage && !done.arguments().isEmpty() &&
               done.arguments().first().toBool();
    }
    return false;
}

} // namespace velmora
