#include "platform/x11/KeySymMap.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <utility>

namespace velmora {

namespace {

// Aliases (ISO_Left_Tab is Shift+Tab, KP_Enter) come after the key's own keysym, so the reverse lookup
// finds the plain one first.
constexpr std::pair<std::uint16_t, xcb_keysym_t> kTable[] = {
    {0, XKB_KEY_a},
    {1, XKB_KEY_s},
    {2, XKB_KEY_d},
    {3, XKB_KEY_f},
    {4, XKB_KEY_h},
    {5, XKB_KEY_g},
    {6, XKB_KEY_z},
    {7, XKB_KEY_x},
    {8, XKB_KEY_c},
    {9, XKB_KEY_v},
    {11, XKB_KEY_b},
    {12, XKB_KEY_q},
    {13, XKB_KEY_w},
    {14, XKB_KEY_e},
    {15, XKB_KEY_r},
    {16, XKB_KEY_y},
    {17, XKB_KEY_t},
    {18, XKB_KEY_1},
    {19, XKB_KEY_2},
    {20, XKB_KEY_3},
    {21, XKB_KEY_4},
    {22, XKB_KEY_6},
    {23, XKB_KEY_5},
    {24, XKB_KEY_equal},
    {25, XKB_KEY_9},
    {26, XKB_KEY_7},
    {27, XKB_KEY_minus},
    {28, XKB_KEY_8},
    {29, XKB_KEY_0},
    {30, XKB_KEY_bracketright},
    {31, XKB_KEY_o},
    {32, XKB_KEY_u},
    {33, XKB_KEY_bracketleft},
    {34, XKB_KEY_i},
    {35, XKB_KEY_p},
    {36, XKB_KEY_Return},
    {37, XKB_KEY_l},
    {38, XKB_KEY_j},
    {39, XKB_KEY_apostrophe},
    {40, XKB_KEY_k},
    {41, XKB_KEY_semicolon},
    {42, XKB_KEY_backslash},
    {43, XKB_KEY_comma},
    {44, XKB_KEY_slash},
    {45, XKB_KEY_n},
    {46, XKB_KEY_m},
    {47, XKB_KEY_period},
    {48, XKB_KEY_Tab},
    {49, XKB_KEY_space},
    {50, XKB_KEY_grave},
    {51, XKB_KEY_BackSpace},
    {53, XKB_KEY_Escape},
    {96, XKB_KEY_F5},
    {97, XKB_KEY_F6},
    {98, XKB_KEY_F7},
    {99, XKB_KEY_F3},
    {100, XKB_KEY_F8},
    {101, XKB_KEY_F9},
    {103, XKB_KEY_F11},
    {109, XKB_KEY_F10},
    {111, XKB_KEY_F12},
    {115, XKB_KEY_Home},
    {116, XKB_KEY_Page_Up},
    {117, XKB_KEY_Delete},
    {118, XKB_KEY_F4},
    {119, XKB_KEY_End},
    {120, XKB_KEY_F2},
    {121, XKB_KEY_Page_Down},
    {122, XKB_KEY_F1},
    {123, XKB_KEY_Left},
    {124, XKB_KEY_Right},
    {125, XKB_KEY_Down},
    {126, XKB_KEY_Up},
    {48, XKB_KEY_ISO_Left_Tab},
    {36, XKB_KEY_KP_Enter},
};

xcb_keysym_t lowerCase(xcb_keysym_t keysym) {
    // Shift turns letters into their capital keysyms; the key is the same.
    if (keysym >= XKB_KEY_A && keysym <= XKB_KEY_Z)
        return keysym + (XKB_KEY_a - XKB_KEY_A);
    return keysym;
}

} // namespace

std::optional<std::uint16_t> virtualKeyCodeForKeysym(xcb_keysym_t keysym) {
    keysym = lowerCase(keysym);
    for (const auto& [code, sym] : kTable)
        if (sym == keysym)
            return code;
    return std::nullopt;
}

std::optional<xcb_keysym_t> keysymForVirtualKeyCode(std::uint16_t keyCode) {
    for (const auto& [code, sym] : kTable)
        if (code == keyCode)
            return sym;
    return std::nullopt;
}

} // namespace velmora
