#pragma once

#include "platform/Defaults.h"

#include <QFileSystemWatcher>
#include <QHash>
#include <QSettings>

namespace velmora {

// The defaults database as an INI file under the XDG config directory (~/.config/Velmora/Velmora.conf).
// A file watcher notices edits from outside (another process, a text editor) and announces the keys
// whose values changed.
class SettingsDefaults final : public Defaults {
    Q_OBJECT
public:
    explicit SettingsDefaults(QObject* parent = nullptr);

    std::optional<QVariant> value(const QString& key) const override;
    void setValue(const QString& key, const QVariant& value) override;
    void remove(const QString& key) override;

    QString fileName() const { return m_settings.fileName(); }

private:
    void reloadFromDisk();
    void watchFile();

    QSettings m_settings;
    QFileSystemWatcher m_watcher;
    QHash<QString, QVariant> m_snapshot;
};

} // namespace velmora
