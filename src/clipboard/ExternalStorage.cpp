#include "clipboard/ExternalStorage.h"

#include "clipboard/ClipboardLog.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QUuid>

namespace velmora {

namespace {

constexpr QFileDevice::Permissions kFolderMode =
    QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
constexpr QFileDevice::Permissions kFileMode = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

// Only names this class made are read or removed, whatever a damaged row says.
bool isOwnName(const QString& name) {
    return name.size() == 36 && !QUuid::fromString(name).isNull();
}

} // namespace

bool ExternalStorage::prepare(QString* error) const {
    if (!QDir().mkpath(m_folder)) {
        *error = QStringLiteral("cannot make the folder %1").arg(m_folder);
        return false;
    }
    if (QFile::permissions(m_folder) != kFolderMode && !QFile::setPermissions(m_folder, kFolderMode)) {
        *error = QStringLiteral("cannot restrict the folder %1 to its owner").arg(m_folder);
        return false;
    }
    return true;
}

std::optional<QString> ExternalStorage::write(QByteArrayView bytes, QString* error) const {
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces);
    QFile file(filePath(name));
    // Unbuffered: a large value goes from the caller's bytes to the system without another copy.
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered, kFileMode)) {
        *error = QStringLiteral("cannot create %1: %2").arg(file.fileName(), file.errorString());
        return std::nullopt;
    }
    const bool written = file.write(bytes.data(), bytes.size()) == bytes.size() && file.flush();
    if (!written) {
        *error = QStringLiteral("cannot write %1: %2").arg(file.fileName(), file.errorString());
        file.close();
        file.remove();
        return std::nullopt;
    }
    file.close();
    return name;
}

std::optional<QByteArray> ExternalStorage::read(const QString& name, QString* error) const {
    if (!isOwnName(name)) {
        if (error)
            *error = QStringLiteral("\"%1\" is not the name of a stored value").arg(name);
        return std::nullopt;
    }
    QFile file(filePath(name));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        if (error)
            *error = QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString());
        return std::nullopt;
    }
    return file.readAll();
}

void ExternalStorage::remove(const QStringList& names) const {
    for (const QString& name : names) {
        if (!isOwnName(name))
            continue;
        if (!QFile::remove(filePath(name)) && QFile::exists(filePath(name)))
            qCWarning(lcClipboard).noquote()
                << QStringLiteral("Cannot remove %1; it is removed at the next start.").arg(filePath(name));
    }
}

QStringList ExternalStorage::names() const {
    // One name at a time: a sorted listing holds a file record per file, half a kilobyte each,
    // and a history of a hundred thousand entries has that many files.
    QStringList names;
    QDirIterator it(m_folder, QDir::Files | QDir::Hidden | QDir::System);
    while (it.hasNext())
        names.append(it.nextFileInfo().fileName());
    return names;
}

} // namespace velmora
