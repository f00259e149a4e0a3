#include "FakeAgent.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {
using Agent = FakeAgent;
} // namespace

TEST(ControlCommands, StatusSaysWhyThePlatformCannotBeUsed) {
    Agent agent;
    agent.fake.permission->state = {false, "no EWMH-compliant window manager is running"};
    const auto reply = agent.commands.handle({"status"});
    ASSERT_TRUE(reply.ok);
    EXPECT_FALSE(reply.result["platform"]["usable"].get<bool>());
    EXPECT_EQ(reply.result["platform"]["reason"], "no EWMH-compliant window manager is running");
}

TEST(ControlCommands, PrefsSetChecksTheWholeRecordBeforeAssigning) {
    Agent agent;
    auto& prefs = *agent.app.preferences();
    const auto before = prefs.theme.value();
    for (const char* bad :
         {R"({"clipboardUseCompactView": 1})", R"([1, 2])", R"({"mbsm": {"widgets": [{}]}})"}) {
        const auto reply = agent.commands.handle({"prefs", "set", "ThemePreferences", bad});
        EXPECT_FALSE(reply.ok) << bad;
        EXPECT_TRUE(reply.error.startsWith("ThemePreferences was not changed")) << reply.error.toStdString();
    }
    EXPECT_EQ(prefs.theme.value(), before);

    // A record written without the switcher width takes the default 400.
    const auto ok =
        agent.commands.handle({"prefs", "set", "ThemePreferences", R"({"clipboardUseCompactView": true})"});
    ASSERT_TRUE(ok.ok) << ok.error.toStdString();
    EXPECT_EQ(ok.result.dump(),
              R"({"clipboardUseCompactView":true,"windowSwitcherWidth":400.0,"mbsm":{"widgets":[]}})");
    EXPECT_TRUE(prefs.theme.value().clipboardUseCompactView);
}

TEST(ControlCommands, LocalValuesKeepTheirTypes) {
    Agent agent;
    EXPECT_FALSE(agent.commands.handle({"prefs", "set", "DeveloperLogsEnabled", R"("yes")"}).ok);
    EXPECT_FALSE(agent.commands.handle({"prefs", "set", "AutoUpdateLastCheckTime", "true"}).ok);
    const auto on = agent.commands.handle({"prefs", "set", "DeveloperLogsEnabled", "true"});
    ASSERT_TRUE(on.ok);
    EXPECT_EQ(on.result, Json(true));
    EXPECT_TRUE(agent.app.preferences()->local.developerLogsEnabled());
}

TEST(ControlCommands, UnknownCommandsAndKeysAreNamed) {
    Agent agent;
    EXPECT_EQ(agent.commands.handle({"frobnicate"}).error,
              "unknown command \"frobnicate\"; see velmora --help");
    EXPECT_TRUE(
        agent.commands.handle({"prefs", "get", "Nope"}).error.contains("no preference named \"Nope\""));
    EXPECT_FALSE(agent.commands.handle({"prefs", "set", "BasicPreferences"}).ok);
    const auto list = agent.commands.handle({"prefs", "list"});
    ASSERT_TRUE(list.ok);
    EXPECT_EQ(list.result.size(), 14u);
    EXPECT_EQ(list.result[0], "BasicPreferences");
}
