#include "platform/linux/FreedesktopOpener.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStringList>

namespace velmora {

namespace {

Q_LOGGING_CATEGORY(lcOpener, "velmora.desktop")

const QString kFileManager = QStringLiteral("org.freedesktop.FileManager1");

bool fileManagerOnBus(const QDBusConnection& bus) {
    if (!bus.isConnected())
        return false;
    const auto reply = bus.interface()->isServiceRegistered(kFileManager);
    // A file manager that starts on demand is listed as activatable, not registered.
    if (reply.isValid() && reply.value())
        return true;
    const auto activatable = bus.interface()->activatableServiceNames();
    return activatable.isValid() && activatable.value().contains(kFileManager);
}

} // namespace

bool FreedesktopOpener::openURL(const QUrl& url) {
    if (!url.isValid()) {
        qCWarning(lcOpener) << "Not opened, this is no address:" << url.toString();
        return false;
    }
    if (!QDesktopServices::openUrl(url)) {
        qCWarning(lcOpener) << "The desktop has no program to open" << url.toString();
        return false;
    }
    return true;
}

bool FreedesktopOpener::revealFiles(const QList<QUrl>& files) {
    if (files.isEmpty())
        return false;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (fileManagerOnBus(bus)) {
        QStringList uris;
        for (const QUrl& file : files)
            uris << file.toString(QUrl::FullyEncoded);
        QDBusMessage call = QDBusMessage::createMethodCall(kFileManager, "/org/freedesktop/FileManager1",
                                                           kFileManager, "ShowItems");
        call << uris << QString();
        // Not waited for: a file manager that is slow to start must not hold up the agent.
        if (bus.send(call))
            return true;
        qCWarning(lcOpener) << "The file manager did not take the request:" << bus.lastError().message();
    }
    const QString folder = QFileInfo(files.first().toLocalFile()).absolutePath();
    return openURL(QUrl::fromLocalFile(folder));
}

} // namespace velmora
