#pragma once

#include "app/KeyboardBinding.h"
#include "core/KeyboardAppAction.h"
#include "core/TapEvent.h"

#include <QObject>
#include <functional>
#include <optional>

namespace velmora {

// The live state of the keyboard as the tap sees it (modifiers held, the key down, the chord), and
// the turning of a pressed chord into an action.
class KeyboardShortcutModel : public QObject {
    Q_OBJECT
public:
    using Matcher = std::function<std::optional<KeyboardBinding>(const KeyboardShortcut&)>;
    using Dispatcher = std::function<void(const KeyboardBinding&)>;

    using Rematcher = std::function<std::optional<KeyboardBinding>(const KeyboardBinding&)>;

    KeyboardShortcutModel(Matcher matcher, Dispatcher dispatcher, QObject* parent = nullptr);
    // Asked for the binding again when its chord repeats; without one the binding fires unchanged.
    void setRematcher(Rematcher rematcher) { m_rematcher = std::move(rematcher); }

    // The keyboard step of the tap: updates the state and says whether the event is swallowed.
    TapVerdict keyboardStep(const TapEvent& event);

    int interactionCount() const { return m_interactionCount; }
    bool isRecording() const { return m_isRecording; }
    void setRecording(bool recording);
    bool control() const { return m_control; }
    bool alt() const { return m_alt; }
    bool command() const { return m_command; }
    bool shift() const { return m_shift; }
    std::optional<quint16> keyCode() const { return m_keyCode; }
    const std::optional<KeyboardShortcut>& activeShortcut() const { return m_activeShortcut; }
    const std::optional<KeyboardBinding>& previousBinding() const { return m_previousBinding; }

signals:
    // Emitted on every update; views redraw from it.
    void changed();

private:
    void setModifiers(std::uint64_t flags);
    void updateChord();
    TapVerdict match(const KeyboardShortcut& chord);

    Matcher m_matcher;
    Rematcher m_rematcher;
    Dispatcher m_dispatcher;
    int m_interactionCount = 0;
    bool m_isRecording = false;
    bool m_control = false, m_alt = false, m_command = false, m_shift = false;
    std::optional<quint16> m_keyCode;
    std::optional<KeyboardShortcut> m_activeShortcut;
    std::optional<KeyboardBinding> m_previousBinding;
};

} // namespace velmora
