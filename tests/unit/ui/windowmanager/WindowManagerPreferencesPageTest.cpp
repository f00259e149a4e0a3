#include "ui/windowmanager/WindowManagerPreferencesPage.h"
#include "app/KeyboardShortcutModel.h"
#include "app/UserPreferences.h"
#include "core/DefaultValues.h"
#include "core/KeyEvent.h"
#include "core/ShortcutUse.h"
#include "platform/fake/FakeDefaults.h"
#include "platform/fake/FakeKeyboardLayout.h"
#include "ui/KeyboardShortcutField.h"
#include "ui/UndoBar.h"
#include "ui/windowmanager/WindowAreaView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

using C = WindowManagerPreferencesPage::Coordinate;

struct PageSetup {
    FakeDefaults defaults;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{defaults, log};
    FakeKeyboardLayout layout;
    KeyboardShortcutModel model{nullptr, nullptr};
    WindowManagerPreferencesPage page{prefs, model, layout};

    const WindowManagerPreferences& record() const { return prefs.windowManager.value(); }
    QLineEdit* field(C c) const { return page.coordinateField(c); }
    bool marked(C c) const { return !page.invalidMark(c)->isHidden(); }
    QStringList listed() const {
        QStringList names;
        for (int row = 0; row < page.zoneList()->count(); ++row)
            names << page.zoneList()->item(row)->text();
        return names;
    }
};

// As the user does it: replace the text, then confirm with Return.
void retype(QLineEdit* field, const QString& text, bool confirm = true) {
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClicks(field, text);
    if (confirm)
        QTest::keyClick(field, Qt::Key_Return);
}

// The record as it should be after a zone edit: the same, but for the change and the stamp.
void expectOnlyChange(const WindowManagerPreferences& before, WindowManagerPreferences expected,
                      const WindowManagerPreferences& after) {
    EXPECT_NE(after.updated, before.updated);
    expected.updated = after.updated;
    EXPECT_EQ(after, expected);
}

} // namespace

TEST(WindowManagerPreferencesPage, ShowsTheRecordWithTheFirstZoneInTheEditor) {
    PageSetup s;
    const auto& zones = s.record().areas;
    EXPECT_EQ(s.listed(), QStringList({"Custom", "Left Half", "Right Half", "Top Half", "Bottom Half",
                                       "Top Left", "Top Right", "Bottom Left", "Bottom Right"}));
    EXPECT_EQ(s.page.selectedZoneId(), zones[0].id);
    EXPECT_EQ(s.page.zoneList()->currentRow(), 0);
    EXPECT_TRUE(s.page.windowSwitcherBox()->isChecked());
    EXPECT_TRUE(s.page.autoLayoutBox()->isChecked());
    EXPECT_EQ(s.page.spacingBox()->value(), 0.5);
    EXPECT_TRUE(s.page.shiftDisablesButton()->isChecked());
    EXPECT_FALSE(s.page.shiftEnablesButton()->isChecked());

    s.page.selectZone(zones[3].id);
    EXPECT_EQ(s.page.nameField()->text(), "Top Half");
    EXPECT_EQ(s.field(C::x)->text(), "0");
    EXPECT_EQ(s.field(C::h)->text(), "1/2");
    for (C c : {C::x, C::y, C::w, C::h})
        EXPECT_FALSE(s.marked(c));
    for (int kind = 0; kind < 4; ++kind)
        EXPECT_FALSE(s.page.screenKindBox(kind)->isChecked());
    EXPECT_TRUE(s.page.screenKindBox(4)->isChecked());
    EXPECT_EQ(s.page.screenKindBox(2)->text(), "Ultrawide (21/9)");
    EXPECT_EQ(s.page.screenKindBox(3)->text(), "Super ultrawide (32/9)");
    EXPECT_EQ(s.page.shortcutField()->existingShortcut(), zones[3].keyboardShortcut);
    EXPECT_TRUE(s.page.shortcutField()->requireModifier());
    EXPECT_TRUE(s.page.shortcutField()->canDisable());
    EXPECT_EQ(s.page.preview()->area().h, "1/2");
    EXPECT_TRUE(s.page.preview()->isValid());

    auto* help = s.page.findChild<QLabel*>("coordinateHelp");
    ASSERT_TRUE(help);
    EXPECT_EQ(help->text(),
              "Position and size range from\n0 to 1 and can be expressed as:\n\n• Decimal number, "
              "like 0.75\n• Percentage, like 75%\n• Fraction, like 3/4");
    QComboBox* templates = s.page.templateBox();
    EXPECT_EQ(templates->placeholderText(), "Choose a Template");
    EXPECT_EQ(templates->currentIndex(), -1);
    ASSERT_EQ(templates->count(), 14);
    EXPECT_EQ(templates->itemText(0), "Custom");
    EXPECT_EQ(templates->itemText(13), "Right Two Thirds");
}

TEST(WindowManagerPreferencesPage, EditsWriteAWholeRecordWithOnlyThatZoneChanged) {
    PageSetup s;
    QSignalSpy written(&s.prefs.windowManager, &CKValueObservableBase::valueChanged);
    WindowManagerPreferences before = s.record();
    s.page.selectZone(before.areas[2].id);

    retype(s.field(C::w), "1/3");
    WindowManagerPreferences expected = before;
    expected.areas[2].w = "1/3";
    expectOnlyChange(before, expected, s.record());
    EXPECT_EQ(written.count(), 1);

    before = s.record();
    retype(s.page.nameField(), "Right Third");
    expected = before;
    expected.areas[2].name = "Right Third";
    expectOnlyChange(before, expected, s.record());
    EXPECT_EQ(s.page.zoneList()->item(2)->text(), "Right Third");

    before = s.record();
    s.page.screenKindBox(4)->click();
    expected = before;
    expected.areas[2].availableOnVerticalScreen = true;
    expectOnlyChange(before, expected, s.record());

    // A field left as it was is no edit: nothing written, the stamp stays.
    written.clear();
    emit s.field(C::x)->editingFinished();
    emit s.page.nameField()->editingFinished();
    EXPECT_EQ(written.count(), 0);

    // A chord recorded in the field becomes the zone's shortcut.
    before = s.record();
    s.page.shortcutField()->openPopover();
    s.model.keyboardStep({TapEventType::FlagsChanged, ModifierMask::Command | ModifierMask::Shift, 0, false});
    s.model.keyboardStep({TapEventType::KeyDown, ModifierMask::Command | ModifierMask::Shift, 2, false});
    expected = before;
    expected.areas[2].keyboardShortcut = chord(Modifier::Command | Modifier::Shift, 2);
    expectOnlyChange(before, expected, s.record());
    EXPECT_EQ(s.page.shortcutField()->existingShortcut(), chord(Modifier::Command | Modifier::Shift, 2));
}

TEST(WindowManagerPreferencesPage, InvalidFieldIsMarkedAsTypedAndSavedAnyway) {
    PageSetup s;
    const WindowManagerPreferences before = s.record();

    // Marked at once, before anything is saved.
    retype(s.field(C::x), "1", false);
    EXPECT_TRUE(s.marked(C::x));
    EXPECT_FALSE(s.marked(C::y));
    EXPECT_FALSE(s.page.preview()->isValid());
    EXPECT_EQ(s.record(), before);

    QTest::keyClick(s.field(C::x), Qt::Key_Return);
    EXPECT_EQ(s.record().areas[0].x, "1");
    EXPECT_TRUE(s.marked(C::x));
    EXPECT_FALSE(s.page.zoneList()->item(0)->icon().isNull());

    // The rules differ by field: 0 is a position but no size, 100% a size but no position.
    retype(s.field(C::w), "0");
    EXPECT_TRUE(s.marked(C::w));
    EXPECT_EQ(s.record().areas[0].w, "0");
    retype(s.field(C::x), "0");
    retype(s.field(C::w), "100%");
    EXPECT_FALSE(s.marked(C::x));
    EXPECT_FALSE(s.marked(C::w));
    EXPECT_TRUE(s.page.preview()->isValid());
    EXPECT_TRUE(s.page.zoneList()->item(0)->icon().isNull());
    retype(s.field(C::y), "abc", false);
    EXPECT_TRUE(s.marked(C::y));
    retype(s.field(C::y), "", false);
    EXPECT_FALSE(s.marked(C::y));

    // Another zone's fields show their own state.
    retype(s.field(C::h), "3/0");
    s.page.selectZone(s.record().areas[1].id);
    EXPECT_FALSE(s.marked(C::h));
    s.page.selectZone(s.record().areas[0].id);
    EXPECT_TRUE(s.marked(C::h));
    EXPECT_EQ(s.field(C::h)->text(), "3/0");
}

TEST(WindowManagerPreferencesPage, TemplateGivesShapeAndKindsButKeepsIdAndShortcut) {
    PageSetup s;
    const WindowManagerPreferences before = s.record();
    const WindowArea topLeft = before.areas[5];
    s.page.selectZone(topLeft.id);

    QComboBox* templates = s.page.templateBox();
    ASSERT_EQ(templates->itemText(11), "Middle Third");
    emit templates->activated(11);

    WindowArea expected = zoneTemplates()[11];
    expected.id = topLeft.id;
    expected.keyboardShortcut = topLeft.keyboardShortcut;
    ASSERT_EQ(s.record().areas.size(), before.areas.size());
    EXPECT_EQ(s.record().areas[5], expected);
    EXPECT_FALSE(s.record().areas[5].availableOnVerticalScreen);
    EXPECT_EQ(s.record().areas[5].x, "1/3");
    EXPECT_NE(s.record().updated, before.updated);
    for (std::size_t i = 0; i < before.areas.size(); ++i) {
        if (i != 5) {
            EXPECT_EQ(s.record().areas[i], before.areas[i]);
        }
    }
    EXPECT_EQ(s.page.nameField()->text(), "Middle Third");
    EXPECT_FALSE(s.page.screenKindBox(4)->isChecked());
    EXPECT_EQ(templates->currentIndex(), -1);
}

TEST(WindowManagerPreferencesPage, AddsAndRemovesZones) {
    PageSetup s;
    const WindowManagerPreferences before = s.record();
    s.page.addButton()->click();

    ASSERT_EQ(s.record().areas.size(), 10u);
    const WindowArea added = s.record().areas.back();
    EXPECT_FALSE(added.id.isNull());
    for (const WindowArea& zone : before.areas)
        EXPECT_NE(added.id, zone.id);
    EXPECT_EQ(added.name, "New Zone");
    EXPECT_EQ(QStringList({added.x, added.y, added.w, added.h}), QStringList({"0", "0", "1/2", "1"}));
    EXPECT_TRUE(added.availableOnMacbookScreen && added.availableOnWideScreen &&
                added.availableOnUltrawideScreen && added.availableOnSuperUltrawideScreen &&
                added.availableOnVerticalScreen);
    EXPECT_FALSE(added.keyboardShortcut);
    EXPECT_NE(s.record().updated, before.updated);
    EXPECT_EQ(s.page.selectedZoneId(), added.id);
    EXPECT_EQ(s.page.zoneList()->currentRow(), 9);
    EXPECT_EQ(s.page.nameField()->text(), "New Zone");

    // The zone below takes the place of a removed one; at the end, the one above.
    s.page.selectZone(before.areas[3].id);
    double stamp = s.record().updated;
    s.page.removeButton()->click();
    ASSERT_EQ(s.record().areas.size(), 9u);
    EXPECT_EQ(s.record().areas[3].id, before.areas[4].id);
    EXPECT_NE(s.record().updated, stamp);
    EXPECT_EQ(s.page.selectedZoneId(), before.areas[4].id);
    EXPECT_EQ(s.page.nameField()->text(), "Bottom Half");

    s.page.selectZone(added.id);
    s.page.removeButton()->click();
    EXPECT_EQ(s.page.selectedZoneId(), before.areas[8].id);
    EXPECT_EQ(s.listed().size(), 8);

    while (!s.record().areas.empty())
        s.page.removeButton()->click();
    EXPECT_FALSE(s.page.selectedZoneId());
    EXPECT_FALSE(s.page.removeButton()->isEnabled());
    EXPECT_FALSE(s.page.editor()->isEnabled());
    EXPECT_TRUE(s.page.nameField()->text().isEmpty());
    s.page.addButton()->click();
    EXPECT_TRUE(s.page.editor()->isEnabled());
    EXPECT_EQ(s.listed(), QStringList({"New Zone"}));
}

TEST(WindowManagerPreferencesPage, SettingsWriteTheRecordWithoutTouchingTheZones) {
    PageSetup s;
    WindowManagerPreferences expected = s.record();

    s.page.windowSwitcherBox()->click();
    expected.enableWindowSwitcher = false;
    EXPECT_EQ(s.record(), expected);
    s.page.autoLayoutBox()->click();
    expected.enableAutoLayout = false;
    EXPECT_EQ(s.record(), expected);
    s.page.spacingBox()->setValue(1.5);
    expected.spacing = 1.5;
    EXPECT_EQ(s.record(), expected);
    EXPECT_EQ(s.page.spacingBox()->maximum(), 5);
    EXPECT_EQ(s.page.spacingBox()->singleStep(), 0.1);
    s.page.shiftEnablesButton()->click();
    expected.shiftEnablesDragging = true;
    EXPECT_EQ(s.record(), expected);
    s.page.shiftDisablesButton()->click();
    expected.shiftEnablesDragging = false;
    EXPECT_EQ(s.record(), expected);
}

// Mouse snapping is this machine's choice: switched off, the Shift rule no longer applies and is greyed.
TEST(WindowManagerPreferencesPage, MouseSnappingIsSwitchedOnThisMachineOnly) {
    PageSetup s;
    const WindowManagerPreferences before = s.record();
    ASSERT_TRUE(s.page.mouseSnappingBox()->isChecked());
    s.page.mouseSnappingBox()->click();
    EXPECT_FALSE(s.prefs.local.mouseSnappingEnabled());
    EXPECT_FALSE(s.page.shiftEnablesButton()->isEnabled());
    EXPECT_EQ(s.record(), before);               // nothing synchronised changed
    s.prefs.local.setMouseSnappingEnabled(true); // from the command line
    EXPECT_TRUE(s.page.mouseSnappingBox()->isChecked());
    EXPECT_TRUE(s.page.shiftEnablesButton()->isEnabled());
}

TEST(WindowManagerPreferencesPage, FollowsRecordsFromElsewhereKeepingTheSelectedZone) {
    PageSetup s;
    WindowManagerPreferences synced = s.record();
    const QUuid bottomLeft = synced.areas[7].id;
    s.page.selectZone(bottomLeft);

    WindowArea first = factoryZones()[0];
    first.name = "Synced";
    synced.areas.insert(synced.areas.begin(), first);
    synced.areas[8].name = "Lower Left";
    synced.areas[8].y = "60%";
    synced.enableAutoLayout = false;
    synced.spacing = 2;
    synced.shiftEnablesDragging = true;
    s.prefs.windowManager.setValue(synced);

    EXPECT_EQ(s.listed().front(), "Synced");
    EXPECT_EQ(s.page.selectedZoneId(), bottomLeft);
    EXPECT_EQ(s.page.zoneList()->currentRow(), 8);
    EXPECT_EQ(s.page.nameField()->text(), "Lower Left");
    EXPECT_EQ(s.field(C::y)->text(), "60%");
    EXPECT_EQ(s.page.preview()->area().y, "60%");
    EXPECT_FALSE(s.page.autoLayoutBox()->isChecked());
    EXPECT_EQ(s.page.spacingBox()->value(), 2);
    EXPECT_TRUE(s.page.shiftEnablesButton()->isChecked());
    // Showing it wrote nothing back.
    EXPECT_EQ(s.record(), synced);

    // The selected zone gone elsewhere: its neighbour is shown.
    synced.areas.erase(synced.areas.begin() + 8);
    s.prefs.windowManager.setValue(synced);
    EXPECT_EQ(s.page.selectedZoneId(), synced.areas[8].id);
    EXPECT_EQ(s.page.nameField()->text(), "Bottom Right");
}

TEST(WindowManagerPreferencesPage, ADeletedZoneOrTheRestoredDefaultsCanBeUndone) {
    PageSetup s;
    const WindowManagerPreferences before = s.record();
    s.page.selectZone(before.areas[2].id);
    s.page.removeButton()->click();
    ASSERT_EQ(s.record().areas.size(), 8u);
    EXPECT_FALSE(s.page.undoBar()->isHidden());
    EXPECT_EQ(s.page.undoBar()->text()->text(), "Deleted zone “Right Half”.");
    s.page.undoBar()->undoButton()->click();
    EXPECT_EQ(s.record().areas, before.areas); // back in its place, with its id and chord
    EXPECT_EQ(s.page.selectedZoneId(), before.areas[2].id);
    EXPECT_TRUE(s.page.undoBar()->isHidden());

    // Another edit after a delete ends the offer.
    s.page.removeButton()->click();
    s.page.addButton()->click();
    EXPECT_TRUE(s.page.undoBar()->isHidden());

    // The factory zones come back, except a chord a global action has taken meanwhile; undo restores
    // the user's own list.
    auto bindings = s.prefs.keyboardBindings.value();
    bindings.windowManagerCenterWindow = before.areas[1].keyboardShortcut; // Super+Alt+Left
    s.prefs.keyboardBindings.setValue(bindings);
    const auto edited = s.record().areas;
    s.page.restoreButton()->click();
    ASSERT_EQ(s.record().areas.size(), before.areas.size());
    for (std::size_t i = 0; i < before.areas.size(); ++i) {
        EXPECT_EQ(s.record().areas[i].name, before.areas[i].name);
        EXPECT_EQ(s.record().areas[i].keyboardShortcut,
                  i == 1 ? std::nullopt : before.areas[i].keyboardShortcut);
    }
    EXPECT_FALSE(shortcutsProblem(s.prefs.keyboardBindings.value(), s.record().areas));
    s.page.undoBar()->undoButton()->click();
    EXPECT_EQ(s.record().areas, edited);
}

TEST(WindowManagerPreferencesPage, AZoneShortcutTakesAGlobalChordOnlyWhenTheUserSaysReplace) {
    PageSetup s;
    const WindowManagerPreferences before = s.record();
    s.page.selectZone(before.areas[5].id); // Top Left, Super+Alt+U
    KeyboardShortcutField* field = s.page.shortcutField();
    const auto press = [&](std::uint64_t mask, std::uint16_t key) {
        s.model.keyboardStep({TapEventType::FlagsChanged, mask, 0, false});
        s.model.keyboardStep({TapEventType::KeyDown, mask, key, false});
        s.model.keyboardStep({TapEventType::KeyUp, mask, key, false});
        s.model.keyboardStep({TapEventType::FlagsChanged, 0, 0, false});
    };
    const auto superAlt = ModifierMask::Control | ModifierMask::Option;

    // Another zone's chord is shared without a question: pressing it cycles between the two.
    field->openPopover();
    press(superAlt, 124);
    EXPECT_FALSE(field->isPopoverShown());
    EXPECT_EQ(s.record().areas[5].keyboardShortcut, before.areas[2].keyboardShortcut);
    EXPECT_EQ(s.record().areas[2].keyboardShortcut, before.areas[2].keyboardShortcut);

    // Shift+U would eat typing; Super+Alt+C belongs to Center Window and is only taken on Replace.
    field->openPopover();
    press(ModifierMask::Shift, 32);
    EXPECT_TRUE(field->popoverMessage()->text().contains("ordinary typing"));
    press(superAlt, 8);
    EXPECT_EQ(field->popoverMessage()->text(), "Super+Alt+C is already used by Center Window.");
    field->popover()->findChild<QPushButton*>("replace")->click();
    EXPECT_EQ(s.record().areas[5].keyboardShortcut, chord(Modifier::Control | Modifier::Alt, 8));
    EXPECT_FALSE(s.prefs.keyboardBindings.value().windowManagerCenterWindow);
    EXPECT_FALSE(shortcutsProblem(s.prefs.keyboardBindings.value(), s.record().areas));
}
