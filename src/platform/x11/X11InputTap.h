#pragma once

#include "platform/InputTap.h"

#include <atomic>
#include <memory>

namespace velmora {

class X11TapWorker;

// The input tap on X11: a worker thread with its own connection watches and grabs; this side, on the
// main thread, runs the callback and hands verdicts back.
class X11InputTap final : public InputTap {
    Q_OBJECT
public:
    X11InputTap();
    ~X11InputTap() override;

    bool create(Callback callback) override;
    void invalidate() override;
    State state() const override;
    void setSwallowableChords(const std::vector<KeyboardShortcut>& chords) override;
    void setKeyboardGrabbed(bool grabbed) override;

private:
    std::optional<TapVerdict> deliver(const TapEvent& event, bool wantVerdict);

    std::unique_ptr<X11TapWorker> m_worker;
    Callback m_callback;
    std::vector<KeyboardShortcut> m_chords;
    bool m_keyboardGrabbed = false;
    bool m_failed = false;
    // Pointer motion is only ever one event deep in the main queue; later moves replace nothing.
    std::shared_ptr<std::atomic<bool>> m_motionQueued = std::make_shared<std::atomic<bool>>(false);
};

} // namespace velmora
