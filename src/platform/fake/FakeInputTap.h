#pragma once

#include "platform/InputTap.h"

namespace velmora {

// An input tap that records what it is asked to do; tests feed it events with send() and play the
// platform with setState() and refuse().
class FakeInputTap final : public InputTap {
    Q_OBJECT
public:
    using InputTap::InputTap;

    // Set to play a platform without the permission: create() fails and the tap is left failed.
    bool refuseCreate = false;

    std::vector<KeyboardShortcut> chords;
    bool keyboardGrabbed = false;
    int creates = 0;
    int invalidations = 0;

    bool create(Callback callback) override {
        ++creates;
        if (refuseCreate) {
            m_callback = nullptr;
            setState(State::failed);
            return false;
        }
        m_callback = std::move(callback);
        setState(State::active);
        return true;
    }
    void invalidate() override {
        ++invalidations;
        m_callback = nullptr;
        setState(State::none);
    }
    State state() const override { return m_state; }
    void setSwallowableChords(const std::vector<KeyboardShortcut>& swallowable) override {
        chords = swallowable;
    }
    void setKeyboardGrabbed(bool grabbed) override { keyboardGrabbed = grabbed; }
    bool postKeyChord(const KeyboardShortcut& chord) override {
        posted.push_back(chord);
        return !refusePost;
    }

    // The chords typed on the agent's behalf, in order; refusePost plays a platform that cannot type.
    std::vector<KeyboardShortcut> posted;
    bool refusePost = false;

    // One event of the desktop. Only an active tap reaches the callback (one the platform disabled
    // hears nothing, like a timed-out tap); otherwise the event passes.
    TapVerdict send(const TapEvent& event) {
        if (!m_callback || m_state != State::active)
            return TapVerdict::pass;
        return m_callback(event);
    }

    void setState(State state) {
        if (state == m_state)
            return;
        m_state = state;
        emit stateChanged();
    }
    // Plays another program holding some of the chords.
    void refuse(const std::vector<RefusedChord>& refused) { emit grabsRefused(refused); }

    bool hasCallback() const { return bool(m_callback); }

private:
    Callback m_callback;
    State m_state = State::none;
};

} // namespace velmora
