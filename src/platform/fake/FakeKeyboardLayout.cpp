#include "platform/fake/FakeKeyboardLayout.h"

#include <QKeyEvent>

namespace velmora {

namespace {

std::uint16_t keyCodeOf(int key) {
    switch (key) {
    case Qt::Key_W:
        return 13;
    case Qt::Key_Q:
        return 12;
    case Qt::Key_A:
        return 0;
    case Qt::Key_Escape:
        return KeyCode::Escape;
    case Qt::Key_Return:
        return KeyCode::Return;
    case Qt::Key_Tab:
        return KeyCode::Tab;
    case Qt::Key_Space:
        return KeyCode::Space;
    default:
        return 0xFFFF;
    }
}

} // namespace

KeyEvent FakeKeyboardLayout::translate(const QKeyEvent& event) const {
    KeyEvent e;
    e.keyCode = keyCodeOf(event.key());
    const auto m = event.modifiers();
    if (m & Qt::ShiftModifier)
        e.modifierFlags |= ModifierMask::Shift;
    if (m & Qt::ControlModifier)
        e.modifierFlags |= ModifierMask::Command;
    if (m & Qt::MetaModifier)
        e.modifierFlags |= ModifierMask::Control;
    if (m & Qt::AltModifier)
        e.modifierFlags |= ModifierMask::Option;
    if (event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z) {
        const QChar c = QChar(event.key());
        e.characters = (m & Qt::ShiftModifier) ? QString(c) : QString(c.toLower());
    }
    return e;
}

} // namespace velmora
