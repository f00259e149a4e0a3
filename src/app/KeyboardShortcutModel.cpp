#include "app/KeyboardShortcutModel.h"

#include "core/KeyEvent.h"
#include "core/MainThread.h"

namespace velmora {

KeyboardShortcutModel::KeyboardShortcutModel(Matcher matcher, Dispatcher dispatcher, QObject* parent)
    : QObject(parent), m_matcher(std::move(matcher)), m_dispatcher(std::move(dispatcher)) {}

void KeyboardShortcutModel::setRecording(bool recording) {
    assertMainThread("KeyboardShortcutModel::setRecording");
    m_isRecording = recording;
    ++m_interactionCount;
    emit changed();
}

TapVerdict KeyboardShortcutModel::keyboardStep(const TapEvent& event) {
    assertMainThread("KeyboardShortcutModel::keyboardStep");
    TapVerdict verdict = TapVerdict::pass;
    switch (event.type) {
    case TapEventType::FlagsChanged:
        setModifiers(event.flags);
        updateChord();
        break;
    case TapEventType::KeyDown:
        m_keyCode = event.keyCode;
        updateChord();
        if (m_isRecording)
            verdict = TapVerdict::swallow; // the recording field takes the chord
        else if (m_activeShortcut)
            verdict = match(*m_activeShortcut);
        break;
    case TapEventType::KeyUp:
        m_keyCode.reset();
        updateChord();
        break;
    default:
        return TapVerdict::pass;
    }
    // Once everything is let go, the next press of the same chord starts afresh.
    if ((event.type == TapEventType::FlagsChanged || event.type == TapEventType::KeyUp) && !m_control &&
        !m_alt && !m_command && !m_shift && !m_keyCode)
        m_previousBinding.reset();
    emit changed();
    return verdict;
}

void KeyboardShortcutModel::setModifiers(std::uint64_t flags) {
    m_control = flags & ModifierMask::Control;
    m_alt = flags & ModifierMask::Option;
    m_command = flags & ModifierMask::Command;
    m_shift = flags & ModifierMask::Shift;
}

void KeyboardShortcutModel::updateChord() {
    if (!m_keyCode) {
        m_activeShortcut.reset();
    } else {
        const KeyboardShortcut current{m_control, m_alt, m_command, m_shift, *m_keyCode, false};
        if (!(m_activeShortcut && *m_activeShortcut == current))
            m_activeShortcut = current;
    }
    ++m_interactionCount;
}

TapVerdict KeyboardShortcutModel::match(const KeyboardShortcut& chord) {
    // The same chord again fires the same binding again: zones sharing a chord cycle this way.
    std::optional<KeyboardBinding> binding;
    if (m_previousBinding && m_previousBinding->shortcut == chord)
        binding = m_rematcher ? m_rematcher(*m_previousBinding) : m_previousBinding;
    else if (m_matcher)
        binding = m_matcher(chord);
    m_previousBinding = binding;
    if (!binding)
        return TapVerdict::pass;
    if (m_dispatcher)
        m_dispatcher(*binding);
    return binding->blocking ? TapVerdict::swallow : TapVerdict::pass;
}

} // namespace velmora
