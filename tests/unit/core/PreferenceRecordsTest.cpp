#include "core/BasicPreferences.h"
#include "core/ClipboardPreferences.h"
#include "core/DefaultValues.h"
#include "core/ThemePreferences.h"
#include "core/WindowManagerPreferences.h"

#include <gtest/gtest.h>

#include <set>

namespace velmora {

[[maybe_unused]] static void PrintTo(const KeyboardShortcut& s, std::ostream* os) {
    *os << encodeJson(s);
}

namespace {

constexpr Modifier CtrlAlt = Modifier::Control | Modifier::Alt;

std::vector<std::string> keysOf(const Json& j) {
    std::vector<std::string> keys;
    for (auto it = j.begin(); it != j.end(); ++it)
        keys.push_back(it.key());
    return keys;
}

QString texts(const WindowArea& a) {
    return a.x + " " + a.y + " " + a.w + " " + a.h;
}

QString flags(const WindowArea& a) {
    QString f;
    for (bool on : {a.availableOnMacbookScreen, a.availableOnWideScreen, a.availableOnUltrawideScreen,
                    a.availableOnSuperUltrawideScreen, a.availableOnVerticalScreen})
        f += on ? 'y' : 'n';
    return f;
}

TEST(WindowAreaTest, EncodesKeysInOrderWithUpperCaseIdAndOmitsMissingShortcut) {
    WindowArea area = factoryZones().front();
    area.id = QUuid("{0f8fad5b-d9cb-469f-a165-70867728950e}");
    const Json j = area;
    EXPECT_EQ(keysOf(j),
              (std::vector<std::string>{"id", "name", "x", "y", "w", "h", "availableOnMacbookScreen",
                                        "availableOnWideScreen", "availableOnUltrawideScreen",
                                        "availableOnSuperUltrawideScreen", "availableOnVerticalScreen",
                                        "keyboardShortcut"}));
    EXPECT_EQ(j.at("id"), "0F8FAD5B-D9CB-469F-A165-70867728950E");

    area.keyboardShortcut.reset();
    EXPECT_FALSE(Json(area).contains("keyboardShortcut"));
    EXPECT_EQ(decodeJson<WindowArea>(encodeJson(area)), area);

    // Lower-case ids written elsewhere read as the same id.
    Json lower = area;
    lower["id"] = "0f8fad5b-d9cb-469f-a165-70867728950e";
    EXPECT_EQ(lower.get<WindowArea>().id, area.id);
}

TEST(DefaultValuesTest, FactoryZonesAsShipped) {
    const auto zones = factoryZones();
    ASSERT_EQ(zones.size(), 9u);
    struct Expected {
        const char* name;
        const char* texts;
        const char* flags;
        quint16 keyCode;
    };
    const Expected expected[] = {
        {"Custom", "0 0 1 1", "yyyyy", 126},
        {"Left Half", "0 0 1/2 1", "yyyyn", 123},
        {"Right Half", "1/2 0 1/2 1", "yyyyn", 124},
        {"Top Half", "0 0 1 1/2", "nnnny", 126},
        {"Bottom Half", "0 1/2 1 1/2", "nnnny", 125},
        {"Top Left", "0 0 1/2 1/2", "yyyyy", 32},
        {"Top Right", "1/2 0 1/2 1/2", "yyyyy", 34},
        {"Bottom Left", "0 1/2 1/2 1/2", "yyyyy", 38},
        {"Bottom Right", "1/2 1/2 1/2 1/2", "yyyyy", 40},
    };
    for (std::size_t i = 0; i < zones.size(); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(zones[i].name, expected[i].name);
        EXPECT_EQ(texts(zones[i]), expected[i].texts);
        EXPECT_EQ(flags(zones[i]), expected[i].flags);
        EXPECT_EQ(zones[i].keyboardShortcut, chord(CtrlAlt, expected[i].keyCode));
    }
    EXPECT_EQ(zones[0].keyboardShortcut, zones[3].keyboardShortcut);

    // Fresh ids on every call, so that zones added from the list never collide with existing ones.
    std::set<QUuid> ids;
    for (const auto& zone : zones)
        ids.insert(zone.id);
    for (const auto& zone : factoryZones())
        ids.insert(zone.id);
    EXPECT_EQ(ids.size(), 18u);
    EXPECT_FALSE(ids.contains(QUuid()));
}

TEST(DefaultValuesTest, TemplatesAreTheFactoryZonesThenTheThirds) {
    const auto templates = zoneTemplates();
    ASSERT_EQ(templates.size(), 14u);
    EXPECT_EQ(templates[8].name, "Bottom Right");
    const char* thirds[][2] = {{"Left Third", "0 0 1/3 1"},
                               {"Left Two Thirds", "0 0 2/3 1"},
                               {"Middle Third", "1/3 0 1/3 1"},
                               {"Right Third", "2/3 0 1/3 1"},
                               {"Right Two Thirds", "1/3 0 2/3 1"}};
    for (std::size_t i = 0; i < 5; ++i) {
        const WindowArea& t = templates[9 + i];
        EXPECT_EQ(t.name, thirds[i][0]);
        EXPECT_EQ(texts(t), thirds[i][1]);
        EXPECT_EQ(flags(t), "yyyyn");
        EXPECT_FALSE(t.keyboardShortcut);
    }
}

TEST(WindowManagerPreferencesTest, DefaultsEncodeInFieldOrderAndRoundTrip) {
    WindowManagerPreferences p;
    const Json j = p;
    EXPECT_EQ(keysOf(j), (std::vector<std::string>{"updated", "spacing", "shiftEnablesDragging", "areas",
                                                   "enableAutoLayout", "enableWindowSwitcher"}));
    EXPECT_EQ(decodeJson<WindowManagerPreferences>(j.dump()), p);

    p.updated = 1721.25;
    p.spacing = 0;
    p.areas.erase(p.areas.begin() + 2, p.areas.end());
    p.areas[1].keyboardShortcut.reset();
    p.enableWindowSwitcher = false;
    EXPECT_EQ(decodeJson<WindowManagerPreferences>(encodeJson(p)), p);
}

TEST(PreferenceRecordsTest, BasicAndClipboardRoundTripInTheirStoredForm) {
    EXPECT_EQ(encodeJson(BasicPreferences{}), R"({"autoUpdate":true})");
    EXPECT_EQ(decodeJson<BasicPreferences>(R"({"autoUpdate":false})"), BasicPreferences{false});

    ClipboardPreferences c;
    EXPECT_EQ(encodeJson(c), R"({"retention":100,"blacklistedAppURLs":[]})");
    c.retention = 25;
    c.blacklistedAppURLs = {"file:///usr/share/applications/org.keepassxc.KeePassXC.desktop",
                            "file:///home/u/.local/share/applications/pass%20word.desktop"};
    EXPECT_EQ(decodeJson<ClipboardPreferences>(encodeJson(c)), c);
    EXPECT_FALSE(decodeJson<ClipboardPreferences>(R"({"retention":12.5,"blacklistedAppURLs":[]})"));
    EXPECT_FALSE(decodeJson<ClipboardPreferences>(R"({"retention":10,"blacklistedAppURLs":"file:///x"})"));
}

TEST(ThemePreferencesTest, EncodesWidgetsWithCaseObjects) {
    ThemePreferences t;
    EXPECT_EQ(encodeJson(t),
              R"({"clipboardUseCompactView":false,"windowSwitcherWidth":400.0,"mbsm":{"widgets":[]}})");

    const QUuid id("{8c2e0c71-3c1d-4a55-9d0a-2b1f4e6a7b90}");
    t.mbsm.widgets = {{id, ResourceType::network}, {QUuid::createUuid(), ResourceType::cpu}};
    const Json j = t;
    EXPECT_EQ(j.at("mbsm").at("widgets").at(0).dump(),
              R"({"id":"8C2E0C71-3C1D-4A55-9D0A-2B1F4E6A7B90","resource":{"network":{}}})");
    EXPECT_EQ(decodeJson<ThemePreferences>(j.dump()), t);
}

TEST(ThemePreferencesTest, OlderRecordsDecodeWithDefaults) {
    auto t = decodeJson<ThemePreferences>(R"({"clipboardUseCompactView":true})");
    ASSERT_TRUE(t);
    EXPECT_TRUE(t->clipboardUseCompactView);
    EXPECT_EQ(t->windowSwitcherWidth, 400.0);
    EXPECT_TRUE(t->mbsm.widgets.empty());

    auto plain = decodeJson<ThemePreferences>(
        R"({"clipboardUseCompactView":false,"windowSwitcherWidth":520,"mbsm":{"widgets":[{"id":"8c2e0c71-3c1d-4a55-9d0a-2b1f4e6a7b90","resource":"memory"}]}})");
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->windowSwitcherWidth, 520.0);
    ASSERT_EQ(plain->mbsm.widgets.size(), 1u);
    EXPECT_EQ(plain->mbsm.widgets[0].resource, ResourceType::memory);
}

TEST(ThemePreferencesTest, RejectsMalformedResourceCases) {
    for (const char* resource :
         {R"({"cpu":1})", R"({"cpu":{},"memory":{}})", R"({"disk":{}})", R"("disk")", R"({})", R"(0)"}) {
        const std::string text =
            std::string(R"({"widgets":[{"id":"8C2E0C71-3C1D-4A55-9D0A-2B1F4E6A7B90","resource":)") +
            resource + "}]}";
        std::string error;
        EXPECT_FALSE(decodeJson<MenubarSystemMonitoringPreferences>(text, &error)) << resource;
        EXPECT_FALSE(error.empty()) << resource;
    }
}

TEST(PreferenceRecordsTest, UndecodableInputGivesNoValueAndAReason) {
    const std::string area = encodeJson(factoryZones().front());
    Json missingName = Json::parse(area);
    missingName.erase("name");
    Json badId = Json::parse(area);
    badId["id"] = "not-a-uuid";
    Json wrongFlag = Json::parse(area);
    wrongFlag["availableOnWideScreen"] = "yes";

    for (const std::string& text : {std::string("{\"autoUpdate\":"), std::string("[1,2]"), missingName.dump(),
                                    badId.dump(), wrongFlag.dump()}) {
        std::string error;
        EXPECT_FALSE(decodeJson<WindowArea>(text, &error)) << text;
        EXPECT_FALSE(error.empty()) << text;
    }

    std::string error;
    EXPECT_FALSE(decodeJson<BasicPreferences>("{}", &error));
    EXPECT_NE(error.find("autoUpdate"), std::string::npos) << error;
    EXPECT_FALSE(decodeJson<WindowManagerPreferences>(R"({"updated":0,"spacing":"0.5"})", &error));
    EXPECT_FALSE(decodeJson<ThemePreferences>(R"({"clipboardUseCompactView":false,"mbsm":[]})", &error));
}

} // namespace
} // namespace velmora
