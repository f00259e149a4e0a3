#include "platform/linux/SystemdScope.h"

#include <gtest/gtest.h>

using namespace velmora;

TEST(SystemdScope, TheApplicationScopeOfTheUnifiedHierarchy) {
    EXPECT_EQ(applicationScope("0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                               "app-gnome-firefox\\x2desr-2301.scope\n"),
              "app-gnome-firefox\\x2desr-2301.scope");
    // A terminal's tab: a scope of its own under the terminal's slice.
    EXPECT_EQ(applicationScope("0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                               "app-org.gnome.Terminal.slice/vte-spawn-5b1c.scope\n"),
              "vte-spawn-5b1c.scope");
    // Processes the application started in sub-groups of its scope still belong to it.
    EXPECT_EQ(applicationScope("0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                               "app-kde-org.kde.dolphin-77.scope/helpers\n"),
              "app-kde-org.kde.dolphin-77.scope");
    EXPECT_EQ(applicationScope("0::/user.slice/user-1000.slice/session-2.scope/app-openbox-9.scope\n"),
              "app-openbox-9.scope");
}

TEST(SystemdScope, NoneOutsideApplicationScopes) {
    for (const char* text :
         {"", "0::/\n", "0::/user.slice/user-1000.slice/session-2.scope\n",
          "0::/user.slice/user-1000.slice/user@1000.service/app.slice/pipewire.service\n",
          "0::/system.slice/cron.service\n", "garbage without colons", "12:pids:/app.slice/app-x.scope\n"})
        EXPECT_EQ(applicationScope(text), std::nullopt) << text;
}

// A legacy or hybrid layout keeps systemd's tree in a named hierarchy.
TEST(SystemdScope, SystemdsOwnHierarchyOnALegacyLayout) {
    EXPECT_EQ(applicationScope("12:pids:/user.slice\n"
                               "1:name=systemd:/user.slice/user-1000.slice/user@1000.service/app.slice/"
                               "app-gnome-gedit-88.scope\n"
                               "0::/\n"),
              "app-gnome-gedit-88.scope");
}
