#pragma once

#include "platform/KeyboardLayout.h"

namespace velmora {

// A US layout for the few keys the tests press.
class FakeKeyboardLayout final : public KeyboardLayout {
public:
    KeyEvent translate(const QKeyEvent& event) const override;
    QString label(std::uint16_t keyCode) const override;
};

} // namespace velmora
