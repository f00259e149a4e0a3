#include "app/EventTap.h"
#include "app/UserPreferences.h"
#include "core/ShortcutUse.h"
#include "platform/fake/FakeDefaults.h"
#include "platform/fake/FakeInputTap.h"
#include "platform/fake/FakeKeyboardLayout.h"
#include "ui/KeyRenderer.h"
#include "ui/KeyboardShortcutField.h"
#include "ui/KeyboardShortcutsPreferencesPage.h"
#include "ui/ShortcutRenderer.h"
#include "ui/UndoBar.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTextDocumentFragment>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

using M = Modifier;

TapEvent flags(std::uint64_t mask) {
    return {TapEventType::FlagsChanged, mask, 0, false};
}
TapEvent keyDown(std::uint16_t code, std::uint64_t mask = 0) {
    return {TapEventType::KeyDown, mask, code, false};
}
TapEvent keyUp(std::uint16_t code, std::uint64_t mask = 0) {
    return {TapEventType::KeyUp, mask, code, false};
}

QList<bool> highlights(const ShortcutRenderer& renderer) {
    QList<bool> result;
    for (const KeyRenderer* cap : renderer.caps())
        result << cap->highlight();
    return result;
}

// A field as a page would set one up, with everything it hands to onChange kept.
struct Recorder {
    FakeKeyboardLayout layout;
    KeyboardShortcutModel model{nullptr, nullptr};
    KeyboardShortcutField field{model, layout};
    std::vector<KeyboardShortcut> changes;

    Recorder() {
        field.onChange = [this](const KeyboardShortcut& s) { changes.push_back(s); };
    }
    ShortcutRenderer* held() const { return field.popover()->findChild<ShortcutRenderer*>(); }
    QLabel* prompt() const { return field.popover()->findChild<QLabel*>(); }
};

struct PageSetup {
    FakeDefaults defaults;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{defaults, log};
    FakeKeyboardLayout layout;
    KeyboardShortcutModel model{nullptr, nullptr};
    FakeInputTap input;
    EventTap tap{input, model, log, [] { return qint64(0); }};
    KeyboardShortcutsPreferencesPage page{prefs, model, layout, tap};
};

} // namespace

TEST(ShortcutRenderer, CapsReadCtrlSuperAltShiftThenTheKey) {
    FakeKeyboardLayout us;
    EXPECT_EQ(shortcutCapLabels(chord(M::Shift | M::Alt | M::Control | M::Command, 8), us),
              QStringList({"Ctrl", "Super", "Alt", "Shift", "C"}));
    // The Mac's Control is the Super key, its Command the Ctrl key.
    EXPECT_EQ(shortcutCapLabels(chord(M::Control | M::Alt, 8), us), QStringList({"Super", "Alt", "C"}));
    EXPECT_EQ(shortcutText(chord(M::Shift | M::Command, 9), us), "Ctrl+Shift+V");
    EXPECT_EQ(shortcutText(chord(M::Alt | M::Shift, 48), us), "Alt+Shift+Tab");
    EXPECT_EQ(shortcutCapLabels(bareKey(126), us), QStringList({"↑"}));
    // A key this layout cannot name still gets a cap.
    EXPECT_EQ(shortcutCapLabels(bareKey(200), us), QStringList({"Key 200"}));
}

TEST(ShortcutRenderer, HighlightsEachCapWhileItsKeyIsHeld) {
    FakeKeyboardLayout us;
    KeyboardShortcutModel model(nullptr, nullptr);
    ShortcutRenderer renderer(us, &model);
    renderer.setShortcut(chord(M::Command | M::Alt, 8));
    renderer.setShouldHighlight(true);
    ASSERT_EQ(renderer.capLabels(), QStringList({"Ctrl", "Alt", "C"}));

    model.keyboardStep(flags(ModifierMask::Command));
    EXPECT_EQ(highlights(renderer), QList<bool>({true, false, false}));
    model.keyboardStep(flags(ModifierMask::Command | ModifierMask::Option));
    model.keyboardStep(keyDown(9, ModifierMask::Command | ModifierMask::Option)); // V is not this key
    EXPECT_EQ(highlights(renderer), QList<bool>({true, true, false}));
    model.keyboardStep(keyUp(9));
    model.keyboardStep(keyDown(8));
    EXPECT_EQ(highlights(renderer), QList<bool>({true, true, true}));

    renderer.setShouldHighlight(false);
    EXPECT_EQ(highlights(renderer), QList<bool>({false, false, false}));
}

TEST(ShortcutRenderer, GreysAKeyWithoutModifierWhenOneIsRequired) {
    FakeKeyboardLayout us;
    ShortcutRenderer renderer(us);
    renderer.setRequireModifier(true);
    renderer.setShortcut(bareKey(0));
    EXPECT_FALSE(renderer.caps().front()->isEnabled());
    renderer.setShortcut(chord(M::Command, 0));
    EXPECT_TRUE(renderer.caps().front()->isEnabled());
    EXPECT_TRUE(renderer.caps().back()->isEnabled());
}

TEST(KeyboardShortcutField, RecordsTheChordPressedWhileThePopoverIsOpen) {
    Recorder r;
    r.field.setRequireModifier(true);
    r.field.openPopover();
    ASSERT_TRUE(r.field.isPopoverShown());
    EXPECT_TRUE(r.model.isRecording());
    EXPECT_TRUE(r.field.popover()->isVisible());
    EXPECT_EQ(r.prompt()->text(), "Press any\nmodifier + key");
    EXPECT_FALSE(r.prompt()->isHidden());

    // The popover draws the modifiers as they go down, before any key.
    r.model.keyboardStep(flags(ModifierMask::Control | ModifierMask::Option));
    EXPECT_TRUE(r.prompt()->isHidden());
    EXPECT_EQ(r.held()->capLabels(), QStringList({"Super", "Alt"}));
    EXPECT_TRUE(r.changes.empty());

    // The key is swallowed by the tap, so it triggers nothing while it is recorded.
    EXPECT_EQ(r.model.keyboardStep(keyDown(8, ModifierMask::Control | ModifierMask::Option)),
              TapVerdict::swallow);
    ASSERT_EQ(r.changes.size(), 1u);
    EXPECT_EQ(r.changes[0], chord(M::Control | M::Alt, 8));
    EXPECT_FALSE(r.changes[0].disabled);
    EXPECT_EQ(r.field.newShortcut(), chord(M::Control | M::Alt, 8));
    EXPECT_FALSE(r.model.isRecording());
    EXPECT_FALSE(r.field.isPopoverShown());
    EXPECT_FALSE(r.field.popover()->isVisible());

    // After recording, further keys change nothing.
    r.model.keyboardStep(keyUp(8));
    r.model.keyboardStep(keyDown(9, ModifierMask::Control));
    EXPECT_EQ(r.changes.size(), 1u);
}

TEST(KeyboardShortcutField, RequiredModifierIgnoresBareKeysAndKeepsRecording) {
    Recorder r;
    r.field.setRequireModifier(true);
    r.field.openPopover();
    r.model.keyboardStep(keyDown(0));
    EXPECT_TRUE(r.changes.empty());
    EXPECT_TRUE(r.model.isRecording());
    EXPECT_EQ(r.held()->capLabels(), QStringList({"A"}));
    EXPECT_FALSE(r.held()->caps().front()->isEnabled());

    // A modifier added while the key is still down is not a key press: the key must go down again.
    r.model.keyboardStep(flags(ModifierMask::Command));
    EXPECT_TRUE(r.changes.empty());
    r.model.keyboardStep(keyUp(0, ModifierMask::Command));
    r.model.keyboardStep(keyDown(0, ModifierMask::Command));
    ASSERT_EQ(r.changes.size(), 1u);
    EXPECT_EQ(r.changes[0], chord(M::Command, 0));
    EXPECT_FALSE(r.model.isRecording());
}

TEST(KeyboardShortcutField, NavigationFieldTakesBareKeysButNotAKeyAlreadyHeld) {
    Recorder r;
    // A key held when the popover opens (the one that opened it) is not recorded.
    r.model.keyboardStep(keyDown(49));
    r.field.openPopover();
    r.model.keyboardStep(flags(ModifierMask::Shift));
    EXPECT_TRUE(r.changes.empty());
    r.model.keyboardStep(keyUp(49));
    r.model.keyboardStep(flags(0));

    r.model.keyboardStep(keyDown(126));
    ASSERT_EQ(r.changes.size(), 1u);
    EXPECT_EQ(r.changes[0], bareKey(126));
}

TEST(KeyboardShortcutField, EscapeOrClosingCancelsAndAlwaysEndsRecording) {
    Recorder r;
    r.field.setExistingShortcut(chord(M::Alt, 48));
    r.field.openPopover();
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(r.field.popover(), &escape);
    EXPECT_FALSE(r.field.isPopoverShown());
    EXPECT_FALSE(r.model.isRecording());

    // Escape seen by the tap first (the popover's own key event still on its way) cancels as well.
    r.field.openPopover();
    r.model.keyboardStep(keyDown(KeyCode::Escape));
    EXPECT_FALSE(r.model.isRecording());

    // Closed from outside (a click elsewhere), or its field hidden or destroyed.
    r.field.openPopover();
    r.field.popover()->close();
    EXPECT_FALSE(r.model.isRecording());
    r.field.show();
    r.field.openPopover();
    r.field.hide();
    EXPECT_FALSE(r.model.isRecording());
    {
        KeyboardShortcutField doomed(r.model, r.layout);
        doomed.openPopover();
        EXPECT_TRUE(r.model.isRecording());
    }
    EXPECT_FALSE(r.model.isRecording());

    EXPECT_TRUE(r.changes.empty());
    EXPECT_EQ(r.field.existingShortcut(), chord(M::Alt, 48));
}

TEST(KeyboardShortcutField, EnabledBoxSwitchesTheSameChordOffAndOn) {
    Recorder r;
    r.field.setCanDisable(true);
    EXPECT_FALSE(r.field.enabledBox()->isEnabled()); // nothing bound, nothing to switch

    r.field.setExistingShortcut(chord(M::Control | M::Alt, 11));
    ASSERT_TRUE(r.field.enabledBox()->isEnabled());
    EXPECT_TRUE(r.field.enabledBox()->isChecked());
    r.field.enabledBox()->click();
    ASSERT_EQ(r.changes.size(), 1u);
    KeyboardShortcut off = chord(M::Control | M::Alt, 11);
    off.disabled = true;
    EXPECT_EQ(r.changes[0], off);

    // Shown greyed until switched back on.
    r.field.setExistingShortcut(off);
    EXPECT_FALSE(r.field.renderer()->isEnabled());
    EXPECT_FALSE(r.field.enabledBox()->isChecked());
    r.field.enabledBox()->click();
    EXPECT_EQ(r.changes.back(), chord(M::Control | M::Alt, 11));

    Recorder fixed;
    EXPECT_TRUE(fixed.field.enabledBox()->isHidden());
}

TEST(KeyboardShortcutsPreferencesPage, ListsEveryActionUnderItsHeadingInRecordOrder) {
    PageSetup s;
    const auto* grid = qobject_cast<QGridLayout*>(s.page.findChild<QScrollArea*>()->widget()->layout());
    ASSERT_TRUE(grid);
    QStringList headings;
    QList<QStringList> titles;
    for (int row = 0; row < grid->rowCount(); ++row) {
        const QLayoutItem* item = grid->itemAtPosition(row, 0);
        const auto* label = item ? qobject_cast<QLabel*>(item->widget()) : nullptr;
        if (!label)
            continue;
        if (label->objectName() == "heading") {
            headings << QTextDocumentFragment::fromHtml(label->text()).toPlainText();
            titles << QStringList();
        } else {
            ASSERT_FALSE(titles.isEmpty());
            titles.back() << label->text();
            EXPECT_EQ(label->buddy(), grid->itemAtPosition(row, 1)->widget());
        }
    }
    EXPECT_EQ(headings,
              QStringList({"Window Manager", "Window Switcher", "Clipboard History", "Dashboards"}));
    ASSERT_EQ(titles.size(), 4);
    EXPECT_EQ(titles[0].mid(0, 4), QStringList({"Center Window", "Make Window 16 by 9", "Auto-Layout Windows",
                                                "Previous auto-layout candidate"}));
    EXPECT_EQ(titles[1], QStringList({"Open Window Switcher", "Select Previous Window", "Search windows"}));
    EXPECT_EQ(titles[2].front(), "Open clipboard history");
    EXPECT_EQ(titles[3], QStringList({"Toggle monitor dimming", "Open system monitoring dashboard"}));
    qsizetype total = 0;
    for (const auto& group : titles)
        total += group.size();
    EXPECT_EQ(total, 27);

    const auto& defaults = s.prefs.keyboardBindings.value();
    for (const KeyboardAppAction action : allKeyboardAppActions()) {
        ASSERT_TRUE(s.page.field(action));
        EXPECT_EQ(s.page.field(action)->existingShortcut(), defaults.shortcut(action))
            << rawName(action).toStdString();
        EXPECT_TRUE(s.page.field(action)->canDisable());
    }
    using A = KeyboardAppAction;
    EXPECT_TRUE(s.page.field(A::switchWindow)->requireModifier());
    EXPECT_TRUE(s.page.field(A::openSystemMonitoringDashboard)->requireModifier());
    EXPECT_FALSE(s.page.field(A::clipboardPrevious)->requireModifier());
    EXPECT_FALSE(s.page.field(A::clipboardSearch)->requireModifier());
    EXPECT_FALSE(s.page.field(A::autoLayoutChooseCandidate)->requireModifier());
}

TEST(KeyboardShortcutsPreferencesPage, RecordingWritesAWholeRecordWithOnlyThatBindingChanged) {
    PageSetup s;
    const KeyboardBindings before = s.prefs.keyboardBindings.value();
    KeyboardShortcutField* field = s.page.field(KeyboardAppAction::openSystemMonitoringDashboard);
    EXPECT_FALSE(field->existingShortcut());

    field->openPopover();
    s.model.keyboardStep(flags(ModifierMask::Command | ModifierMask::Option));
    s.model.keyboardStep(keyDown(2, ModifierMask::Command | ModifierMask::Option));

    KeyboardBindings expected = before;
    expected.openSystemMonitoringDashboard = chord(M::Command | M::Alt, 2);
    EXPECT_EQ(s.prefs.keyboardBindings.value(), expected);
    EXPECT_EQ(field->existingShortcut(), chord(M::Command | M::Alt, 2));
    EXPECT_FALSE(s.model.isRecording());

    // Switching a binding off keeps its chord.
    s.page.field(KeyboardAppAction::switchWindow)->enabledBox()->click();
    ASSERT_TRUE(s.prefs.keyboardBindings.value().switchWindow);
    EXPECT_TRUE(s.prefs.keyboardBindings.value().switchWindow->disabled);
    EXPECT_EQ(s.prefs.keyboardBindings.value().switchWindow->keyCode, 48);

    // A record that arrives from elsewhere is shown at once.
    KeyboardBindings synced = s.prefs.keyboardBindings.value();
    synced.clipboardOpenWindow = std::nullopt;
    s.prefs.keyboardBindings.setValue(synced);
    EXPECT_FALSE(s.page.field(KeyboardAppAction::clipboardOpenWindow)->existingShortcut());
}

TEST(KeyboardShortcutsPreferencesPage, MarksTheRowsWhoseChordWasRefused) {
    PageSetup s;
    using A = KeyboardAppAction;
    s.input.refuse({{chord(M::Control | M::Alt, 8), "Another program uses this shortcut"}});
    KeyboardShortcutField* center = s.page.field(A::windowManagerCenterWindow);
    EXPECT_FALSE(center->warning()->isHidden());
    EXPECT_EQ(center->warning()->toolTip(), "Another program uses this shortcut");
    EXPECT_EQ(center->refusedReason(), "Another program uses this shortcut");
    for (const A action : allKeyboardAppActions()) {
        if (action != A::windowManagerCenterWindow) {
            EXPECT_TRUE(s.page.field(action)->refusedReason().isEmpty()) << rawName(action).toStdString();
        }
    }

    // Switched off, the chord is no longer asked for, so the old refusal no longer applies.
    auto bindings = s.prefs.keyboardBindings.value();
    bindings.windowManagerCenterWindow->disabled = true;
    s.prefs.keyboardBindings.setValue(bindings);
    EXPECT_TRUE(center->warning()->isHidden());

    bindings.windowManagerCenterWindow->disabled = false;
    s.prefs.keyboardBindings.setValue(bindings);
    EXPECT_FALSE(center->warning()->isHidden());
    s.input.refuse({});
    EXPECT_TRUE(center->warning()->isHidden());
}

TEST(KeyboardShortcutField, GlobalFieldTakesOnlyChordsThatAreNotTyping) {
    Recorder r;
    r.field.setGlobal(true);
    r.field.openPopover();
    // Shift+A is how people type "A": refused with the reason, and recording goes on.
    r.model.keyboardStep(flags(ModifierMask::Shift));
    r.model.keyboardStep(keyDown(0, ModifierMask::Shift));
    EXPECT_TRUE(r.changes.empty());
    EXPECT_TRUE(r.model.isRecording());
    EXPECT_FALSE(r.field.popoverMessage()->isHidden());
    EXPECT_TRUE(r.field.popoverMessage()->text().startsWith("Shift+A alone would take ordinary typing"))
        << r.field.popoverMessage()->text().toStdString();
    r.model.keyboardStep(keyUp(0, ModifierMask::Shift));
    r.model.keyboardStep(flags(0));

    // A function key alone, or anything held with Ctrl, Alt or Super, is taken.
    r.model.keyboardStep(keyDown(96));
    ASSERT_EQ(r.changes.size(), 1u);
    EXPECT_EQ(r.changes[0], bareKey(96));
    r.model.keyboardStep(keyUp(96));
    for (const auto& [mask, modifiers] :
         {std::pair{ModifierMask::Command | ModifierMask::Shift, M::Command | M::Shift},
          std::pair{ModifierMask::Option, M::Alt}, std::pair{ModifierMask::Control, M::Control}}) {
        r.field.openPopover();
        EXPECT_TRUE(r.field.popoverMessage()->isHidden()); // the old refusal is gone
        r.model.keyboardStep(flags(mask));
        r.model.keyboardStep(keyDown(0, mask));
        EXPECT_EQ(r.changes.back(), chord(modifiers, 0));
        r.model.keyboardStep(keyUp(0, mask));
        r.model.keyboardStep(flags(0));
    }
    EXPECT_EQ(r.changes.size(), 4u);
}

TEST(KeyboardShortcutsPreferencesPage, AChordInUseIsTakenOnlyWhenTheUserSaysReplace) {
    PageSetup s;
    using A = KeyboardAppAction;
    const KeyboardBindings before = s.prefs.keyboardBindings.value();
    const WindowManagerPreferences zonesBefore = s.prefs.windowManager.value();
    KeyboardShortcutField* dashboard = s.page.field(A::openSystemMonitoringDashboard);
    const auto press = [&](std::uint64_t mask, std::uint16_t key) {
        s.model.keyboardStep(flags(mask));
        s.model.keyboardStep(keyDown(key, mask));
        s.model.keyboardStep(keyUp(key, mask));
        s.model.keyboardStep(flags(0));
    };
    const auto superAlt = ModifierMask::Control | ModifierMask::Option;

    // Super+Alt+C centres windows: the popover names it and waits; Cancel leaves everything.
    dashboard->openPopover();
    press(superAlt, 8);
    EXPECT_EQ(dashboard->popoverMessage()->text(), "Super+Alt+C is already used by Center Window.");
    EXPECT_EQ(dashboard->pendingShortcut(), chord(M::Control | M::Alt, 8));
    EXPECT_TRUE(s.model.isRecording());
    dashboard->popover()->findChild<QPushButton*>("cancel")->click();
    EXPECT_FALSE(s.model.isRecording());
    EXPECT_EQ(s.prefs.keyboardBindings.value(), before);

    // Replace moves the chord: the dashboard has it, Center Window has none.
    dashboard->openPopover();
    press(superAlt, 8);
    dashboard->popover()->findChild<QPushButton*>("replace")->click();
    EXPECT_EQ(s.prefs.keyboardBindings.value().openSystemMonitoringDashboard, chord(M::Control | M::Alt, 8));
    EXPECT_FALSE(s.prefs.keyboardBindings.value().windowManagerCenterWindow);
    EXPECT_FALSE(s.page.field(A::windowManagerCenterWindow)->existingShortcut());

    // A zone's chord (Super+Alt+Left is "Left Half"), answered with Return: the zone gives it up.
    dashboard->openPopover();
    press(superAlt, 123);
    EXPECT_EQ(dashboard->popoverMessage()->text(), "Super+Alt+← is already used by zone “Left Half”.");
    press(0, KeyCode::Return);
    EXPECT_EQ(s.prefs.keyboardBindings.value().openSystemMonitoringDashboard,
              chord(M::Control | M::Alt, 123));
    const auto& zones = s.prefs.windowManager.value().areas;
    EXPECT_FALSE(zones[1].keyboardShortcut);
    EXPECT_EQ(zones[2].keyboardShortcut, zonesBefore.areas[2].keyboardShortcut);
    EXPECT_NE(s.prefs.windowManager.value().updated, zonesBefore.updated);
    EXPECT_FALSE(shortcutsProblem(s.prefs.keyboardBindings.value(), zones));
}

TEST(KeyboardShortcutsPreferencesPage, AChangeThatCannotBeStoredSpringsBack) {
    PageSetup s;
    QString reported;
    QObject::connect(&s.prefs, &UserPreferences::writeFailed, [&](const QString& why) { reported = why; });
    const KeyboardBindings before = s.prefs.keyboardBindings.value();
    s.defaults.failWrites = true;
    KeyboardShortcutField* center = s.page.field(KeyboardAppAction::windowManagerCenterWindow);
    center->enabledBox()->click();
    EXPECT_EQ(s.prefs.keyboardBindings.value(), before);
    EXPECT_TRUE(center->enabledBox()->isChecked());
    EXPECT_TRUE(reported.contains("read-only")) << reported.toStdString();
}

TEST(KeyboardShortcutsPreferencesPage, RestoreDefaultsTakesFactoryChordsBackFromZonesAndCanBeUndone) {
    PageSetup s;
    using A = KeyboardAppAction;
    auto bindings = s.prefs.keyboardBindings.value();
    bindings.windowManagerCenterWindow.reset();
    bindings.switchWindow->disabled = true;
    s.prefs.keyboardBindings.setValue(bindings);
    auto windowManager = s.prefs.windowManager.value();
    windowManager.areas[5].keyboardShortcut = chord(M::Control | M::Alt, 8); // Center Window's factory chord
    s.prefs.windowManager.setValue(windowManager);

    s.page.restoreButton()->click();
    EXPECT_EQ(s.prefs.keyboardBindings.value(), KeyboardBindings{});
    EXPECT_FALSE(s.prefs.windowManager.value().areas[5].keyboardShortcut);
    EXPECT_FALSE(shortcutsProblem(s.prefs.keyboardBindings.value(), s.prefs.windowManager.value().areas));
    EXPECT_EQ(s.page.field(A::windowManagerCenterWindow)->existingShortcut(), chord(M::Control | M::Alt, 8));

    ASSERT_FALSE(s.page.undoBar()->isHidden());
    s.page.undoBar()->undoButton()->click();
    EXPECT_EQ(s.prefs.keyboardBindings.value(), bindings);
    EXPECT_EQ(s.prefs.windowManager.value().areas, windowManager.areas);
}
