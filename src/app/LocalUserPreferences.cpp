#include "app/LocalUserPreferences.h"

#include <QUuid>

namespace velmora {

LocalUserPreferences::LocalUserPreferences(Defaults& defaults, QObject* parent)
    : QObject(parent), m_defaults(defaults) {
    // The id is made once per machine and then kept.
    const auto stored = m_defaults.value("UserId");
    if (!stored || stored->typeId() != QMetaType::QString || stored->toString().isEmpty())
        setUserId(QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
    connect(&m_defaults, &Defaults::valueChanged, this, [this](const QString& key) {
        if (keys().contains(key))
            emit changed(key);
    });
}

QString LocalUserPreferences::userId() const {
    return m_defaults.value("UserId").value_or(QString()).toString();
}

bool LocalUserPreferences::setUserId(const QString& id) {
    return store("UserId", id);
}

bool LocalUserPreferences::store(const QString& key, const QVariant& value) {
    if (m_defaults.setValue(key, value))
        return true;
    const QString why = m_defaults.lastWriteError().isEmpty() ? QString("the file cannot be written")
                                                              : m_defaults.lastWriteError();
    emit changed(key);
    emit writeFailed(QString("the settings cannot be saved: %1").arg(why));
    return false;
}

double LocalUserPreferences::autoUpdateLastCheckTime() const {
    return m_defaults.value("AutoUpdateLastCheckTime").value_or(0.0).toDouble();
}

const QStringList& LocalUserPreferences::keys() {
    static const QStringList k{"UserId",
                               "LaunchOnStart",
                               "DeveloperLogsEnabled",
                               "WindowManagerEnabled",
                               "WindowManagerMouseSnapping",
                               "ClipboardHistoryEnabled",
                               "ClipboardKeepsCopiesOfClosedApps",
                               "AutoUpdateLastCheckTime"};
    return k;
}

QMetaType::Type LocalUserPreferences::typeOf(const QString& key) {
    if (key == "UserId")
        return QMetaType::QString;
    if (key == "AutoUpdateLastCheckTime")
        return QMetaType::Double;
    return QMetaType::Bool;
}

QVariant LocalUserPreferences::value(const QString& key) const {
    if (key == "UserId")
        return userId();
    if (key == "LaunchOnStart")
        return launchOnStart();
    if (key == "DeveloperLogsEnabled")
        return developerLogsEnabled();
    if (key == "WindowManagerEnabled")
        return windowManagerEnabled();
    if (key == "ClipboardHistoryEnabled")
        return clipboardHistoryEnabled();
    if (key == "ClipboardKeepsCopiesOfClosedApps")
        return clipboardKeepsCopiesOfClosedApps();
    if (key == "AutoUpdateLastCheckTime")
        return autoUpdateLastCheckTime();
    return {};
}

bool LocalUserPreferences::boolValue(const char* key, bool fallback) const {
    // QSettings hands booleans back as the strings "true"/"false" after a restart.
    const auto v = m_defaults.value(key);
    if (!v)
        return fallback;
    if (v->typeId() == QMetaType::QString)
        return v->toString() == "true";
    return v->toBool();
}

} // namespace velmora
