#include "platform/linux/SettingsDefaults.h"

#include <QDir>
#include <QFileInfo>

namespace velmora {

SettingsDefaults::SettingsDefaults(QObject* parent)
    : Defaults(parent), m_settings(QSettings::NativeFormat, QSettings::UserScope, "Velmora", "Velmora") {
    for (const auto& key : m_settings.allKeys())
        m_snapshot.insert(key, m_settings.value(key));
    watchFile();
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &SettingsDefaults::reloadFromDisk);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &SettingsDefaults::reloadFromDisk);
}

std::optional<QVariant> SettingsDefaults::value(const QString& key) const {
    auto it = m_snapshot.constFind(key);
    if (it == m_snapshot.constEnd())
        return std::nullopt;
    return *it;
}

void SettingsDefaults::setValue(const QString& key, const QVariant& value) {
    m_settings.setValue(key, value);
    m_settings.sync();
    // Read back what the file holds, so that our snapshot compares equal with the next reload.
    m_snapshot.insert(key, m_settings.value(key));
    watchFile();
    emit valueChanged(key);
}

void SettingsDefaults::remove(const QString& key) {
    m_settings.remove(key);
    m_settings.sync();
    if (m_snapshot.remove(key) > 0)
        emit valueChanged(key);
}

void SettingsDefaults::reloadFromDisk() {
    m_settings.sync();
    QHash<QString, QVariant> fresh;
    for (const auto& key : m_settings.allKeys())
        fresh.insert(key, m_settings.value(key));
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
    const QFileInfo file(m_settings.fileName());
    QDir().mkpath(file.absolutePath());
    if (!m_watcher.directories().contains(file.absolutePath()))
        m_watcher.addPath(file.absolutePath());
    if (file.exists() && !m_watcher.files().contains(file.absoluteFilePath()))
        m_watcher.addPath(file.absoluteFilePath());
}

} // namespace velmora
