#pragma once

#include "platform/Accessibility.h"
#include "platform/AccessibleElements.h"
#include "platform/CloudDatabase.h"
#include "platform/Commands.h"
#include "platform/Defaults.h"
#include "platform/DesktopOpener.h"
#include "platform/FileThumbnails.h"
#include "platform/InputTap.h"
#include "platform/KeyboardLayout.h"
#include "platform/LoginItem.h"
#include "platform/Pasteboard.h"
#include "platform/Permission.h"
#include "platform/Screens.h"
#include "platform/SecretStore.h"
#include "platform/SleepInhibitor.h"
#include "platform/SleepSettings.h"
#include "platform/SystemProbes.h"
#include "platform/UpdateChannel.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"

#include <memory>
#include <vector>

namespace velmora {

// The services of one backend, built by main() (or a test) and handed down to the app.
struct Platform {
    // What the services share and must outlive them (a backend's connection, its event hub).
    std::vector<std::shared_ptr<void>> backendResources;
    std::unique_ptr<Defaults> defaults;
    std::unique_ptr<Screens> screens;
    std::unique_ptr<Permission> permission;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<KeyboardLayout> keyboardLayout;
    std::unique_ptr<InputTap> inputTap;
    std::unique_ptr<WindowServer> windowServer;
    std::unique_ptr<Accessibility> accessibility;
    std::unique_ptr<LoginItem> loginItem;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<Pasteboard> pasteboard;
    std::unique_ptr<FileThumbnails> fileThumbnails;
    std::unique_ptr<DesktopOpener> opener;
    std::unique_ptr<SystemProbes> systemProbes; // absent where nothing can be sampled
    // Shared with the worker that reads other programs' tabs; absent where there is no such tree.
    std::shared_ptr<AccessibleElements> accessibleElements;
    // Keeping the computer awake: while the agent runs, and system-wide. Absent where neither exists.
    std::unique_ptr<SleepInhibitor> sleepInhibitor;
    std::unique_ptr<SleepSettings> sleepSettings;
    // The update server and the updater; absent where this build cannot update itself.
    std::unique_ptr<UpdateChannel> updateChannel;
    // Where the synchronised preferences are mirrored, and where its password is kept; absent where
    // this build has neither (the secret store alone may be missing: a session without one).
    std::unique_ptr<CloudDatabase> cloudDatabase;
    std::unique_ptr<SecretStore> secretStore;
};

} // namespace velmora
