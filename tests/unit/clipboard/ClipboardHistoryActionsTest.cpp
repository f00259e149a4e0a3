#include "app/UserPreferences.h"
#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardHistoryDataModel.h"
#include "clipboard/ClipboardPaster.h"
#include "clipboard/ClipboardSearchModel.h"
#include "clipboard/PasteboardItemsOfRecord.h"
#include "platform/fake/FakePlatform.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmora;
namespace T = PasteboardType;

namespace {

PasteboardItem item(std::initializer_list<std::pair<QString, QByteArray>> representations) {
    PasteboardItem i;
    for (const auto& [type, bytes] : representations)
        i.add(type, bytes);
    return i;
}

std::vector<QString> typesOf(const std::vector<PasteboardItem>& items) {
    return items.empty() ? std::vector<QString>{} : items.front().types();
}

// The history with its watcher, its actions and a focused text editor to paste into.
struct Actions {
    FakePlatform fake;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{*fake.defaults, log};
    QTemporaryDir dir;
    AppModelContainer store{dir.path()};
    qint64 now = 1'700'000'000'000;
    std::unique_ptr<ClipboardHistoryDataModel> watcher;
    bool ownWindowFocused = false;
    ClipboardPaster paster{*fake.inputTap, *fake.workspace, [this] { return ownWindowFocused; }};
    std::unique_ptr<ClipboardHistory> history;
    int closed = 0;

    Actions() {
        fake.workspace->frontmost =
            FrontmostApplication{{"org.example.Editor", {}, "Editor", QImage()}, "notes"};
        fake.workspace->focused = FocusedWindow{42, "editor", "Editor"};
        EXPECT_TRUE(store.open());
        watcher = std::make_unique<ClipboardHistoryDataModel>(*fake.pasteboard, *fake.workspace, nullptr,
                                                              store, prefs, [this] { return now; });
        watcher->start();
        history =
            std::make_unique<ClipboardHistory>(store, *fake.pasteboard, watcher.get(), paster, fake.opener);
        history->closeWindow = [this] { ++closed; };
    }
    SimpleClipboardItem copy(std::vector<PasteboardItem> items) {
        now += 1000;
        fake.pasteboard->set(std::move(items));
        EXPECT_TRUE(QTest::qWaitFor([this] { return watcher->pending() == 0; }, 5000));
        return *store.mostRecent();
    }
};

} // namespace

TEST(ClipboardHistoryActions, PasteWritesEveryRepresentationInOrderAndTypesCtrlVWithoutANewEntry) {
    Actions a;
    QImage image(4, 2, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    const auto entry = a.copy({item({{T::string, "caption"},
                                     {T::html, "<b>caption</b>"},
                                     {T::jpeg, "jpeg-bytes"},
                                     {T::png, png},
                                     {T::tiff, "tiff-bytes"}})});
    const int before = a.store.count();

    a.history->perform(entry, clipboardaction::Paste{}, 42);
    EXPECT_EQ(a.closed, 1);
    ASSERT_FALSE(a.fake.pasteboard->written.empty());
    const auto types = typesOf(a.fake.pasteboard->written.back());
    // Only the first image rendering is read from X owners, so what is stored is written back.
    ASSERT_GE(types.size(), 3u);
    EXPECT_EQ(types[0], T::string);
    EXPECT_EQ(types[1], T::html);
    ASSERT_EQ(a.fake.inputTap->posted.size(), 1u);
    EXPECT_TRUE(a.fake.inputTap->posted[0].command);
    EXPECT_FALSE(a.fake.inputTap->posted[0].shift);
    EXPECT_EQ(a.fake.inputTap->posted[0].keyCode, 9);
    // The write is a clipboard change, but it is consumed without an entry; the user's next copy is not.
    QTest::qWait(50);
    EXPECT_EQ(a.store.count(), before);
    a.copy({item({{T::string, "later"}})});
    EXPECT_EQ(a.store.count(), before + 1);
}

TEST(ClipboardHistoryActions, WriteOrderOfAnImageEntryIsPngTiffJpeg) {
    SimpleClipboardItem r;
    r.plainText = "t";
    r.fileURL = "file:///tmp/x.png";
    r.payload = SimpleClipboardPayload{};
    r.payload->set(T::jpeg, QByteArray("j"));
    r.payload->set(T::pdf, QByteArray("p"));
    r.payload->set(T::tiff, QByteArray("t"));
    r.payload->set(T::png, QByteArray("p"));
    r.html = "<i>t</i>";
    r.rtf = "{\\rtf1 t}";
    r.url = "https://example.org";
    r.color = "c";
    r.tabularText = "a\tb";
    EXPECT_EQ(typesOf(pasteboardItems(r)), (std::vector<QString>{T::string, T::html, T::rtf, T::png, T::tiff,
                                                                 T::jpeg, T::fileURL, T::pdf}));
    EXPECT_EQ(typesOf(pasteboardItems(r, true)), (std::vector<QString>{T::string}));
}

TEST(ClipboardHistoryActions, PlainTextOfAUrlOnlyEntryIsTheUrlAndOfAnImageIsNothing) {
    SimpleClipboardItem url;
    url.url = "https://example.org/a?b=c";
    const auto written = pasteboardItems(url, true);
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(*written[0].data(T::string), "https://example.org/a?b=c");

    Actions a;
    const auto image = a.copy({item({{T::png, "not really a png"}})});
    a.history->perform(image, clipboardaction::PastePlainText{}, 42);
    // The clipboard is cleared and the paste still goes out.
    ASSERT_FALSE(a.fake.pasteboard->written.empty());
    EXPECT_TRUE(a.fake.pasteboard->written.back().empty());
    EXPECT_EQ(a.fake.inputTap->posted.size(), 1u);
}

TEST(ClipboardHistoryActions, DirectPasteTakesTheNewestTextAndDoesNothingOnAnEmptyHistory) {
    Actions a;
    a.history->performDirectPastePlainText();
    EXPECT_EQ(a.closed, 0);
    EXPECT_TRUE(a.fake.pasteboard->written.empty());
    EXPECT_TRUE(a.fake.inputTap->posted.empty());

    a.copy({item({{T::string, "older"}})});
    a.copy({item({{T::string, "newest"}, {T::html, "<p>newest</p>"}})});
    a.history->performDirectPastePlainText();
    EXPECT_EQ(a.closed, 1);
    ASSERT_EQ(a.fake.pasteboard->written.size(), 1u);
    EXPECT_EQ(typesOf(a.fake.pasteboard->written[0]), std::vector<QString>{T::string});
    EXPECT_EQ(*a.fake.pasteboard->written[0][0].data(T::string), "newest");
    EXPECT_EQ(a.fake.inputTap->posted.size(), 1u);
}

TEST(ClipboardHistoryActions, DeleteRevealAndOpenGoWhereTheyShould) {
    Actions a;
    const auto file = a.copy({item({{T::fileURL, "file:///tmp/report.pdf"}})});
    a.history->perform(file, clipboardaction::ShowInFinder{*file.fileURL});
    ASSERT_EQ(a.fake.opener->revealed.size(), 1u);
    EXPECT_EQ(a.fake.opener->revealed[0].first(), QUrl("file:///tmp/report.pdf"));
    EXPECT_EQ(a.closed, 1);
    a.history->perform(file, clipboardaction::OpenURL{"https://example.org"});
    EXPECT_EQ(a.fake.opener->opened.size(), 1u);
    EXPECT_EQ(a.closed, 1); // the window stays open

    a.history->perform(file, clipboardaction::Delete{});
    EXPECT_EQ(a.store.count(), 0);
    a.history->perform(file, clipboardaction::Delete{}); // gone already: nothing happens
    EXPECT_EQ(a.store.count(), 0);
}

TEST(ClipboardPaster, WaitsForTheTargetToHaveTheFocusAndGivesUpWithoutTypingElsewhere) {
    Actions a;
    a.ownWindowFocused = true;
    QSignalSpy finished(&a.paster, &ClipboardPaster::finished);
    a.paster.paste(42);
    EXPECT_TRUE(a.fake.inputTap->posted.empty());
    a.ownWindowFocused = false; // the history window closed; the editor has the keyboard back
    QTRY_COMPARE(finished.size(), 1);
    EXPECT_TRUE(finished[0][0].toBool());
    EXPECT_EQ(a.fake.inputTap->posted.size(), 1u);

    // Focus went to another window and never came back: nothing is typed anywhere.
    a.fake.workspace->focused = FocusedWindow{7, "other", "Other"};
    a.paster.paste(42);
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 3000);
    EXPECT_FALSE(finished[1][0].toBool());
    EXPECT_EQ(a.fake.inputTap->posted.size(), 1u);

    // No window at all has the focus.
    a.fake.workspace->focused.reset();
    a.paster.paste(std::nullopt);
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 3, 3000);
    EXPECT_FALSE(finished[2][0].toBool());
}

// Typed before the clipboard is ours, the chord would paste what another program copied earlier.
TEST(ClipboardPaster, WaitsUntilTheClipboardWriteIsInEffect) {
    Actions a;
    bool pending = true;
    a.paster.clipboardPending = [&] { return pending; };
    QSignalSpy finished(&a.paster, &ClipboardPaster::finished);
    a.paster.paste(42);
    QTest::qWait(3 * ClipboardPaster::kPollMs);
    EXPECT_TRUE(a.fake.inputTap->posted.empty());
    pending = false;
    QTRY_COMPARE(finished.size(), 1);
    EXPECT_TRUE(finished[0][0].toBool());
    EXPECT_EQ(a.fake.inputTap->posted.size(), 1u);

    pending = true; // and it never comes into effect
    a.paster.paste(42);
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 3000);
    EXPECT_FALSE(finished[1][0].toBool());
    EXPECT_EQ(finished[1][1].toString(), "the clipboard was not taken in time");
    EXPECT_EQ(a.fake.inputTap->posted.size(), 1u);
}

TEST(ClipboardPaster, TerminalsTakeCtrlShiftV) {
    for (const auto& [instance, cls] :
         std::vector<std::pair<QString, QString>>{{"xterm", "XTerm"},
                                                  {"kitty", "kitty"},
                                                  {"gnome-terminal-server", "Gnome-terminal"},
                                                  {"Alacritty", "Alacritty"},
                                                  {"konsole", "konsole"}}) {
        EXPECT_TRUE(ClipboardPaster::chordFor({1, instance, cls}).shift) << instance.toStdString();
    }
    EXPECT_FALSE(ClipboardPaster::chordFor({1, "gedit", "Gedit"}).shift);
    EXPECT_FALSE(ClipboardPaster::chordFor({1, "", ""}).shift);
}

TEST(ClipboardSearchModel, ReadsTheStoreOnceThenFollowsCapturesAndDeletions) {
    Actions a;
    a.copy({item({{T::string, "alpha report"}})});
    a.copy({item({{T::string, "beta"}})});
    ClipboardSearchModel search(a.store);
    search.start();
    QTRY_VERIFY(search.isReady());
    EXPECT_EQ(search.indexedCount(), 2u);
    EXPECT_EQ(search.find("REPORT").size(), 1u);
    // Found by the application it came from, as well.
    EXPECT_EQ(search.find("editor").size(), 2u);

    const auto gamma = a.copy({item({{T::string, "gamma report"}})});
    const auto matches = search.setText("rep");
    ASSERT_TRUE(matches);
    ASSERT_EQ(matches->size(), 2u);
    EXPECT_EQ(matches->page(0, 1), std::vector<QUuid>{gamma.id}); // newest first
    EXPECT_EQ(matches->page(1, 5).size(), 1u);
    a.store.deleteItem(gamma.id);
    EXPECT_EQ(search.setText("repo")->size(), 1u);
    EXPECT_FALSE(search.setText(""));
    a.store.deleteAll();
    EXPECT_EQ(search.indexedCount(), 0u);
}

TEST(ClipboardHistoryActions, AnEntryWhosePictureFileVanishedPastesWhatIsLeft) {
    Actions a;
    const QByteArray picture = "picture bytes that stand for a PNG";
    const auto entry = a.copy({item({{T::string, "caption"}, {T::png, picture}})});
    // Someone removed the picture's file beside the store.
    const QDir external(a.dir.path() + "/Velmora.store_external");
    for (const QString& name : external.entryList(QDir::Files)) {
        QFile file(external.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        if (file.readAll() == picture) {
            ASSERT_TRUE(QFile::remove(external.filePath(name)));
        }
    }
    a.history->perform(entry, clipboardaction::Paste{}, 42);
    ASSERT_FALSE(a.fake.pasteboard->written.empty());
    EXPECT_EQ(typesOf(a.fake.pasteboard->written.back()), std::vector<QString>{T::string});
    EXPECT_EQ(a.fake.inputTap->posted.size(), 1u);
}

TEST(ClipboardHistoryActions, AnEntryDeletedBeforeItsPasteIsNeitherWrittenNorTyped) {
    Actions a;
    const auto entry = a.copy({item({{T::string, "soon gone"}})});
    a.store.deleteItem(entry.id);
    a.history->perform(entry, clipboardaction::Paste{}, 42);
    EXPECT_TRUE(a.fake.pasteboard->written.empty());
    EXPECT_TRUE(a.fake.inputTap->posted.empty());
}
