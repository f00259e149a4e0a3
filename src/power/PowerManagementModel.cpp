#include "power/PowerManagementModel.h"

#include "platform/SleepInhibitor.h"
#include "platform/SleepSettings.h"
#include "power/PowerLog.h"

#include <QPointer>

namespace velmora {

namespace {

// The system answers later, through callbacks; one that comes after the model is gone is dropped.
template <class F> auto whileAlive(QObject* owner, F f) {
    return [owner = QPointer<QObject>(owner), f = std::move(f)](const auto&... args) {
        if (owner)
            f(args...);
    };
}

} // namespace

const QString PowerManagementModel::kReason = "Prevent Sleep mode is on in Velmora";

PowerManagementModel::PowerManagementModel(SleepInhibitor& inhibitor, SleepSettings& settings,
                                           QObject* parent)
    : QObject(parent), m_inhibitor(inhibitor), m_settings(settings) {}

bool PowerManagementModel::setPreventSleep(bool on, Done done) {
    if (refuseChange("Prevent Sleep"))
        return false;
    if (on != m_preventSleep) {
        m_preventSleep = on;
        begin();
        preventSleepChanged(finisher(std::move(done)));
    } else if (done) {
        done();
    }
    return true;
}

bool PowerManagementModel::setUsePMSet(bool persistent, Done done) {
    if (refuseChange("the Prevent Sleep mode"))
        return false;
    if (persistent == m_usePMSet) {
        if (done)
            done();
        return true;
    }
    m_usePMSet = persistent;
    begin();
    // With prevention off, the mode only says what the next "on" will use.
    if (m_preventSleep)
        usePMSetChanged(finisher(std::move(done)));
    else
        finisher(std::move(done))();
    return true;
}

void PowerManagementModel::startUp(Done done) {
    begin();
    m_settings.isSleepDisabled(whileAlive(this, [this, done](bool disabled) {
        publish(disabled, disabled);
        m_initialized = true;
        // The mode's handler runs once, so that the inhibitor and the setting agree with the model.
        if (m_preventSleep)
            usePMSetChanged(finisher(done));
        else
            finisher(done)();
    }));
}

void PowerManagementModel::tearDown(Done done) {
    if (m_busy) {
        m_afterBusy = [this, done] { tearDown(done); };
        return;
    }
    m_tornDown = true;
    m_initialized = false;
    begin();
    auto release = [this, done] {
        m_inhibitor.release();
        finisher(done)();
    };
    if (!m_preventSleep) {
        release();
        return;
    }
    // Whatever the mode: a system found with sleep disabled is given its sleep back.
    m_settings.isSleepDisabled(whileAlive(this, [this, release](bool disabled) {
        if (disabled)
            changeSetting(false, release);
        else
            release();
    }));
}

bool PowerManagementModel::refuseChange(const char* what) {
    QString why;
    if (m_tornDown)
        why = "Velmora is quitting";
    else if (m_busy)
        why = "an earlier change still waits for the system (is an administrator prompt open?)";
    else if (!m_initialized)
        why = "the system's sleep setting has not been read yet";
    if (why.isEmpty())
        return false;
    qCWarning(lcPower).noquote() << QString("Cannot change %1 now: %2.").arg(what, why);
    // Whoever showed the change shows the unchanged state again.
    emit changed();
    return true;
}

void PowerManagementModel::begin() {
    m_busy = true;
    m_lastError.clear();
    emit changed();
}

PowerManagementModel::Done PowerManagementModel::finisher(Done done) {
    return [this, done = std::move(done)] {
        m_busy = false;
        emit changed();
        if (done)
            done();
        if (auto next = std::exchange(m_afterBusy, {}))
            next();
    };
}

void PowerManagementModel::publish(bool usePMSet, bool preventSleep) {
    if (usePMSet == m_usePMSet && preventSleep == m_preventSleep)
        return;
    m_usePMSet = usePMSet;
    m_preventSleep = preventSleep;
    emit changed();
}

void PowerManagementModel::fail(const QString& line) {
    qCWarning(lcPower).noquote() << line;
    m_lastError = line;
    emit changed();
}

// Turned off: the inhibitor goes; in the persistent mode the system gets its sleep back. Turned on:
// the mode's mechanism is started, and what the system then says is what is shown.
void PowerManagementModel::preventSleepChanged(Done done) {
    if (!m_preventSleep) {
        m_inhibitor.release();
        if (!m_usePMSet) {
            done();
            return;
        }
        m_settings.isSleepDisabled(whileAlive(this, [this, done](bool disabled) {
            if (disabled)
                changeSetting(false, [this, done] { readBackSetting(done); });
            else
                done();
        }));
        return;
    }
    if (!m_usePMSet) {
        holdInhibitor([this, done] {
            publish(m_usePMSet, m_inhibitor.isHeld());
            done();
        });
        return;
    }
    m_settings.isSleepDisabled(whileAlive(this, [this, done](bool disabled) {
        if (disabled)
            readBackSetting(done);
        else
            changeSetting(true, [this, done] { readBackSetting(done); });
    }));
}

// With prevention on, a new mode takes over from the old one: the system setting is changed to match
// the mode, the inhibitor runs only in the temporary mode, and the model shows the outcome.
void PowerManagementModel::usePMSetChanged(Done done) {
    m_initialized = false;
    auto finish = [this, done] {
        matchInhibitorToMode([this, done] {
            m_settings.isSleepDisabled(whileAlive(this, [this, done](bool disabled) {
                publishAfterModeChange(disabled);
                m_initialized = true;
                done();
            }));
        });
    };
    m_settings.isSleepDisabled(whileAlive(this, [this, finish](bool disabled) {
        if (m_usePMSet && !disabled)
            changeSetting(true, finish);
        else if (!m_usePMSet && disabled)
            changeSetting(false, finish);
        else
            finish();
    }));
}

void PowerManagementModel::changeSetting(bool disable, Done then) {
    m_settings.setSleepDisabled(disable, whileAlive(this, [this, then](const QString& error) {
                                    if (!error.isEmpty())
                                        fail(error);
                                    then();
                                }));
}

// In the persistent mode the switch shows the system's setting as it is after the change.
void PowerManagementModel::readBackSetting(Done done) {
    m_settings.isSleepDisabled(whileAlive(this, [this, done](bool disabled) {
        publish(m_usePMSet, disabled);
        done();
    }));
}

void PowerManagementModel::holdInhibitor(Done then) {
    m_inhibitor.hold(kReason, whileAlive(this, [this, then](const QString& error) {
                         if (!error.isEmpty())
                             fail("Failed to keep the computer awake: " + error);
                         then();
                     }));
}

void PowerManagementModel::matchInhibitorToMode(Done then) {
    if (m_usePMSet) {
        m_inhibitor.release();
        then();
    } else {
        holdInhibitor(std::move(then));
    }
}

void PowerManagementModel::publishAfterModeChange(bool sleepDisabled) {
    if (!m_usePMSet && sleepDisabled) {
        // Sleep could not be given back system-wide (the prompt was refused): the persistent setting
        // is what keeps the computer awake, so that is the mode shown, and the inhibitor is not needed.
        m_inhibitor.release();
        publish(true, true);
        return;
    }
    publish(m_usePMSet, m_usePMSet ? sleepDisabled : m_inhibitor.isHeld());
}

} // namespace velmora
