#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace velmora {

class SleepInhibitor;
class SleepSettings;

// Keeps the computer awake on request ("Prevent Sleep mode"), by one of two mechanisms: an inhibitor
// held while the agent runs ("Temporary & safe", usePMSet false), or the system-wide sleep setting
// ("Persistent & potentially dangerous", usePMSet true). The published values follow the system:
// after start-up and after every change they say what the system really does, so a refused
// administrator prompt shows as the switch going back off.
class PowerManagementModel : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void()>;
    // Shown by the login manager beside the inhibitor (`systemd-inhibit --list`).
    static const QString kReason;

    PowerManagementModel(SleepInhibitor& inhibitor, SleepSettings& settings, QObject* parent = nullptr);

    // False while the model sets its own values; a user's change is not taken then.
    bool initialized() const { return m_initialized; }
    bool usePMSet() const { return m_usePMSet; }
    bool preventSleep() const { return m_preventSleep; }
    // A change is waiting for the system (the login manager, an administrator prompt).
    bool busy() const { return m_busy; }
    // Why the latest change did not fully take, in one line; empty when it did.
    const QString& lastError() const { return m_lastError; }

    // The user's changes: the value is published, then its change handler makes the system follow.
    // Refused (false, a logged line, nothing changes) before start-up is done and while an earlier
    // change still waits. done runs once the system has answered.
    bool setPreventSleep(bool on, Done done = {});
    bool setUsePMSet(bool persistent, Done done = {});

    // Reads the system's setting: prevention is on in the persistent mode exactly when sleep is
    // found disabled; then the model, the inhibitor and the setting are made to agree.
    void startUp(Done done = {});
    // At quit, with prevention on: the system's sleep setting is restored when it is found disabled,
    // then the inhibitor is released. A change in progress is finished first. No change is taken after.
    void tearDown(Done done = {});

signals:
    // A published value, busy or the last error changed.
    void changed();

private:
    bool refuseChange(const char* what);
    void begin();
    Done finisher(Done done);
    void publish(bool usePMSet, bool preventSleep);
    void fail(const QString& line);

    void preventSleepChanged(Done done);
    void usePMSetChanged(Done done);
    void changeSetting(bool disable, Done then);
    void readBackSetting(Done done);
    void holdInhibitor(Done then);
    void matchInhibitorToMode(Done then);
    void publishAfterModeChange(bool sleepDisabled);

    SleepInhibitor& m_inhibitor;
    SleepSettings& m_settings;
    bool m_initialized = false;
    bool m_usePMSet = false;
    bool m_preventSleep = false;
    bool m_busy = false;
    bool m_tornDown = false;
    QString m_lastError;
    Done m_afterBusy;
};

} // namespace velmora
