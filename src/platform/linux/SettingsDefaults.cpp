#include "platform/linux/SettingsDefaults.h"

#include "platform/linux/LinuxLog.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace velmora {

namespace {

std::unique_ptr<QSettings> openSettings() {
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, "Velmora", "Velmora");
}

} // namespace

SettingsDefaults::SettingsDefaults(QObject* parent) : Defaults(parent), m_settings(openSettings()) {
    setAsideIfCorrupt();
    for (const auto& key : m_settings->allKeys())
        m_snapshot.insert(key, m_settings->value(key));
    watchFile();
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &SettingsDefaults::reloadFromDisk);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &SettingsDefaults::reloadFromDisk);
}

void SettingsDefaults::setAsideIfCorrupt() {
    if (m_settings->status() != QSettings::FormatError)
        return;
    const QString file = m_settings->fileName();
    const QString aside = file + ".corrupt-" + QDateTime::currentDateTime().toString("yyyyMMdd-HHmmss");
    m_settings.reset();
    if (QFile::rename(file, aside))
        qCWarning(lcLinux).noquote() << "The settings file" << file << "could not be read; it is kept as"
                                     << aside << "and the defaults are used.";
    else
        qCWarning(lcLinux).noquote() << "The settings file" << file
                                     << "could not be read, nor set aside; the defaults are used for now.";
    m_settings = openSettings();
}

std::optional<QVariant> SettingsDefaults::value(const QString& key) const {
    auto it = m_snapshot.constFind(key);
    if (it == m_snapshot.constEnd())
        return std::nullopt;
    return *it;
}

// Why the settings file cannot be written, found the way QSettings writes it: a new file in the
// folder, renamed over the old one. Asking the file system (rather than comparing permission bits)
// also catches a read-only mount and an immutable file, which permission bits do not show.
QString SettingsDefaults::writeProblem(const QFileInfo& file) {
    QTemporaryFile probe(file.absolutePath() + "/.velmora-write-check-XXXXXX");
    if (!probe.open())
        return QString("the folder %1 is read-only (%2)").arg(file.absolutePath(), probe.errorString());
    probe.close();
    if (file.exists()) {
        QFile existing(file.filePath());
        if (!existing.open(QIODevice::Append))
            return QString("%1 is read-only (%2)").arg(file.filePath(), existing.errorString());
    }
    return QString("%1 could not be written (is the disk full?)").arg(file.filePath());
}

bool SettingsDefaults::commit(const QString& key, const std::optional<QVariant>& previous) {
    m_settings->sync();
    if (m_settings->status() == QSettings::NoError) {
        m_lastWriteError.clear();
        return true;
    }
    m_lastWriteError = writeProblem(QFileInfo(m_settings->fileName()));
    // The pending change must not reach the file later, when it becomes writable again.
    if (previous)
        m_settings->setValue(key, *previous);
    else
        m_settings->remove(key);
    return false;
}

bool SettingsDefaults::setValue(const QString& key, const QVariant& value) {
    const auto previous = stored(key);
    m_settings->setValue(key, value);
    if (!commit(key, previous))
        return false;
    // Read back what the file holds, so that our snapshot compares equal with the next reload.
    m_snapshot.insert(key, m_settings->value(key));
    watchFile();
    emit valueChanged(key);
    return true;
}

bool SettingsDefaults::remove(const QString& key) {
    const auto previous = stored(key);
    m_settings->remove(key);
    if (!commit(key, previous))
        return false;
    if (m_snapshot.remove(key) > 0)
        emit valueChanged(key);
    return true;
}

std::optional<QVariant> SettingsDefaults::stored(const QString& key) const {
    if (!m_settings->contains(key))
        return std::nullopt;
    return m_settings->value(key);
}

void SettingsDefaults::reloadFromDisk() {
    m_settings->sync();
    QHash<QString, QVariant> fresh;
    for (const auto& key : m_settings->allKeys())
        fresh.insert(key, m_settings->value(key));
    QStringList changed;
    for (auto it = fresh.cbegin(); it != fresh.cend(); ++it)
        if (m_snapshot.value(it.key()) != it.value() || !m_snapshot.contains(it.key()))
            changed << it.key();
    for (auto it = m_snapshot.cbegin(); it != m_snapshot.cend(); ++it)
        if (!fresh.contains(it.key()))
            changed << it.key();
    m_snapshot = fresh;
    // Editors replace the file rather than write into it, which drops the watch.
    watchFile();
    for (const auto& key : changed)
        emit valueChanged(key);
}

void SettingsDefaults::watchFile() {
    const QFileInfo file(m_settings->fileName());
    QDir().mkpath(file.absolutePath());
    if (!m_watcher.directories().contains(file.absolutePath()))
        m_watcher.addPath(file.absolutePath());
    if (file.exists() && !m_watcher.files().contains(file.absoluteFilePath()))
        m_watcher.addPath(file.absoluteFilePath());
}

} // namespace velmora
