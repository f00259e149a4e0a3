#pragma once

#include "platform/KeyboardLayout.h"

namespace velmora {

class X11KeyboardLayout final : public KeyboardLayout {
public:
    KeyEvent translate(const QKeyEvent& event) const override;
    QString label(std::uint16_t keyCode) const override;
};

} // namespace velmora
