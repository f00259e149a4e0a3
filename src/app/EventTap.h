#pragma once

#include "app/KeyboardShortcutModel.h"
#include "platform/InputTap.h"

#include <functional>

namespace velmora {

class KeyboardCleaningModel;
class LoggingManager;

// The one tap of the process: every key and left-mouse event passes through callback(), which offers
// it to drag snapping, silences the keyboard while it is being cleaned, and otherwise runs the
// keyboard step. A watchdog, run every second, recreates the tap after 15 quiet seconds, which is
// also how a tap the platform disabled comes back.
class EventTap : public QObject {
    Q_OBJECT
public:
    static constexpr double kQuietSeconds = 15;

    EventTap(InputTap& platform, KeyboardShortcutModel& model, KeyboardCleaningModel& cleaning,
             LoggingManager& log, std::function<double()> now, QObject* parent = nullptr);

    TapVerdict callback(const TapEvent& event);
    void watchdog();
    void invalidate();

    // The left-mouse handling of the window manager; its result does not decide whether the event passes.
    std::function<void(const TapEvent&)> dragHandler;

    void setSwallowableChords(const std::vector<KeyboardShortcut>& chords);
    const std::vector<RefusedChord>& refusedChords() const { return m_refused; }
    InputTap::State state() const { return m_platform.state(); }
    double lastEventTime() const { return m_lastEventTime; }
    int recreations() const { return m_recreations; }

signals:
    void refusedChordsChanged();

private:
    void create();

    InputTap& m_platform;
    KeyboardShortcutModel& m_model;
    KeyboardCleaningModel& m_cleaning;
    LoggingManager& m_log;
    std::function<double()> m_now;
    double m_lastEventTime = 0;
    int m_recreations = 0;
    std::vector<RefusedChord> m_refused;
};

QString tapStateName(InputTap::State state);

} // namespace velmora
