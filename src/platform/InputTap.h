#pragma once

#include "core/KeyboardShortcut.h"
#include "core/TapEvent.h"

#include <QObject>
#include <QString>
#include <functional>
#include <vector>

namespace velmora {

// A chord the platform could not reserve, and why (another program holds it, or the current keyboard
// layout has no such key).
struct RefusedChord {
    KeyboardShortcut shortcut;
    QString reason;
};

// The platform's view of every key and left-mouse event of the desktop. The callback runs on the main
// thread and decides, for the events that can be held back, whether they are swallowed.
class InputTap : public QObject {
    Q_OBJECT
public:
    using Callback = std::function<TapVerdict(const TapEvent&)>;
    enum class State { none, active, disabledByTimeout, failed };

    using QObject::QObject;
    ~InputTap() override = default;

    // Creates the tap (replacing an existing one); false when the platform refuses.
    virtual bool create(Callback callback) = 0;
    virtual void invalidate() = 0;
    virtual State state() const = 0;

    // The chords that may have to be swallowed; others are only observed. Chords another program
    // holds are reported through grabsRefused.
    virtual void setSwallowableChords(const std::vector<KeyboardShortcut>& chords) = 0;
    // While on, every key of every keyboard is held back from all applications (the mouse stays free).
    virtual void setKeyboardGrabbed(bool grabbed) = 0;
    // Presses and releases the chord as if typed, for the window that has the keyboard focus. Modifier
    // keys the user still holds are let go first, or the window would receive a different chord; the
    // agent's own shortcuts do not react to it. Returns at once; false when this platform cannot type.
    virtual bool postKeyChord(const KeyboardShortcut& chord) = 0;
    // What the backend counts of its own work (verdicts asked, server requests made meanwhile), for
    // status and the benchmarks.
    virtual std::vector<std::pair<QString, qint64>> counters() const { return {}; }

signals:
    void grabsRefused(const std::vector<RefusedChord>& chords);
    void stateChanged();
};

} // namespace velmora
