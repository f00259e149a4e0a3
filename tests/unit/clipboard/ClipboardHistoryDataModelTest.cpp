#include "clipboard/ClipboardHistoryDataModel.h"
#include "app/UserPreferences.h"
#include "clipboard/AppModelContainer.h"
#include "platform/fake/FakePlatform.h"

#include <QBuffer>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmora;
namespace T = PasteboardType;

namespace {

PasteboardItem text(const QByteArray& t) {
    PasteboardItem i;
    i.add(T::string, t);
    return i;
}

const QString kEditorEntry = "file:///usr/share/applications/org.example.Editor.desktop";

struct History {
    FakePlatform fake;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{*fake.defaults, log};
    QTemporaryDir dir;
    AppModelContainer store{dir.path()};
    qint64 now = 1'700'000'000'000;
    std::unique_ptr<ClipboardHistoryDataModel> model;

    History() {
        fake.workspace->frontmost =
            FrontmostApplication{{"org.example.Editor", kEditorEntry, "Editor", QImage()}, "draft.txt"};
        EXPECT_TRUE(store.open()) << store.errorString().toStdString();
        model = std::make_unique<ClipboardHistoryDataModel>(
            *fake.pasteboard, *fake.workspace, fake.fileThumbnails, store, prefs, [this] { return now; });
        model->start();
    }
    // Another program copies; the model sees the change at once, as the backend reports it.
    // Its files are written on a worker: the copy is in the store once nothing is pending.
    void copy(std::vector<PasteboardItem> items) {
        now += 1000;
        fake.pasteboard->set(std::move(items));
        waitForPending();
    }
    QStringList texts() {
        waitForPending();
        QStringList t;
        for (const auto& item : store.items(100))
            t << item.plainText.value_or("-");
        return t;
    }
    void waitForPending() { QTRY_COMPARE_WITH_TIMEOUT(model->pending(), 0, 5000); }
};

void setRetention(UserPreferences& prefs, int n) {
    auto value = prefs.clipboard.value();
    value.retention = n;
    ASSERT_TRUE(prefs.clipboard.setValue(value));
}

} // namespace

TEST(ClipboardHistoryDataModel, EachChangeIsRecordedWithItsSourceAndTheOldestGoBeyondRetention) {
    History h;
    setRetention(h.prefs, 3);
    for (const char* t : {"one", "two", "three", "four", "five"})
        h.copy({text(t)});
    EXPECT_EQ(h.texts(), QStringList({"five", "four", "three"}));
    const auto newest = h.store.mostRecent();
    ASSERT_TRUE(newest);
    EXPECT_EQ(newest->sourceAppName, "Editor");
    EXPECT_EQ(newest->sourceWindowTitle, "draft.txt");
    EXPECT_EQ(newest->sourceBundleURL, kEditorEntry);
}

TEST(ClipboardHistoryDataModel, IgnoredAppsConcealedCopiesAndNoFrontmostAppStoreNothing) {
    History h;
    auto prefs = h.prefs.clipboard.value();
    prefs.blacklistedAppURLs = {kEditorEntry};
    ASSERT_TRUE(h.prefs.clipboard.setValue(prefs));
    h.copy({text("from an ignored app")});
    EXPECT_EQ(h.store.count(), 0);
    EXPECT_EQ(h.model->changeCount(), h.fake.pasteboard->changeCount()) << "the change is consumed";

    prefs.blacklistedAppURLs.clear();
    ASSERT_TRUE(h.prefs.clipboard.setValue(prefs));
    PasteboardItem secret = text("hunter2");
    secret.add(T::concealed, {});
    h.copy({secret});
    EXPECT_EQ(h.store.count(), 0);
    EXPECT_TRUE(h.fake.pasteboard->contentToKeep().empty()) << "a secret is never put back";

    h.fake.workspace->frontmost.reset();
    h.copy({text("nobody in front")});
    EXPECT_EQ(h.store.count(), 0);
}

TEST(ClipboardHistoryDataModel, VelmorasOwnWriteIsNotRecordedButTheNextCopyIs) {
    History h;
    h.model->setShouldRecordHistory(false);
    h.fake.pasteboard->write({text("pasted back")});
    h.copy({text("outside")});
    EXPECT_EQ(h.texts(), QStringList({"outside"}));
}

TEST(ClipboardHistoryDataModel, ACopyMadeWhileHistoryIsOffIsRecordedWhenItIsOnAgain) {
    History h;
    ASSERT_TRUE(h.prefs.local.setClipboardHistoryEnabled(false));
    h.copy({text("while off")});
    EXPECT_EQ(h.store.count(), 0);
    ASSERT_TRUE(h.prefs.local.setClipboardHistoryEnabled(true));
    h.model->tick();
    EXPECT_EQ(h.texts(), QStringList({"while off"}));
}

TEST(ClipboardHistoryDataModel, AnImageIsDecodedOffTheMainThreadAndStoredInCaptureOrder) {
    History h;
    QImage picture(100, 400, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    PasteboardItem image;
    image.add(T::png, png);
    PasteboardItem broken;
    broken.add(T::png, "not a picture");

    h.copy({image});
    h.copy({broken});
    h.copy({text("after the pictures")});
    h.waitForPending();
    const auto items = h.store.items(10);
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0].plainText, "after the pictures");
    EXPECT_EQ(items[1].pngBytes, 13);
    EXPECT_EQ(items[1].width, 0) << "an undecodable picture keeps its bytes but gets no size";
    EXPECT_EQ(items[2].width, 100);
    EXPECT_EQ(items[2].height, 400);
    const auto thumbnail = h.store.representation(items[2].id, "thumbnail");
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(QImage::fromData(*thumbnail).size(), QSize(40, 160));
    EXPECT_EQ(h.store.representation(items[2].id, T::png), png);

    // The newest entry is what goes back on the clipboard when its owner leaves.
    const auto kept = h.fake.pasteboard->contentToKeep();
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(*kept[0].data(T::string), "after the pictures");
}
