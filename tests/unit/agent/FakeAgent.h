#pragma once

#include "agent/AppDelegate.h"
#include "agent/ControlCommands.h"
#include "platform/fake/FakePlatform.h"

namespace velmora {

// The whole agent over the in-memory desktop, started as main() starts it, welcome already seen.
struct FakeAgent {
    FakePlatform fake;
    AppDelegate app{fake.platform, QProcessEnvironment()};
    ControlCommands commands{app};
    FakeAgent() {
        fake.defaults->setValue("WelcomeWindowSeen:V26", true);
        app.applicationDidFinishLaunching();
    }
};

} // namespace velmora
