#pragma once

#include "platform/Defaults.h"

#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QHash>
#include <QSettings>
#include <memory>

namespace velmora {

// The defaults database as an INI file under the XDG config directory (~/.config/Velmora/Velmora.conf).
// A file watcher notices edits from outside (another process, a text editor) and announces the keys
// whose values changed.
class SettingsDefaults final : public Defaults {
    Q_OBJECT
public:
    explicit SettingsDefaults(QObject* parent = nullptr);

    std::optional<QVariant> value(const QString& key) const override;
    bool setValue(const QString& key, const QVariant& value) override;
    bool remove(const QString& key) override;
    QString lastWriteError() const override { return m_lastWriteError; }

    QString fileName() const { return m_settings->fileName(); }

private:
    // A file that does not parse is kept aside under a new name, so nothing the user had is lost,
    // and the agent starts from the defaults.
    void setAsideIfCorrupt();
    // Writes what is pending; on failure puts the entry back as it was and says why.
    bool commit(const QString& key, const std::optional<QVariant>& previous);
    static QString writeProblem(const QFileInfo& file);
    std::optional<QVariant> stored(const QString& key) const;
    void reloadFromDisk();
    void watchFile();

    std::unique_ptr<QSettings> m_settings;
    QFileSystemWatcher m_watcher;
    QHash<QString, QVariant> m_snapshot;
    QString m_lastWriteError;
};

} // namespace velmora
