#include "platform/fake/FakeKeyboardLayout.h"

#include <QKeyEvent>

#include <utility>

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
    case Qt::Key_Backspace:
        return KeyCode::Delete;
    case Qt::Key_P:
        return 35;
    case Qt::Key_S:
        return 1;
    case Qt::Key_Down:
        return 125;
    case Qt::Key_Up:
        return 126;
    default:
        return 0xFFFF;
    }
}

// The letters and a few other keys of a US keyboard, labelled as the X11 layout labels them.
constexpr std::pair<std::uint16_t, const char*> kLabels[] = {
    {0, "A"},       {1, "S"},    {2, "D"},      {3, "F"},          {4, "H"},    {5, "G"},   {6, "Z"},
    {7, "X"},       {8, "C"},    {9, "V"},      {11, "B"},         {12, "Q"},   {13, "W"},  {14, "E"},
    {15, "R"},      {16, "Y"},   {17, "T"},     {18, "1"},         {19, "2"},   {31, "O"},  {32, "U"},
    {34, "I"},      {35, "P"},   {37, "L"},     {38, "J"},         {40, "K"},   {45, "N"},  {46, "M"},
    {36, "Return"}, {48, "Tab"}, {49, "Space"}, {51, "Backspace"}, {53, "Esc"}, {123, "←"}, {124, "→"},
    {125, "↓"},     {126, "↑"},
};

} // namespace

KeyEvent FakeKeyboardLayout::translate(const QKeyEvent& event) const {
    KeyEvent e;
    e.keyCode = keyCodeOf(event.key());
    const auto m = event.modifiers();
    e.modifierFlags = ModifierMask::fromQt(m);
    if (event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z) {
        const QChar c = QChar(event.key());
        e.characters = (m & Qt::ShiftModifier) ? QString(c) : QString(c.toLower());
    }
    return e;
}

QString FakeKeyboardLayout::label(std::uint16_t keyCode) const {
    for (const auto& [code, text] : kLabels)
        if (code == keyCode)
            return QString::fromUtf8(text);
    return {};
}

} // namespace velmora
