// The window switcher over the fake desktop: what it lists, where the selection goes, and when letting
// go of the shortcut's modifier picks a window.
#include "ui/windowmanager/WindowSwitcher.h"
#include "app/KeyboardShortcutModel.h"
#include "platform/fake/FakePlatform.h"
#include "windowmanager/WindowsCache.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct Desk {
    FakePlatform fake;
    qint64 now = 1000;
    WindowsCache cache{*fake.platform.windowServer, 1, [this] { return now; }};
    KeyboardShortcutModel keys{nullptr, nullptr};
    WindowSwitcher switcher{cache, *fake.platform.accessibility,  *fake.platform.screens, fake.workspace,
                            keys,  *fake.platform.keyboardLayout, [] { return 400.0; }};

    Desk() {
        fake.desktop.frontmostPid = 100;
        fake.desktop.spaces = {1};
    }
    // Windows are named by id: adding one may move the others in memory.
    quint32 window(const QString& app, const QString& title, quint64 space = 0) {
        const quint32 id = quint32(fake.desktop.windows.size() + 1);
        const double offset = 20.0 * id;
        fake.desktop.add({id, qint32(100 + id), app, title, {offset, offset, 400, 300}, {}, 0, space});
        return id;
    }
    // Focus history as the cache's tick would have sampled it, oldest first.
    void focusHistory(std::initializer_list<quint32> ids) {
        for (const quint32 id : ids) {
            now += 1000;
            cache.recordFocus(id);
        }
    }
    std::vector<quint32> rowIds() const {
        std::vector<quint32> ids;
        for (const auto& w : switcher.rows())
            ids.push_back(w.id);
        return ids;
    }
    quint32 selectedId() const { return switcher.rows().at(std::size_t(switcher.selectedIndex())).id; }
    QLineEdit* field() const { return switcher.panel()->findChild<QLineEdit*>("windowSwitcherSearch"); }
    QListWidget* list() const { return switcher.panel()->findChild<QListWidget*>("windowSwitcherList"); }
    void modifiers(std::uint64_t mask) { keys.keyboardStep({TapEventType::FlagsChanged, mask, 0, false}); }
    void key(int type, std::uint16_t code, std::uint64_t mask) {
        keys.keyboardStep({type, mask, code, false});
    }
};

using Ids = std::vector<quint32>;

} // namespace

TEST(WindowSwitcher, ListsTheCurrentSpacesInFocusOrderInACentredPanel) {
    Desk d;
    const auto editor = d.window("Editor", "notes.txt");
    const auto browser = d.window("Browser", "Docs", 1);
    d.window("Mail", "Inbox", 7); // another space
    const auto terminal = d.window("Terminal", "~");
    d.focusHistory({terminal, editor, browser});

    d.switcher.open(false);
    ASSERT_TRUE(d.switcher.isOpen());
    EXPECT_EQ(d.rowIds(), (Ids{browser, editor, terminal}));
    ASSERT_EQ(d.list()->count(), 3);
    EXPECT_EQ(d.list()->item(0)->text(), QString::fromUtf8("Browser — Docs"));
    EXPECT_EQ(d.field()->placeholderText(), "Search windows");

    // 400 wide, centred in the 1440 x 875 area below the 25-point panel.
    const QRect g = d.switcher.panel()->geometry();
    EXPECT_EQ(g.width(), 400);
    EXPECT_EQ(g.x(), 520);
    EXPECT_NEAR(g.y() + g.height() / 2.0, 25 + 875 / 2.0, 1);
    EXPECT_GT(g.height(), 3 * d.list()->sizeHintForRow(0));
    d.switcher.close();
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_TRUE(d.switcher.rows().empty());

    // Many windows: the panel stops at 60% of the usable height and the list scrolls.
    for (int i = 0; i < 60; ++i)
        d.window("App", QString("window %1").arg(i));
    d.switcher.open(false);
    EXPECT_EQ(d.switcher.rows().size(), 63u);
    EXPECT_LE(d.switcher.panel()->height(), 0.6 * 875);
    EXPECT_NEAR(d.switcher.panel()->geometry().center().y(), 25 + 875 / 2.0, 1);
}

TEST(WindowSwitcher, SelectionStartsOnThePreviousWindowAndStepsWithWrapping) {
    Desk d;
    const auto a = d.window("A", "a"), b = d.window("B", "b"), c = d.window("C", "c");
    d.focusHistory({c, b, a}); // order a, b, c

    d.switcher.open(false);
    EXPECT_EQ(d.switcher.selectedIndex(), 1);
    EXPECT_EQ(d.list()->currentRow(), 1);
    d.switcher.open(false);
    EXPECT_EQ(d.selectedId(), c);
    d.switcher.open(false);
    EXPECT_EQ(d.selectedId(), a);
    d.switcher.open(true);
    EXPECT_EQ(d.selectedId(), c);
    EXPECT_EQ(d.list()->currentRow(), 2);

    // The panel's own keys: Down and Tab forward, Up and Shift+Tab back, all wrapping.
    QTest::keyClick(d.field(), Qt::Key_Down);
    EXPECT_EQ(d.selectedId(), a);
    QTest::keyClick(d.field(), Qt::Key_Up);
    EXPECT_EQ(d.selectedId(), c);
    QTest::keyClick(d.field(), Qt::Key_Tab);
    QTest::keyClick(d.field(), Qt::Key_Tab);
    EXPECT_EQ(d.selectedId(), b);
    QTest::keyClick(d.field(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(d.selectedId(), a);
    EXPECT_TRUE(d.switcher.isOpen()); // Tab stays in the panel
    QTest::keyClick(d.field(), Qt::Key_Escape);
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_TRUE(d.fake.desktop.calls.isEmpty());

    // Select Previous Window starts on the last row; a single window is selected either way.
    d.switcher.open(true);
    EXPECT_EQ(d.switcher.selectedIndex(), 2);
    d.switcher.close();
    d.fake.desktop.windows.resize(1);
    d.switcher.open(false);
    EXPECT_EQ(d.switcher.selectedIndex(), 0);
    d.switcher.open(false);
    EXPECT_EQ(d.switcher.selectedIndex(), 0);
    d.switcher.close();

    // Nothing to list: nothing selected, and choosing only closes.
    d.fake.desktop.windows.clear();
    d.switcher.open(false);
    EXPECT_EQ(d.switcher.selectedIndex(), -1);
    d.switcher.open(true);
    EXPECT_EQ(d.switcher.selectedIndex(), -1);
    d.switcher.choose();
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_TRUE(d.fake.desktop.calls.isEmpty());
}

TEST(WindowSwitcher, ChoosingFocusesRaisesAndPutsTheWindowFirst) {
    Desk d;
    const auto a = d.window("A", "a"), b = d.window("B", "b"), c = d.window("C", "c");
    d.focusHistory({c, b, a});

    d.switcher.open(false);
    d.now += 1000;
    QTest::keyClick(d.field(), Qt::Key_Return);
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_EQ(d.fake.desktop.calls,
              QStringList({QString("focus %1 activate").arg(b), QString("raise %1").arg(b)}));

    // Recorded at once: the next opening lists it first and offers the one that was current before.
    d.switcher.open(false);
    EXPECT_EQ(d.rowIds(), (Ids{b, a, c}));
    EXPECT_EQ(d.selectedId(), a);

    // A click on a row chooses that row.
    d.fake.desktop.calls.clear();
    QApplication::processEvents();
    QListWidget* list = d.list();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(2)).center());
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_EQ(d.fake.desktop.calls.value(0), QString("focus %1 activate").arg(c));
}

TEST(WindowSwitcher, TypingFiltersCaseInsensitivelyAndResetsTheSelection) {
    Desk d;
    const auto editor = d.window("Editor", "notes.txt");
    const auto browser = d.window("Browser", "Editor tips");
    const auto docs = d.window("Browser", "Docs");
    d.focusHistory({docs, browser, editor});

    d.switcher.open(false);
    d.switcher.open(false);
    EXPECT_EQ(d.switcher.selectedIndex(), 2);
    QTest::keyClicks(d.field(), "EDIT");
    EXPECT_EQ(d.rowIds(), (Ids{editor, browser})); // by program as well as by title
    EXPECT_EQ(d.switcher.selectedIndex(), 0);
    EXPECT_EQ(d.list()->count(), 2);
    EXPECT_EQ(d.list()->currentRow(), 0);

    // The program and the title are matched as one "App - Title" string.
    d.field()->clear();
    QTest::keyClicks(d.field(), "browser - d");
    EXPECT_EQ(d.rowIds(), (Ids{docs}));
    d.field()->clear();
    EXPECT_EQ(d.rowIds(), (Ids{editor, browser, docs}));

    // A printable key that reaches the panel itself still goes to the search field.
    d.field()->clearFocus();
    QTest::keyClick(d.switcher.panel(), Qt::Key_W);
    EXPECT_EQ(d.field()->text(), "w");

    // No match: Return only closes.
    QTest::keyClicks(d.field(), "zzz");
    EXPECT_TRUE(d.switcher.rows().empty());
    EXPECT_EQ(d.switcher.selectedIndex(), -1);
    QTest::keyClick(d.field(), Qt::Key_Return);
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_TRUE(d.fake.desktop.calls.isEmpty());

    // The filter does not survive closing.
    d.switcher.open(false);
    EXPECT_EQ(d.switcher.rows().size(), 3u);
    EXPECT_TRUE(d.field()->text().isEmpty());
}

TEST(WindowSwitcher, LettingGoOfTheModifierChoosesOnlyWhenItWasHeldAtOpening) {
    Desk d;
    const auto a = d.window("A", "a"), b = d.window("B", "b"), c = d.window("C", "c");
    d.focusHistory({c, b, a});

    // Alt+Tab, Tab again, then Alt released: the third window.
    d.modifiers(ModifierMask::Option);
    d.key(TapEventType::KeyDown, KeyCode::Tab, ModifierMask::Option);
    d.switcher.open(false);
    d.key(TapEventType::KeyUp, KeyCode::Tab, ModifierMask::Option);
    d.key(TapEventType::KeyDown, KeyCode::Tab, ModifierMask::Option);
    d.switcher.open(false);
    d.key(TapEventType::KeyUp, KeyCode::Tab, ModifierMask::Option);
    EXPECT_TRUE(d.switcher.isOpen());
    d.modifiers(0);
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_EQ(d.fake.desktop.calls.value(0), QString("focus %1 activate").arg(c));

    // Alt+Shift+Tab: letting go of Shift first keeps the panel open until Alt goes too.
    d.fake.desktop.calls.clear();
    d.modifiers(ModifierMask::Option | ModifierMask::Shift);
    d.switcher.open(true);
    d.modifiers(ModifierMask::Option);
    EXPECT_TRUE(d.switcher.isOpen());
    d.modifiers(0);
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_EQ(d.fake.desktop.calls.size(), 2);

    // Opened with nothing held (from the command line): neither a later press nor a release chooses.
    d.fake.desktop.calls.clear();
    d.switcher.open(false);
    d.modifiers(ModifierMask::Option);
    d.modifiers(0);
    EXPECT_TRUE(d.switcher.isOpen());
    d.switcher.close();

    // A release that came before the opening does not count.
    d.modifiers(ModifierMask::Option);
    d.modifiers(0);
    d.switcher.open(false);
    d.key(TapEventType::KeyUp, KeyCode::Tab, 0);
    EXPECT_TRUE(d.switcher.isOpen());
    d.switcher.close();

    // Typing with the modifier held narrows the list; letting go chooses the first match.
    d.modifiers(ModifierMask::Option);
    d.switcher.open(false);
    QTest::keyClicks(d.field(), "b");
    ASSERT_EQ(d.rowIds(), Ids({b}));
    d.modifiers(0);
    EXPECT_FALSE(d.switcher.isOpen());
    EXPECT_EQ(d.fake.desktop.calls.value(0), QString("focus %1 activate").arg(b));
    d.fake.desktop.calls.clear();

    // Asking for the search field hands the choice to Return.
    d.modifiers(ModifierMask::Option);
    d.switcher.open(false);
    d.switcher.search();
    d.modifiers(0);
    EXPECT_TRUE(d.switcher.isOpen());
    d.switcher.close();
    EXPECT_TRUE(d.fake.desktop.calls.isEmpty());

    // The search action opens the panel by itself too.
    d.switcher.search();
    EXPECT_TRUE(d.switcher.isOpen());
    EXPECT_EQ(d.switcher.rows().size(), 3u);
}

TEST(WindowSwitcher, RowsShowTheApplicationsIconsAndAnEmptyListSaysSo) {
    Desk d;
    d.switcher.open(false);
    const auto* empty = d.switcher.panel()->findChild<QLabel*>("windowSwitcherEmpty");
    ASSERT_TRUE(empty);
    EXPECT_FALSE(empty->isHidden());
    EXPECT_EQ(empty->text(), "No windows on this desktop");
    d.switcher.close();

    const auto a = d.window("Editor", "notes.txt");
    d.window("Terminal", "~");
    QImage icon(24, 24, QImage::Format_ARGB32);
    icon.fill(Qt::red);
    d.fake.workspace->icons.insert(a, icon);
    d.switcher.open(false);
    empty = d.switcher.panel()->findChild<QLabel*>("windowSwitcherEmpty"); // each opening builds anew
    EXPECT_TRUE(empty->isHidden());
    ASSERT_EQ(d.list()->count(), 2);
    QImage shown;
    for (int row = 0; row < 2; ++row)
        if (d.list()->item(row)->data(Qt::UserRole).toString() == "Editor")
            shown = d.list()->item(row)->data(Qt::UserRole + 2).value<QImage>();
    EXPECT_EQ(shown, icon);

    QTest::keyClicks(d.field(), "zebra");
    EXPECT_FALSE(empty->isHidden());
    EXPECT_TRUE(d.list()->isHidden());
    EXPECT_EQ(empty->text(), "No window matches “zebra”");
}

TEST(WindowSwitcher, KeepsTheSelectedWindowWhenTheListChangesWhileOpen) {
    Desk d;
    const auto a = d.window("A", "a"), b = d.window("B", "b");
    d.focusHistory({b, a});
    d.switcher.open(false);
    EXPECT_EQ(d.selectedId(), b);

    // A window appears and was focused last: it goes first, the selection stays on b.
    const auto c = d.window("C", "c");
    d.focusHistory({c});
    d.cache.refresh();
    EXPECT_EQ(d.rowIds(), (Ids{c, a, b}));
    EXPECT_EQ(d.selectedId(), b);
    EXPECT_EQ(d.list()->currentRow(), 2);

    // The selected window goes away: the selection stays in range.
    d.fake.desktop.windows.erase(d.fake.desktop.windows.begin() + 1); // b
    d.cache.refresh();
    EXPECT_EQ(d.rowIds(), (Ids{c, a}));
    EXPECT_EQ(d.switcher.selectedIndex(), 1);
    d.switcher.choose();
    EXPECT_EQ(d.fake.desktop.calls.value(0), QString("focus %1 activate").arg(a));
}
