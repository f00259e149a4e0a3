#include "platform/linux/InstallationFolder.h"

#include <QStringList>
#include <QUrl>

namespace velmora {

namespace {

// The URL of the folder made of the first `count` parts of the path.
QString folderUrl(const QStringList& parts, qsizetype count) {
    return QUrl::fromLocalFile('/' + parts.first(count).join('/') + '/').toString(QUrl::FullyEncoded);
}

bool isBinaryFolder(const QString& name) {
    return name == QLatin1String("bin") || name == QLatin1String("sbin");
}

// "x86_64-linux-gnu", "aarch64-linux-gnu", "arm-linux-gnueabihf", "i386-linux-gnu".
bool isTriplet(const QString& name) {
    return name.contains(QLatin1String("-linux-"));
}

} // namespace

std::optional<QString> installationFolderUrl(const QString& executablePath) {
    QString path = executablePath;
    if (path.endsWith(QLatin1String(" (deleted)")))
        path.chop(10);
    if (!path.startsWith('/'))
        return std::nullopt;
    const QStringList parts = path.split('/', Qt::SkipEmptyParts);
    const qsizetype n = parts.size(); // the last part is the executable itself
    if (parts.contains(QLatin1String("..")) || parts.contains(QLatin1String(".")))
        return std::nullopt;

    for (qsizetype i = 0; i + 1 < n; ++i)
        if (parts[i].startsWith(QLatin1String(".mount_")))
            return folderUrl(parts, i + 1);
    for (qsizetype i = 0; i + 3 < n; ++i)
        if (parts[i] == QLatin1String("flatpak") && parts[i + 1] == QLatin1String("app"))
            return folderUrl(parts, i + 3);

    const QString top = parts.value(0);
    if (top == QLatin1String("opt")) {
        qsizetype folder = n - 1;
        while (folder > 2 && isBinaryFolder(parts[folder - 1]))
            --folder;
        return folder >= 2 ? std::optional(folderUrl(parts, folder)) : std::nullopt;
    }
    if (top == QLatin1String("snap"))
        return n > 3 ? std::optional(folderUrl(parts, 3)) : std::nullopt;
    if (top == QLatin1String("usr") && n > 3) {
        const QString& library = parts[1];
        if (library == QLatin1String("lib") && isTriplet(parts[2]))
            return n > 4 ? std::optional(folderUrl(parts, 4)) : std::nullopt;
        if (library == QLatin1String("lib") || library == QLatin1String("lib64") ||
            library == QLatin1String("libexec"))
            return folderUrl(parts, 3);
    }
    return std::nullopt;
}

} // namespace velmora
