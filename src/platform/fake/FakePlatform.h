#pragma once

#include "platform/Platform.h"
#include "platform/fake/FakeAccessibleElements.h"
#include "platform/fake/FakeCloudDatabase.h"
#include "platform/fake/FakeCommands.h"
#include "platform/fake/FakeDefaults.h"
#include "platform/fake/FakeDesktop.h"
#include "platform/fake/FakeDesktopOpener.h"
#include "platform/fake/FakeFileThumbnails.h"
#include "platform/fake/FakeInputTap.h"
#include "platform/fake/FakeKeyboardLayout.h"
#include "platform/fake/FakeLoginItem.h"
#include "platform/fake/FakePasteboard.h"
#include "platform/fake/FakePermission.h"
#include "platform/fake/FakeScreens.h"
#include "platform/fake/FakeSecretStore.h"
#include "platform/fake/FakeSleepInhibitor.h"
#include "platform/fake/FakeSleepSettings.h"
#include "platform/fake/FakeSystemProbes.h"
#include "platform/fake/FakeUpdateChannel.h"
#include "platform/fake/FakeWorkspace.h"

namespace velmora {

// An in-memory desktop: one 1440 x 900 screen with a 25-point panel on top, unless a test says more.
struct FakePlatform {
    FakeDesktop desktop;
    Platform platform;
    FakeDefaults* defaults;
    FakeScreens* screens;
    FakePermission* permission;
    FakeCommands* commands;
    FakeInputTap* inputTap;
    FakeLoginItem* loginItem;
    FakeWorkspace* workspace;
    FakePasteboard* pasteboard;
    FakeFileThumbnails* fileThumbnails;
    FakeDesktopOpener* opener;
    FakeSystemProbes* systemProbes;
    std::shared_ptr<FakeAccessibleElements> accessibleElements = std::make_shared<FakeAccessibleElements>();
    FakeSleepInhibitor* sleepInhibitor;
    FakeSleepSettings* sleepSettings;
    FakeUpdateChannel* updateChannel;
    FakeCloudDatabase* cloudDatabase;
    FakeSecretStore* secretStore;

    FakePlatform() {
        auto d = std::make_unique<FakeDefaults>();
        auto s = std::make_unique<FakeScreens>();
        auto p = std::make_unique<FakePermission>();
        auto c = std::make_unique<FakeCommands>();
        auto t = std::make_unique<FakeInputTap>();
        inputTap = t.get();
        defaults = d.get();
        screens = s.get();
        permission = p.get();
        commands = c.get();
        s->all.push_back({"fake-0", {0, 0, 1440, 900}, {0, 0, 1440, 875}, 1});
        platform.defaults = std::move(d);
        platform.screens = std::move(s);
        platform.permission = std::move(p);
        platform.commands = std::move(c);
        platform.keyboardLayout = std::make_unique<FakeKeyboardLayout>();
        platform.inputTap = std::move(t);
        platform.windowServer = std::make_unique<FakeWindowServer>(desktop);
        platform.accessibility = std::make_unique<FakeAccessibility>(desktop);
        auto l = std::make_unique<FakeLoginItem>();
        loginItem = l.get();
        platform.loginItem = std::move(l);
        auto w = std::make_unique<FakeWorkspace>();
        workspace = w.get();
        platform.workspace = std::move(w);
        auto pb = std::make_unique<FakePasteboard>();
        pasteboard = pb.get();
        platform.pasteboard = std::move(pb);
        auto ft = std::make_unique<FakeFileThumbnails>();
        fileThumbnails = ft.get();
        platform.fileThumbnails = std::move(ft);
        auto o = std::make_unique<FakeDesktopOpener>();
        opener = o.get();
        platform.opener = std::move(o);
        auto sp = std::make_unique<FakeSystemProbes>();
        systemProbes = sp.get();
        platform.systemProbes = std::move(sp);
        platform.accessibleElements = accessibleElements;
        auto si = std::make_unique<FakeSleepInhibitor>();
        sleepInhibitor = si.get();
        platform.sleepInhibitor = std::move(si);
        auto ss = std::make_unique<FakeSleepSettings>();
        sleepSettings = ss.get();
        platform.sleepSettings = std::move(ss);
        auto uc = std::make_unique<FakeUpdateChannel>();
        updateChannel = uc.get();
        platform.updateChannel = std::move(uc);
        auto cd = std::make_unique<FakeCloudDatabase>();
        cloudDatabase = cd.get();
        platform.cloudDatabase = std::move(cd);
        auto st = std::make_unique<FakeSecretStore>();
        secretStore = st.get();
        platform.secretStore = std::move(st);
    }
};

} // namespace velmora
