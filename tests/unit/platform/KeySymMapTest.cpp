#include "platform/x11/KeySymMap.h"

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

using namespace velmora;

TEST(KeySymMap, MapsKeysymsToStoredKeyCodesAndBack) {
    // Codes stored in records mean the same key on every platform.
    const std::pair<xcb_keysym_t, std::uint16_t> pairs[] = {
        {XKB_KEY_a, 0},      {XKB_KEY_c, 8},       {XKB_KEY_v, 9},       {XKB_KEY_u, 32},
        {XKB_KEY_i, 34},     {XKB_KEY_j, 38},      {XKB_KEY_k, 40},      {XKB_KEY_m, 46},
        {XKB_KEY_Tab, 48},   {XKB_KEY_space, 49},  {XKB_KEY_Return, 36}, {XKB_KEY_Escape, 53},
        {XKB_KEY_Left, 123}, {XKB_KEY_Right, 124}, {XKB_KEY_Down, 125},  {XKB_KEY_Up, 126},
        {XKB_KEY_5, 23},     {XKB_KEY_6, 22},      {XKB_KEY_F1, 122},
    };
    for (const auto& [keysym, code] : pairs) {
        EXPECT_EQ(virtualKeyCodeForKeysym(keysym), code) << keysym;
        EXPECT_EQ(keysymForVirtualKeyCode(code), keysym) << code;
    }
}

TEST(KeySymMap, ShiftedAndAliasKeysymsNameTheSameKey) {
    EXPECT_EQ(virtualKeyCodeForKeysym(XKB_KEY_W), 13u);
    EXPECT_EQ(virtualKeyCodeForKeysym(XKB_KEY_ISO_Left_Tab), 48u);
    EXPECT_EQ(keysymForVirtualKeyCode(48), XKB_KEY_Tab);
    EXPECT_FALSE(virtualKeyCodeForKeysym(XKB_KEY_XF86AudioMute));
    EXPECT_FALSE(keysymForVirtualKeyCode(10)); // a code no key of the table has
}
