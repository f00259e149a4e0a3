#include "ui/clipboard/ClipboardHistoryWindow.h"
#include "app/UserPreferences.h"
#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardPaster.h"
#include "clipboard/ClipboardSearchModel.h"
#include "platform/fake/FakePlatform.h"
#include "ui/clipboard/ClipboardHistoryListModel.h"
#include "ui/clipboard/ClipboardRowText.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

// A history of `count` texts "entry 0" (oldest) ... and the window over it.
struct Window {
    FakePlatform fake;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{*fake.defaults, log};
    QTemporaryDir dir;
    AppModelContainer store{dir.path()};
    ClipboardPaster paster{*fake.inputTap, *fake.workspace, [] { return false; }};
    ClipboardHistory actions{store, *fake.pasteboard, nullptr, paster, fake.opener};
    ClipboardSearchModel search{store};
    std::unique_ptr<ClipboardHistoryWindow> window;

    explicit Window(int count) {
        EXPECT_TRUE(store.open());
        for (int i = 0; i < count; ++i) {
            SimpleClipboardItem item;
            item.timestamp = 1'700'000'000'000 + i;
            item.plainText = QString("entry %1").arg(i);
            item.sourceAppName = i % 2 ? "Editor" : "Browser";
            EXPECT_TRUE(store.persistItem(item));
        }
        search.start();
        EXPECT_TRUE(QTest::qWaitFor([this] { return search.isReady(); }));
        fake.workspace->focused = FocusedWindow{42, "editor", "Editor"};
        window = std::make_unique<ClipboardHistoryWindow>(
            store, actions, [this](const QString& text) { return search.setText(text); }, nullptr,
            *fake.workspace, *fake.screens, prefs, *fake.platform.keyboardLayout,
            [] { return 1'700'000'100'000; });
    }
    QString text(int row) const { return window->entry(row)->plainText.value_or(""); }
    void press(Qt::Key key, const QString& text = {}) {
        QWidget* focus = QApplication::focusWidget() ? QApplication::focusWidget() : window->panel();
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(focus, &event);
    }
};

} // namespace

TEST(ClipboardHistoryWindow, ListsAPageAtATimeAndLoadsMoreAsTheSelectionMovesOn) {
    Window w(100);
    w.window->open();
    ASSERT_TRUE(w.window->isOpen());
    EXPECT_EQ(w.window->rowCount(), ClipboardHistoryListModel::kPageSize);
    EXPECT_EQ(w.text(0), "entry 99");
    EXPECT_EQ(w.window->selectedRow(), 0);
    for (int i = 0; i < ClipboardHistoryListModel::kPageSize; ++i)
        w.window->trigger(KeyboardAppAction::clipboardNext);
    EXPECT_EQ(w.window->selectedRow(), ClipboardHistoryListModel::kPageSize);
    EXPECT_EQ(w.window->rowCount(), 2 * ClipboardHistoryListModel::kPageSize);
    w.window->trigger(KeyboardAppAction::clipboardPrevious);
    EXPECT_EQ(w.window->selectedRow(), ClipboardHistoryListModel::kPageSize - 1);
}

TEST(ClipboardHistoryWindow, TypingSearchesAndTheListFollowsCapturesAndDeletions) {
    Window w(30);
    w.window->open();
    // A letter that is no key of the history starts the search.
    w.press(Qt::Key_2, "2");
    EXPECT_EQ(w.window->searchText(), "2");
    EXPECT_EQ(w.window->rowCount(), 12); // entry 2, 12 and entry 20..29
    w.press(Qt::Key_9, "9");
    EXPECT_EQ(w.window->searchText(), "29");
    ASSERT_EQ(w.window->rowCount(), 1);

    SimpleClipboardItem fresh;
    fresh.timestamp = 1'700'000'000'500;
    fresh.plainText = "entry 129";
    ASSERT_TRUE(w.store.persistItem(fresh));
    ASSERT_EQ(w.window->rowCount(), 2);
    EXPECT_EQ(w.text(0), "entry 129");

    // Deleting the selected entry keeps a row selected.
    w.window->trigger(KeyboardAppAction::clipboardDelete);
    EXPECT_EQ(w.window->rowCount(), 1);
    EXPECT_EQ(w.window->selectedRow(), 0);
    w.window->trigger(KeyboardAppAction::clipboardDelete);
    EXPECT_EQ(w.window->rowCount(), 0);
    EXPECT_TRUE(w.window->panel()->findChild<QLabel*>("clipboardHistoryEmpty")->isVisible());
    EXPECT_EQ(w.store.count(), 29);

    // Escape clears the search before it closes the window.
    w.press(Qt::Key_Escape);
    EXPECT_TRUE(w.window->isOpen());
    EXPECT_EQ(w.window->rowCount(), ClipboardHistoryListModel::kPageSize);
    w.press(Qt::Key_Escape);
    EXPECT_FALSE(w.window->isOpen());
}

TEST(ClipboardHistoryWindow, OpensAgainAsNewWithWhatWasCopiedWhileItWasClosed) {
    Window w(30);
    w.window->open();
    QWidget* panel = w.window->panel();
    w.press(Qt::Key_2, "2");
    w.window->trigger(KeyboardAppAction::clipboardNext);
    ASSERT_EQ(w.window->rowCount(), 12);
    w.window->close();

    SimpleClipboardItem fresh;
    fresh.timestamp = 1'700'000'000'500;
    fresh.plainText = "copied while closed";
    ASSERT_TRUE(w.store.persistItem(fresh));
    ASSERT_TRUE(w.store.deleteItem(w.store.items(1, 1).front().id)); // "entry 29"

    w.window->open();
    EXPECT_EQ(w.window->panel(), panel); // the same panel, shown again
    EXPECT_EQ(w.window->searchText(), "");
    EXPECT_EQ(panel->findChild<QLineEdit*>("clipboardHistorySearch")->text(), "");
    EXPECT_EQ(w.window->rowCount(), ClipboardHistoryListModel::kPageSize);
    EXPECT_EQ(w.window->selectedRow(), 0);
    EXPECT_EQ(w.text(0), "copied while closed");
    EXPECT_EQ(w.text(1), "entry 28");
}

TEST(ClipboardHistoryWindow, PasteGoesToTheWindowInFrontWhenItOpenedAndClosesIt) {
    Window w(3);
    w.window->open();
    w.window->trigger(KeyboardAppAction::clipboardNext);
    w.window->trigger(KeyboardAppAction::clipboardPastePlainText);
    EXPECT_FALSE(w.window->isOpen());
    ASSERT_EQ(w.fake.pasteboard->written.size(), 1u);
    EXPECT_EQ(*w.fake.pasteboard->written[0][0].data(PasteboardType::string), "entry 1");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !w.fake.inputTap->posted.empty(); }));
}

TEST(ClipboardHistoryWindow, AnEmptyHistorySaysSo) {
    Window w(0);
    w.window->open();
    EXPECT_EQ(w.window->rowCount(), 0);
    auto* empty = w.window->panel()->findChild<QLabel*>("clipboardHistoryEmpty");
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->text().startsWith("Nothing copied yet."));
    w.window->trigger(KeyboardAppAction::clipboardPasteOriginal); // nothing to paste: nothing happens
    EXPECT_TRUE(w.fake.pasteboard->written.empty());
}

TEST(ClipboardRowText, AMatchPastTheFirstLinesIsShownInItsContext) {
    SimpleClipboardItem e;
    e.plainText = "Dear team,\n\nthe numbers are in.\nThe WEATHER report for Monday\nends here";
    // From the line of the first match, whatever its case.
    EXPECT_EQ(clipboardRowSnippet(e, "weather", 2),
              QString::fromUtf8("…The WEATHER report for Monday\nends here"));
    // A match the first lines show, none in the text (the entry matched by its application) and a
    // match only by a lone accent's base letter: nothing to show instead.
    EXPECT_EQ(clipboardRowSnippet(e, "dear", 2), "");
    EXPECT_EQ(clipboardRowSnippet(e, "firefox", 2), "");
    e.plainText = QString::fromUtf8("cafe\u0301 and more\ncafe\u0301");
    EXPECT_EQ(clipboardRowSnippet(e, "cafe", 2), "");

    // Deep into a long line: a word or so before the match, and never half a character.
    const QString words = QString("lorem ipsum ").repeated(40);
    e.plainText = words + "needle";
    EXPECT_EQ(clipboardRowSnippet(e, "needle", 1), QString::fromUtf8("…ipsum lorem ipsum needle"));
    e.plainText = QString("x").repeated(201) + QString::fromUtf8("😀").repeated(20) + "needle";
    const QString emoji = clipboardRowSnippet(e, "NEEDLE", 1);
    EXPECT_TRUE(emoji.endsWith("needle"));
    EXPECT_FALSE(emoji.at(1).isLowSurrogate());
}

TEST(ClipboardRowText, WhitespaceStaysVisibleAndAgesReadNaturally) {
    SimpleClipboardItem e;
    e.plainText = "\n\n  first\tline  \n\n\nsecond\nthird";
    EXPECT_EQ(clipboardRowText(e, 2), "  first    line\nsecond");
    EXPECT_EQ(clipboardRowText(e, 1), "  first    line");
    e.plainText = "  \n\t";
    EXPECT_EQ(clipboardRowText(e, 2), QString::fromUtf8("··↵→"));
    e.plainText.reset();
    e.fileURL = "file:///home/u/Documents/report%202026.pdf";
    EXPECT_EQ(clipboardRowText(e, 2), "report 2026.pdf");
    EXPECT_EQ(clipboardRowDetail(e), "/home/u/Documents");

    const qint64 now = QDateTime(QDate(2026, 11, 23), QTime(12, 0)).toMSecsSinceEpoch();
    EXPECT_EQ(clipboardAgeText(now, now - 5'000), "now");
    EXPECT_EQ(clipboardAgeText(now, now - 125'000), "2 min ago");
    EXPECT_EQ(clipboardAgeText(now, now - 3 * 3'600'000), "3 h ago");
    EXPECT_EQ(clipboardAgeText(now, now - 24 * 3'600'000), "yesterday");
    EXPECT_EQ(clipboardAgeText(now, now - 4 * 24 * 3'600'000), "4 days ago");
    EXPECT_EQ(clipboardAgeText(now, now + 60'000), "now"); // a clock set back
}
