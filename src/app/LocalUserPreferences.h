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
    bool setUserId(const QString& id);
    bool launchOnStart() const { return boolValue("LaunchOnStart", false); }
    bool setLaunchOnStart(bool on) { return store("LaunchOnStart", on); }
    bool developerLogsEnabled() const { return boolValue("DeveloperLogsEnabled", false); }
    bool setDeveloperLogsEnabled(bool on) { return store("DeveloperLogsEnabled", on); }
    bool windowManagerEnabled() const { return boolValue("WindowManagerEnabled", true); }
    bool setWindowManagerEnabled(bool on) { return store("WindowManagerEnabled", on); }
    // Windows dragged to a screen's edge snap into its zones; off, the window manager works by keyboard only.
    bool mouseSnappingEnabled() const { return boolValue("WindowManagerMouseSnapping", true); }
    bool setMouseSnappingEnabled(bool on) { return store("WindowManagerMouseSnapping", on); }
    bool clipboardHistoryEnabled() const { return boolValue("ClipboardHistoryEnabled", true); }
    bool setClipboardHistoryEnabled(bool on) { return store("ClipboardHistoryEnabled", on); }
    // When a program that copied something exits, its copy stays on the clipboard (taken over by Velmora).
    bool clipboardKeepsCopiesOfClosedApps() const {
        return boolValue("ClipboardKeepsCopiesOfClosedApps", true);
    }
    bool setClipboardKeepsCopiesOfClosedApps(bool on) {
        return store("ClipboardKeepsCopiesOfClosedApps", on);
    }
    double autoUpdateLastCheckTime() const;
    bool setAutoUpdateLastCheckTime(double seconds) { return store("AutoUpdateLastCheckTime", seconds); }

    // The defaults keys in field order, and their types, for the command line.
    static const QStringList& keys();
    static QMetaType::Type typeOf(const QString& key);
    QVariant value(const QString& key) const;

signals:
    // Also sent when a change could not be stored, so that every view shows the value still in force.
    void changed(const QString& key);
    void writeFailed(const QString& reason);

private:
    bool store(const QString& key, const QVariant& value);
    bool boolValue(const char* key, bool fallback) const;

    Defaults& m_defaults;
};

} // namespace velmora
