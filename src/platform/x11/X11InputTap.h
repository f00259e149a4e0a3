#pragma once

#include "platform/InputTap.h"
#include "platform/x11/X11RequestProbe.h"

#include <atomic>
#include <memory>

namespace velmora {

class X11TapWorker;

// The input tap on X11: a worker thread with its own connection watches and grabs; this side, on the
// main thread, runs the callback and hands verdicts back.
class X11InputTap final : public InputTap {
    Q_OBJECT
public:
    // probe: the main thread's X connections, to count what a verdict sends to the server.
    explicit X11InputTap(X11RequestProbe probe = {});
    ~X11InputTap() override;

    bool create(Callback callback) override;
    void invalidate() override;
    State state() const override;
    void setSwallowableChords(const std::vector<KeyboardShortcut>& chords) override;
    void setKeyboardGrabbed(bool grabbed) override;
    bool postKeyChord(const KeyboardShortcut& chord) override;
    std::vector<std::pair<QString, qint64>> counters() const override;

private:
    std::optional<TapVerdict> deliver(const TapEvent& event, bool wantVerdict);

    std::unique_ptr<X11TapWorker> m_worker;
    Callback m_callback;
    std::vector<KeyboardShortcut> m_chords;
    bool m_keyboardGrabbed = false;
    bool m_failed = false;
    X11RequestProbe m_probe;
    qint64 m_verdicts = 0;
    qint64 m_requestsDuringVerdicts = 0;
    // Pointer motion is only ever one event deep in the main queue; later moves replace nothing.
    std::shared_ptr<std::atomic<bool>> m_motionQueued = std::make_shared<std::atomic<bool>>(false);
};

} // namespace velmora
