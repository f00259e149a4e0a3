#include "core/KeyboardBindings.h"
#include "core/KeyboardAppAction.h"
#include "core/KeyboardShortcut.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>

namespace velmora {

// Failure messages show the stored form rather than raw bytes.
[[maybe_unused]] static void PrintTo(const KeyboardShortcut& s, std::ostream* os) {
    *os << encodeJson(s);
}

namespace {

using A = KeyboardAppAction;

constexpr Modifier CtrlAlt = Modifier::Control | Modifier::Alt;

std::vector<std::string> keysOf(const Json& j) {
    std::vector<std::string> keys;
    for (auto it = j.begin(); it != j.end(); ++it)
        keys.push_back(it.key());
    return keys;
}

TEST(KeyboardShortcutTest, EncodesFieldsInDeclarationOrder) {
    EXPECT_EQ(encodeJson(chord(CtrlAlt, 8)),
              R"({"control":true,"alt":true,"command":false,"shift":false,"keyCode":8,"disabled":false})");
}

TEST(KeyboardShortcutTest, DecodesOlderRecordsWithoutDisabledAsEnabled) {
    auto s = decodeJson<KeyboardShortcut>(
        R"({"control":true,"alt":false,"command":false,"shift":false,"keyCode":49})");
    ASSERT_TRUE(s);
    EXPECT_EQ(*s, chord(Modifier::Control, 49));
}

TEST(KeyboardShortcutTest, RejectsKeyCodesThatAreNotSmallUnsignedIntegers) {
    for (const char* keyCode : {"70000", "-1", "8.5", "true", "\"8\""}) {
        std::string error;
        const std::string text =
            std::string(R"({"control":true,"alt":false,"command":false,"shift":false,"keyCode":)") + keyCode +
            "}";
        EXPECT_FALSE(decodeJson<KeyboardShortcut>(text, &error)) << keyCode;
        EXPECT_NE(error.find("keyCode"), std::string::npos) << error;
    }
}

TEST(KeyboardShortcutTest, MatchingNeedsEveryModifierKeyCodeAndDisabledEqual) {
    const KeyboardShortcut stored = chord(CtrlAlt, 126);
    EXPECT_TRUE(stored.matches(chord(CtrlAlt, 126)));
    EXPECT_FALSE(stored.matches(chord(CtrlAlt, 125)));
    EXPECT_FALSE(stored.matches(chord(CtrlAlt | Modifier::Shift, 126)));
    EXPECT_FALSE(stored.matches(chord(CtrlAlt | Modifier::Command, 126)));
    EXPECT_FALSE(stored.matches(chord(Modifier::Alt, 126)));

    KeyboardShortcut off = stored;
    off.disabled = true;
    EXPECT_FALSE(off.matches(chord(CtrlAlt, 126)));

    EXPECT_TRUE(stored.hasModifier());
    EXPECT_FALSE(bareKey(36).hasModifier());
}

TEST(KeyboardAppActionTest, RawNamesAreUniqueAndRoundTrip) {
    const auto& all = allKeyboardAppActions();
    ASSERT_EQ(all.size(), 27u);
    EXPECT_EQ(all.front(), A::windowManagerCenterWindow);
    EXPECT_EQ(all.back(), A::windowSwitcherSearch);
    std::set<QString> names;
    for (A action : all) {
        names.insert(rawName(action));
        EXPECT_EQ(keyboardAppActionFromRawName(rawName(action)), action) << rawName(action).toStdString();
        EXPECT_FALSE(title(action).isEmpty());
    }
    EXPECT_EQ(names.size(), 27u);
    EXPECT_FALSE(keyboardAppActionFromRawName("SwitchWindow"));
    EXPECT_FALSE(keyboardAppActionFromRawName(""));
}

TEST(KeyboardAppActionTest, TitlesAndGroupsOfThePreferencePage) {
    EXPECT_EQ(title(A::makeWindow16By9), "Make Window 16 by 9");
    EXPECT_EQ(title(A::clipboardDirectPastePlainText), "Paste plain text directly");
    EXPECT_EQ(title(A::switchWindowPrevious), "Select Previous Window");

    EXPECT_EQ(groupTitle(ShortcutGroup::WindowManager), "Window Manager");
    EXPECT_EQ(groupTitle(ShortcutGroup::WindowSwitcher), "Window Switcher");
    EXPECT_EQ(groupTitle(ShortcutGroup::ClipboardHistory), "Clipboard History");
    EXPECT_EQ(groupTitle(ShortcutGroup::Dashboards), "Dashboards");

    for (A action : allKeyboardAppActions()) {
        const QString name = rawName(action);
        if (name.startsWith("clipboard"))
            EXPECT_EQ(group(action), ShortcutGroup::ClipboardHistory) << name.toStdString();
        else
            EXPECT_NE(group(action), ShortcutGroup::ClipboardHistory) << name.toStdString();
    }
    EXPECT_EQ(group(A::toggleMonitorDimming), ShortcutGroup::Dashboards);
    EXPECT_EQ(group(A::openSystemMonitoringDashboard), ShortcutGroup::Dashboards);
    EXPECT_EQ(group(A::windowSwitcherSearch), ShortcutGroup::WindowSwitcher);
    EXPECT_EQ(group(A::switchWindowPrevious), ShortcutGroup::WindowSwitcher);
    EXPECT_EQ(group(A::autoLayoutCollapseTabs), ShortcutGroup::WindowManager);
}

// "Control+Alt 8", the way the factory table reads.
std::string label(const Json& shortcut) {
    std::string text;
    for (const char* modifier : {"control", "alt", "command", "shift"})
        if (shortcut.at(modifier).get<bool>())
            text += std::string(text.empty() ? "" : "+") + char(std::toupper(modifier[0])) + (modifier + 1);
    return (text.empty() ? "" : text + " ") + std::to_string(shortcut.at("keyCode").get<int>());
}

TEST(KeyboardBindingsTest, DefaultsFollowTheFactoryTable) {
    const std::map<std::string, std::string> expected{
        {"windowManagerCenterWindow", "Control+Alt 8"},
        {"makeWindow16By9", "Control+Alt 3"},
        {"clipboardOpenWindow", "Command+Shift 9"},
        {"clipboardPrevious", "126"},
        {"clipboardNext", "125"},
        {"clipboardSelect", "36"},
        {"clipboardPasteOriginal", "31"},
        {"clipboardPastePlainText", "35"},
        {"clipboardDirectPastePlainText", "Control 9"},
        {"clipboardShowInFinder", "3"},
        {"clipboardQuickLook", "49"},
        {"clipboardDelete", "51"},
        {"clipboardOpenURL", "Command 36"},
        {"clipboardSearch", "1"},
        {"toggleMonitorDimming", "Control+Alt 11"},
        {"proposeAutoLayout", "Control+Alt 49"},
        {"autoLayoutPrevious", "126"},
        {"autoLayoutNext", "125"},
        {"autoLayoutChooseCandidate", "36"},
        {"switchWindow", "Alt 48"},
        {"switchWindowPrevious", "Alt+Shift 48"},
        {"moveWindowToScreen", "Control+Alt 46"},
        {"matchSnappedWindowFrame", "Control 49"},
        {"autoLayoutExpandTabs", "Alt 124"},
        {"autoLayoutCollapseTabs", "Alt 123"},
        {"windowSwitcherSearch", "Alt 1"},
    };
    // Read through the stored form, so that a field reached under the wrong name shows here too.
    const Json j = KeyboardBindings{};
    std::map<std::string, std::string> actual;
    for (auto it = j.begin(); it != j.end(); ++it) {
        actual[it.key()] = label(it.value());
        EXPECT_FALSE(it.value().at("disabled").get<bool>()) << it.key();
    }
    EXPECT_EQ(actual, expected);

    const KeyboardBindings b;
    EXPECT_FALSE(b.openSystemMonitoringDashboard);

    // Shared keys: context (which panel is open) tells these apart, not the chord.
    EXPECT_EQ(b.clipboardPrevious, b.autoLayoutPrevious);
    EXPECT_EQ(b.clipboardShowInFinder->keyCode, b.makeWindow16By9->keyCode);
    EXPECT_FALSE(b.clipboardShowInFinder->hasModifier());

    KeyboardShortcut previous = *b.switchWindowPrevious;
    EXPECT_TRUE(previous.shift);
    previous.shift = false;
    EXPECT_EQ(previous, b.switchWindow);
}

TEST(KeyboardBindingsTest, EncodesInActionOrderAndOmitsUnboundActions) {
    const Json j = KeyboardBindings{};
    std::vector<std::string> expected;
    for (A action : allKeyboardAppActions())
        if (action != A::openSystemMonitoringDashboard)
            expected.push_back(rawName(action).toStdString());
    EXPECT_EQ(keysOf(j), expected);
    EXPECT_FALSE(j.contains("openSystemMonitoringDashboard"));
}

TEST(KeyboardBindingsTest, RoundTripsAndReadsMissingOrNullAsUnbound) {
    KeyboardBindings b;
    b.openSystemMonitoringDashboard = chord(Modifier::Control | Modifier::Shift, 2);
    b.clipboardSearch.reset();
    b.switchWindow->disabled = true;
    EXPECT_EQ(decodeJson<KeyboardBindings>(encodeJson(b)), b);

    auto sparse = decodeJson<KeyboardBindings>(
        R"({"makeWindow16By9":null,"switchWindow":{"control":false,"alt":true,"command":false,"shift":false,"keyCode":48},"unknownAction":1})");
    ASSERT_TRUE(sparse);
    EXPECT_FALSE(sparse->makeWindow16By9);
    EXPECT_FALSE(sparse->windowManagerCenterWindow);
    EXPECT_EQ(sparse->switchWindow, chord(Modifier::Alt, 48));

    std::string error;
    EXPECT_FALSE(decodeJson<KeyboardBindings>(R"({"switchWindow":{"alt":true}})", &error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(decodeJson<KeyboardBindings>(R"([])", &error));
}

} // namespace
} // namespace velmora
