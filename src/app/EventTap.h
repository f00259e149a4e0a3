#pragma once

#include "app/KeyboardShortcutModel.h"
#include "platform/InputTap.h"

#include <functional>

namespace velmora {

class LoggingManager;

// The one tap of the process: every key and left-mouse event passes through callback(), which offers
// it to drag snapping, silences the keyboard while it is being cleaned, and otherwise runs the
// keyboard step. A watchdog, run every second, recreates the tap after 15 quiet seconds, which is
// also how a tap the platform disabled comes back.
class EventTap : public QObject {
    Q_OBJECT
public:
    static constexpr qint64 kQuietMs = 15000;

    // now: wall-clock milliseconds.
    EventTap(InputTap& platform, KeyboardShortcutModel& model, LoggingManager& log,
             std::function<qint64()> now, QObject* parent = nullptr);

    TapVerdict callback(const TapEvent& event);
    void watchdog();
    void invalidate();

    // The left-mouse handling of the window manager; its result does not decide whether the event passes.
    std::function<void(const TapEvent&)> dragHandler;

    // While silenced every key of every keyboard is swallowed and the mouse stays free (keyboard cleaning).
    void setKeyboardSilenced(bool silenced);
    bool isKeyboardSilenced() const { return m_silenced; }

    void setSwallowableChords(const std::vector<KeyboardShortcut>& chords);
    const std::vector<RefusedChord>& refusedChords() const { return m_refused; }
    InputTap::State state() const { return m_platform.state(); }
    qint64 lastEventTime() const { return m_lastEventTime; }
    int recreations() const { return m_recreations; }

signals:
    void refusedChordsChanged();

private:
    void create();

    InputTap& m_platform;
    KeyboardShortcutModel& m_model;
    LoggingManager& m_log;
    std::function<qint64()> m_now;
    qint64 m_lastEventTime = 0;
    bool m_silenced = false;
    int m_recreations = 0;
    std::vector<RefusedChord> m_refused;
};

QString tapStateName(InputTap::State state);

} // namespace velmora
