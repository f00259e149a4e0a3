#include "platform/linux/InstallationFolder.h"

#include <gtest/gtest.h>

using namespace velmora;

TEST(InstallationFolder, ProgramsInAFolderOfTheirOwn) {
    const std::pair<const char*, const char*> cases[] = {
        {"/opt/google/chrome/chrome", "file:///opt/google/chrome/"},
        {"/opt/google/chrome/chrome_crashpad_handler", "file:///opt/google/chrome/"},
        {"/opt/zoom/zoom", "file:///opt/zoom/"},
        {"/opt/sublime_text/bin/subl", "file:///opt/sublime_text/"}, // above its bin folder
        {"/opt/Some App/some-app", "file:///opt/Some%20App/"},
        {"/usr/lib/firefox-esr/firefox-esr", "file:///usr/lib/firefox-esr/"},
        {"/usr/lib/libreoffice/program/soffice.bin", "file:///usr/lib/libreoffice/"},
        {"/usr/lib64/thunderbird/thunderbird", "file:///usr/lib64/thunderbird/"},
        {"/usr/libexec/gnome-settings-daemon/gsd-color", "file:///usr/libexec/gnome-settings-daemon/"},
        {"/usr/lib/x86_64-linux-gnu/xfce4/panel/wrapper-2.0", "file:///usr/lib/x86_64-linux-gnu/xfce4/"},
        {"/usr/lib/aarch64-linux-gnu/webkit2gtk-4.0/WebKitWebProcess",
         "file:///usr/lib/aarch64-linux-gnu/webkit2gtk-4.0/"},
        {"/snap/firefox/4173/usr/lib/firefox/firefox", "file:///snap/firefox/4173/"},
        {"/tmp/.mount_Obsidi4xR2Zk/obsidian", "file:///tmp/.mount_Obsidi4xR2Zk/"},
        {"/run/user/1000/.mount_appXYZ/usr/bin/app", "file:///run/user/1000/.mount_appXYZ/"},
        {"/var/lib/flatpak/app/org.gimp.GIMP/x86_64/stable/abc/files/bin/gimp",
         "file:///var/lib/flatpak/app/org.gimp.GIMP/"},
        {"/usr/lib/firefox-esr/firefox-esr (deleted)",
         "file:///usr/lib/firefox-esr/"}, // replaced by an upgrade
    };
    for (const auto& [executable, folder] : cases)
        EXPECT_EQ(installationFolderUrl(executable), std::optional<QString>(folder)) << executable;
}

TEST(InstallationFolder, ProgramsInSharedFoldersHaveNone) {
    for (const char* executable :
         {"/usr/bin/bash", "/bin/sleep", "/usr/local/bin/tool", "/usr/sbin/cupsd", "/usr/libexec/gvfsd",
          "/usr/lib/x86_64-linux-gnu/some-helper", "/opt/lonely", "/snap/bin/firefox", "/home/me/bin/script",
          "", "relative/opt/x/y", "/usr/lib/../bin/bash", "/opt/../usr/bin/bash"})
        EXPECT_EQ(installationFolderUrl(executable), std::nullopt) << executable;
}
