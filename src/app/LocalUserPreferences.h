#pragma once

#include "platform/Defaults.h"

#include <QStringList>

namespace velmora {

// Settings of this machine only, never synchronised: each is one plain defaults entry.
class LocalUserPreferences : public QObject {
    Q_OBJECT
public:
    explicit LocalUserPreferences(Defaults& defaults, QObject* parent = nullptr);

    QString userId() const;
    void setUserId(const QString& id);
    bool launchOnStart() const { return boolValue("LaunchOnStart", false); }
    void setLaunchOnStart(bool on) { m_defaults.setValue("LaunchOnStart", on); }
    bool developerLogsEnabled() const { return boolValue("DeveloperLogsEnabled", false); }
    void setDeveloperLogsEnabled(bool on) { m_defaults.setValue("DeveloperLogsEnabled", on); }
    bool windowManagerEnabled() const { return boolValue("WindowManagerEnabled", true); }
    void setWindowManagerEnabled(bool on) { m_defaults.setValue("WindowManagerEnabled", on); }
    bool clipboardHistoryEnabled() const { return boolValue("ClipboardHistoryEnabled", true); }
    void setClipboardHistoryEnabled(bool on) { m_defaults.setValue("ClipboardHistoryEnabled", on); }
    double autoUpdateLastCheckTime() const;
    void setAutoUpdateLastCheckTime(double seconds) {
        m_defaults.setValue("AutoUpdateLastCheckTime", seconds);
    }

    // The defaults keys in field order, and their types, for the command line.
    static const QStringList& keys();
    static QMetaType::Type typeOf(const QString& key);
    QVariant value(const QString& key) const;

signals:
    void changed(const QString& key);

private:
    bool boolValue(const char* key, bool fallback) const;

    Defaults& m_defaults;
};

} // namespace velmora
