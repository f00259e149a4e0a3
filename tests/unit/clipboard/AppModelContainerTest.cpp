#include "clipboard/AppModelContainer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QUuid>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace velmora;

namespace {

SimpleClipboardItem textItem(qint64 timestamp, const QString& text) {
    SimpleClipboardItem item;
    item.timestamp = timestamp;
    item.plainText = text;
    return item;
}

SimpleClipboardItem imageItem(qint64 timestamp, const QByteArray& png) {
    SimpleClipboardItem item = textItem(timestamp, QStringLiteral("image"));
    item.inMemoryPayload = SimpleClipboardPayload{};
    item.inMemoryPayload->set(QStringLiteral("image/png"), png);
    item.inMemoryPayload->set(QStringLiteral("image/tiff"), QByteArray("tiff bytes"));
    item.pngBytes = png.size();
    item.tiffBytes = 10;
    return item;
}

std::vector<qint64> timestamps(const AppModelContainer& store) {
    std::vector<qint64> result;
    for (const SimpleClipboardItem& item : store.items(-1))
        result.push_back(item.timestamp);
    return result;
}

int mode(const QString& path) {
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? int(info.st_mode & 0777) : -1;
}

class AppModelContainerTest : public ::testing::Test {
protected:
    QString folder() const { return m_dir.path() + QStringLiteral("/Velmora"); }
    QString storeFile() const { return folder() + QStringLiteral("/Velmora.store"); }
    QString externalFolder() const { return storeFile() + QStringLiteral("_external"); }
    QStringList externalFiles() const { return QDir(externalFolder()).entryList(QDir::Files); }

    std::unique_ptr<AppModelContainer> openStore() {
        auto store = std::make_unique<AppModelContainer>(folder());
        EXPECT_TRUE(store->open()) << store->errorString().toStdString();
        return store;
    }

    void persistAll(AppModelContainer& store, std::initializer_list<qint64> stamps) {
        for (qint64 stamp : stamps) {
            SimpleClipboardItem item = textItem(stamp, QStringLiteral("entry %1").arg(stamp));
            ASSERT_TRUE(store.persistItem(item));
        }
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(AppModelContainerTest, TrimmingDeletesTheOldestToMakeRoom) {
    auto store = openStore();
    persistAll(*store, {30, 10, 50, 20, 40});

    ASSERT_TRUE(store->trim(1, 5));
    EXPECT_EQ(timestamps(*store), (std::vector<qint64>{50, 40, 30, 20}));
    SimpleClipboardItem incoming = textItem(60, QStringLiteral("new"));
    ASSERT_TRUE(store->persistItem(incoming));
    EXPECT_EQ(store->count(), 5);

    ASSERT_TRUE(store->trim(3, 5));
    EXPECT_EQ(timestamps(*store), (std::vector<qint64>{60, 50}));
    EXPECT_EQ(externalFiles().size(), 2);

    ASSERT_TRUE(store->trim(0, 5));
    EXPECT_EQ(store->count(), 2);
    ASSERT_TRUE(store->trim(10, 5)); // never more than there are
    EXPECT_EQ(store->count(), 0);
    EXPECT_TRUE(externalFiles().isEmpty());
}

TEST_F(AppModelContainerTest, ListsNewestFirstWithTiesInStoringOrder) {
    auto store = openStore();
    SimpleClipboardItem first = textItem(100, QStringLiteral("first"));
    SimpleClipboardItem second = textItem(100, QStringLiteral("second"));
    SimpleClipboardItem older = textItem(50, QStringLiteral("older"));
    ASSERT_TRUE(store->persistItem(first));
    ASSERT_TRUE(store->persistItem(second));
    ASSERT_TRUE(store->persistItem(older));

    const auto all = store->items(10);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].id, second.id);
    EXPECT_EQ(all[1].id, first.id);
    EXPECT_EQ(all[2].id, older.id);
    const auto window = store->items(1, 1);
    ASSERT_EQ(window.size(), 1u);
    EXPECT_EQ(window[0].plainText, QStringLiteral("first"));
    EXPECT_EQ(store->mostRecent()->id, second.id);
    // Trimming takes the earlier of equal timestamps first.
    ASSERT_TRUE(store->trim(0, 2));
    EXPECT_FALSE(store->item(older.id));
    ASSERT_TRUE(store->trim(0, 1));
    EXPECT_FALSE(store->item(first.id));
}

TEST_F(AppModelContainerTest, ItemsWithIdsComeInTheOrderAskedWithoutTheGoneOnes) {
    auto store = openStore();
    std::vector<QUuid> ids;
    for (int i = 0; i < 45; ++i) { // more than one statement reads
        SimpleClipboardItem item = textItem(i, QStringLiteral("entry %1").arg(i));
        ASSERT_TRUE(store->persistItem(item));
        ids.push_back(item.id);
    }
    std::vector<QUuid> asked{ids[44], QUuid::createUuid(), ids[3]};
    for (int i = 43; i >= 4; --i)
        asked.push_back(ids[std::size_t(i)]);
    const auto found = store->itemsWithIds(asked);
    ASSERT_EQ(found.size(), asked.size() - 1);
    EXPECT_EQ(found[0].plainText, QStringLiteral("entry 44"));
    EXPECT_EQ(found[1].plainText, QStringLiteral("entry 3"));
    EXPECT_EQ(found.back().plainText, QStringLiteral("entry 4"));
    EXPECT_TRUE(store->itemsWithIds({}).empty());
}

TEST_F(AppModelContainerTest, ItemDeletionCascadesAndPayloadDeletionLeavesTheItem) {
    auto store = openStore();
    SimpleClipboardItem keep = imageItem(1, QByteArray("png one"));
    SimpleClipboardItem gone = imageItem(2, QByteArray("png two"));
    ASSERT_TRUE(store->persistItem(keep));
    ASSERT_TRUE(store->persistItem(gone));
    EXPECT_FALSE(keep.inMemoryPayload);
    ASSERT_TRUE(keep.payload);
    EXPECT_EQ(externalFiles().size(), 6); // text, PNG and TIFF of each

    int changes = 0;
    QObject::connect(store.get(), &AppModelContainer::changed, [&] { ++changes; });
    ASSERT_TRUE(store->deletePayload(keep.id));
    const auto kept = store->item(keep.id);
    ASSERT_TRUE(kept);
    EXPECT_FALSE(kept->payload);
    EXPECT_EQ(kept->plainText, QStringLiteral("image"));
    EXPECT_FALSE(store->representation(keep.id, QStringLiteral("image/png")));
    EXPECT_FALSE(store->deletePayload(keep.id));

    ASSERT_TRUE(store->deleteItem(gone.id));
    EXPECT_FALSE(store->item(gone.id));
    EXPECT_FALSE(store->representation(gone.id, QStringLiteral("image/png")));
    EXPECT_FALSE(store->deleteItem(gone.id));
    EXPECT_EQ(externalFiles().size(), 1); // the kept item's text
    EXPECT_EQ(changes, 2);

    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("cascade-check"));
    db.setDatabaseName(storeFile());
    ASSERT_TRUE(db.open());
    QSqlQuery query(QStringLiteral("SELECT count(*) FROM SimpleClipboardPayload"), db);
    ASSERT_TRUE(query.next());
    EXPECT_EQ(query.value(0).toInt(), 0);
    query = QSqlQuery();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("cascade-check"));
}

TEST_F(AppModelContainerTest, AnItemWithoutImagesHasNoPayloadAndNoCounts) {
    auto store = openStore();
    SimpleClipboardItem item = textItem(1, QStringLiteral("words"));
    ASSERT_TRUE(store->persistItem(item));
    const auto stored = store->item(item.id);
    ASSERT_TRUE(stored);
    EXPECT_FALSE(stored->payload);
    for (qint64 n : {stored->fileBytes, stored->fileContentsBytes, stored->pngBytes, stored->jpegBytes,
                     stored->tiffBytes, stored->pdfBytes, stored->soundBytes}) {
        EXPECT_EQ(n, 0);
    }
    EXPECT_FALSE(stored->isUniversalClipboard);
    EXPECT_FALSE(stored->thumbnailIsIcon);
}

TEST_F(AppModelContainerTest, EveryValueComesBackAsStored) {
    QByteArray large(5 * 1024 * 1024, '\0');
    for (qsizetype i = 0; i < large.size(); ++i)
        large[i] = char(i * 7 % 251);
    SimpleClipboardItem item = imageItem(1700000000123, large);
    item.plainText = QStringLiteral("Grüße, 世界 🙂\nline two");
    item.html = QByteArray("<b>bold</b>");
    item.rtf = QByteArray("{\\rtf1 x}");
    item.tabularText = QByteArray("a\tb\n");
    item.thumbnailData = QByteArray("thumb");
    item.thumbnailIsIcon = true;
    item.sourceIconData = QByteArray("icon");
    item.sourceBundleId = QStringLiteral("org.example.Editor.desktop");
    item.sourceBundleURL = QStringLiteral("file:///usr/share/applications/org.example.Editor.desktop");
    item.sourceAppName = QStringLiteral("Editor");
    item.sourceWindowTitle = QStringLiteral("notes — Editor");
    item.isUniversalClipboard = true;
    item.url = QStringLiteral("https://example.org/");
    item.color = QByteArray("\x01\x02", 2);
    item.width = 640;
    item.height = 480;
    item.fileBytes = 3;
    {
        auto store = openStore();
        ASSERT_TRUE(store->persistItem(item));
    }
    auto store = openStore(); // read back from disk, not from anything kept in memory

    const auto stored = store->item(item.id);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->timestamp, item.timestamp);
    EXPECT_EQ(stored->plainText, item.plainText);
    EXPECT_EQ(stored->html, item.html);
    EXPECT_EQ(stored->rtf, item.rtf);
    EXPECT_EQ(stored->tabularText, item.tabularText);
    EXPECT_EQ(stored->thumbnailData, item.thumbnailData);
    EXPECT_EQ(stored->sourceIconData, item.sourceIconData);
    EXPECT_EQ(stored->sourceBundleId, item.sourceBundleId);
    EXPECT_EQ(stored->sourceBundleURL, item.sourceBundleURL);
    EXPECT_EQ(stored->sourceAppName, item.sourceAppName);
    EXPECT_EQ(stored->sourceWindowTitle, item.sourceWindowTitle);
    EXPECT_EQ(stored->url, item.url);
    EXPECT_FALSE(stored->fileURL);
    EXPECT_EQ(stored->color, item.color);
    EXPECT_TRUE(stored->isUniversalClipboard);
    EXPECT_TRUE(stored->thumbnailIsIcon);
    EXPECT_EQ(stored->width, 640);
    EXPECT_EQ(stored->height, 480);
    EXPECT_EQ(stored->fileBytes, 3);
    EXPECT_EQ(stored->pngBytes, large.size());
    ASSERT_TRUE(stored->payload);
    EXPECT_EQ(stored->payload->data.size(), 2u);
    EXPECT_TRUE(stored->payload->get(QStringLiteral("image/png")) == large);

    EXPECT_EQ(store->representation(item.id, QStringLiteral("text/plain")), item.plainText->toUtf8());
    EXPECT_EQ(store->representation(item.id, QStringLiteral("text/rtf")), item.rtf);
    EXPECT_EQ(store->representation(item.id, QStringLiteral("thumbnail")), item.thumbnailData);
    EXPECT_TRUE(store->representation(item.id, QStringLiteral("image/png")) == large);
    EXPECT_FALSE(store->representation(item.id, QStringLiteral("image/jpeg")));
    EXPECT_FALSE(store->representation(QUuid::createUuid(), QStringLiteral("text/plain")));

    // The listing carries the text but not the other large values.
    const auto listed = store->items(1);
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed[0].plainText, item.plainText);
    EXPECT_EQ(listed[0].sourceIconData, item.sourceIconData);
    EXPECT_FALSE(listed[0].html);
    EXPECT_FALSE(listed[0].thumbnailData);
    EXPECT_FALSE(listed[0].payload);
}

TEST_F(AppModelContainerTest, EverythingIsOwnerOnly) {
    auto store = openStore();
    SimpleClipboardItem image = imageItem(1, "png");
    ASSERT_TRUE(store->persistItem(image));
    EXPECT_EQ(store->path(), storeFile());
    EXPECT_EQ(mode(folder()), 0700);
    EXPECT_EQ(mode(externalFolder()), 0700);
    for (const char* suffix : {"", "-wal", "-shm"}) {
        EXPECT_EQ(mode(storeFile() + QLatin1String(suffix)), 0600) << suffix;
    }
    for (const QString& file : externalFiles()) {
        EXPECT_EQ(mode(externalFolder() + u'/' + file), 0600);
    }
}

TEST_F(AppModelContainerTest, ADamagedStoreIsKeptAsideAndAFreshOneMade) {
    ASSERT_TRUE(QDir().mkpath(externalFolder()));
    QFile garbage(storeFile());
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray(8192, 'x'));
    garbage.close();
    const QString theirs =
        externalFolder() + QStringLiteral("/") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    ASSERT_TRUE(QFile(theirs).open(QIODevice::WriteOnly));

    auto store = openStore();
    EXPECT_EQ(store->count(), 0);
    SimpleClipboardItem item = textItem(1, QStringLiteral("after"));
    EXPECT_TRUE(store->persistItem(item));

    const QStringList aside = QDir(folder()).entryList({QStringLiteral("Velmora.store.corrupt-*")});
    ASSERT_EQ(aside.size(), 2) << aside.join(u' ').toStdString(); // the file and its external folder
    QFile kept(folder() + u'/' + aside[0]);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), QByteArray(8192, 'x'));
    EXPECT_EQ(QDir(folder() + u'/' + aside[1]).entryList(QDir::Files).size(), 1);
}

TEST_F(AppModelContainerTest, AStoreOfAnotherVersionIsKeptAside) {
    ASSERT_TRUE(QDir().mkpath(folder()));
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other-version"));
        db.setDatabaseName(storeFile());
        ASSERT_TRUE(db.open());
        QSqlQuery(QStringLiteral("CREATE TABLE t (x)"), db);
        QSqlQuery(QStringLiteral("PRAGMA user_version = 7"), db);
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other-version"));

    auto store = openStore();
    EXPECT_EQ(QDir(folder()).entryList({QStringLiteral("Velmora.store.corrupt-*")}).size(), 1);
    SimpleClipboardItem item = textItem(1, QStringLiteral("fresh"));
    EXPECT_TRUE(store->persistItem(item));
    EXPECT_EQ(store->count(), 1);
}

TEST_F(AppModelContainerTest, OpeningSweepsStrayFilesAndDropsValuesWhoseFileIsGone) {
    SimpleClipboardItem text = textItem(1, QStringLiteral("text"));
    text.html = QByteArray("<p>text</p>");
    SimpleClipboardItem image = imageItem(2, "png");
    image.inMemoryPayload->set(QStringLiteral("image/tiff"), std::nullopt);
    QString htmlFile;
    QString pngFile;
    {
        auto store = openStore();
        ASSERT_TRUE(store->persistItem(text));
        ASSERT_TRUE(store->persistItem(image));
        ASSERT_TRUE(store->setJsonValue(QStringLiteral("settings"), QByteArray("{}")));
        ASSERT_EQ(externalFiles().size(), 5); // two texts, the HTML, the PNG, the JSON value
        // Find which file is which by content.
        for (const QString& file : externalFiles()) {
            QFile f(externalFolder() + u'/' + file);
            ASSERT_TRUE(f.open(QIODevice::ReadOnly));
            const QByteArray content = f.readAll();
            if (content == "<p>text</p>")
                htmlFile = file;
            if (content == "png")
                pngFile = file;
        }
    }
    ASSERT_FALSE(htmlFile.isEmpty());
    ASSERT_FALSE(pngFile.isEmpty());
    ASSERT_TRUE(QFile::remove(externalFolder() + u'/' + htmlFile));
    ASSERT_TRUE(QFile::remove(externalFolder() + u'/' + pngFile));
    const QString stray = QUuid::createUuid().toString(QUuid::WithoutBraces);
    ASSERT_TRUE(QFile(externalFolder() + u'/' + stray).open(QIODevice::WriteOnly));

    auto store = openStore();
    EXPECT_FALSE(externalFiles().contains(stray));
    EXPECT_EQ(externalFiles().size(), 3); // two texts and the JSON value
    const auto textBack = store->item(text.id);
    ASSERT_TRUE(textBack);
    EXPECT_EQ(textBack->plainText, QStringLiteral("text"));
    EXPECT_FALSE(textBack->html);
    const auto imageBack = store->item(image.id);
    ASSERT_TRUE(imageBack);
    EXPECT_FALSE(imageBack->payload); // its only representation was lost
    EXPECT_EQ(store->jsonValue(QStringLiteral("settings")), QByteArray("{}"));
}

TEST_F(AppModelContainerTest, AFailedWriteLeavesTheHistoryAndNoFiles) {
    auto store = openStore();
    persistAll(*store, {1, 2});
    const QStringList filesBefore = externalFiles();
    int changes = 0;
    QObject::connect(store.get(), &AppModelContainer::changed, [&] { ++changes; });

    {
        // Another writer holds the database: the insert cannot go through.
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("blocker"));
        other.setDatabaseName(storeFile());
        ASSERT_TRUE(other.open());
        QSqlQuery lock(other);
        ASSERT_TRUE(lock.exec(QStringLiteral("BEGIN IMMEDIATE")));
        SimpleClipboardItem blocked = imageItem(3, "png");
        EXPECT_FALSE(store->persistItem(blocked));
        lock.exec(QStringLiteral("ROLLBACK"));
        lock = QSqlQuery();
        other.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("blocker"));
    EXPECT_EQ(timestamps(*store), (std::vector<qint64>{2, 1}));
    EXPECT_EQ(externalFiles(), filesBefore);

    // The value files cannot be written.
    ASSERT_TRUE(QDir(externalFolder()).removeRecursively());
    ASSERT_TRUE(QFile(externalFolder()).open(QIODevice::WriteOnly));
    SimpleClipboardItem unwritable = textItem(4, QStringLiteral("nowhere"));
    EXPECT_FALSE(store->persistItem(unwritable));
    EXPECT_EQ(store->count(), 2);
    EXPECT_EQ(changes, 0);
}

TEST_F(AppModelContainerTest, AFolderThatCannotBeMadeIsReportedNotFatal) {
    QFile blocker(folder());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly)); // a file where the folder should be
    blocker.close();
    AppModelContainer store(folder() + QStringLiteral("/inner"));
    EXPECT_FALSE(store.open());
    EXPECT_FALSE(store.errorString().isEmpty());
    EXPECT_TRUE(store.path().isEmpty());
    SimpleClipboardItem item = textItem(1, QStringLiteral("x"));
    EXPECT_FALSE(store.persistItem(item));
    EXPECT_EQ(store.count(), 0);
    EXPECT_TRUE(store.items(10).empty());
}

TEST_F(AppModelContainerTest, DeletingAllKeepsTheJsonValues) {
    auto store = openStore();
    persistAll(*store, {1, 2, 3});
    SimpleClipboardItem image = imageItem(4, "png");
    ASSERT_TRUE(store->persistItem(image));
    ASSERT_TRUE(store->setJsonValue(QStringLiteral("k"), QByteArray("[1]")));
    ASSERT_TRUE(store->setJsonValue(QStringLiteral("k"), QByteArray("[2]")));

    ASSERT_TRUE(store->deleteAll());
    EXPECT_EQ(store->count(), 0);
    EXPECT_FALSE(store->mostRecent());
    EXPECT_EQ(externalFiles().size(), 1);
    EXPECT_EQ(store->jsonValue(QStringLiteral("k")), QByteArray("[2]"));
    ASSERT_TRUE(store->setJsonValue(QStringLiteral("k"), std::nullopt));
    EXPECT_FALSE(store->jsonValue(QStringLiteral("k")));
    EXPECT_TRUE(externalFiles().isEmpty());
}

TEST_F(AppModelContainerTest, SetupIsLoggedWithThePath) {
    static QStringList messages;
    messages.clear();
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { messages << text; });
    auto store = openStore();
    SimpleClipboardItem image = imageItem(1, "png");
    ASSERT_TRUE(store->persistItem(image));
    qInstallMessageHandler(previous);
    EXPECT_TRUE(messages.contains(QStringLiteral("setupAppModelContainer(): App model container is setup. ") +
                                  storeFile()))
        << messages.join(u'\n').toStdString();
    EXPECT_TRUE(messages.contains(QStringLiteral("persistItem(_:): Clipboard History: payload exists")));
}

// Run by the crash test in a child process: stores entries until it is killed.
TEST(AppModelContainerCrash, ChildPersistsUntilKilled) {
    const QString folder = qEnvironmentVariable("VELMORA_STORE_CRASH_FOLDER");
    if (folder.isEmpty()) {
        GTEST_SKIP() << "only run as the crash test's child";
    }
    AppModelContainer store(folder);
    ASSERT_TRUE(store.open());
    const QByteArray png(2 * 1024 * 1024, 'p');
    for (qint64 n = 1;; ++n) {
        SimpleClipboardItem item = imageItem(n, png);
        item.plainText = QStringLiteral("entry %1").arg(n);
        ASSERT_TRUE(store.persistItem(item));
        ::fprintf(stdout, "persisted %lld\n", static_cast<long long>(n));
        ::fflush(stdout);
    }
}

TEST_F(AppModelContainerTest, AKilledWriterLeavesOnlyWholeEntries) {
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VELMORA_STORE_CRASH_FOLDER"), folder());
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--gtest_filter=AppModelContainerCrash.ChildPersistsUntilKilled")});
    ASSERT_TRUE(child.waitForStarted());
    QByteArray output;
    while (output.count("persisted") < 20 && child.state() == QProcess::Running) {
        child.waitForReadyRead(30000);
        output += child.readAllStandardOutput();
    }
    child.kill();
    child.waitForFinished();
    ASSERT_GE(output.count("persisted"), 20) << output.toStdString();

    auto store = openStore();
    const auto entries = store->items(-1);
    ASSERT_GE(entries.size(), 20u);
    for (const SimpleClipboardItem& entry : entries) {
        EXPECT_EQ(entry.plainText, QStringLiteral("entry %1").arg(entry.timestamp));
        const auto png = store->representation(entry.id, QStringLiteral("image/png"));
        ASSERT_TRUE(png);
        EXPECT_EQ(png->size(), 2 * 1024 * 1024);
    }
    // Text, PNG and TIFF of every entry, and nothing else.
    EXPECT_EQ(externalFiles().size(), qsizetype(entries.size() * 3));
}
