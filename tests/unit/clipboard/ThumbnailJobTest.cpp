#include "clipboard/ThumbnailJob.h"

#include "platform/fake/FakeFileThumbnails.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

using namespace velmora;

namespace {

QImage picture(int width, int height, Qt::GlobalColor colour = Qt::darkGreen) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

QSize pngSize(const std::optional<QByteArray>& png) {
    return png ? QImage::fromData(*png, "PNG").size() : QSize();
}

class ThumbnailJobTest : public ::testing::Test {
protected:
    QString file(const QString& name, qint64 bytes = 10) {
        const QString path = folder.filePath(name);
        QFile out(path);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(QByteArray(bytes, 'x'));
        return path;
    }

    // Runs the file step and waits on the event loop for its result.
    CopiedFileDetails inspect(const QString& path, bool hasThumbnail = false) {
        std::optional<CopiedFileDetails> result;
        job.inspectFile(path, hasThumbnail, [&](CopiedFileDetails details) { result = std::move(details); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return result.has_value(); }, 60000));
        return result.value_or(CopiedFileDetails{});
    }

    QTemporaryDir folder;
    FakeFileThumbnails thumbnails;
    ThumbnailJob job{thumbnails};
};

} // namespace

TEST_F(ThumbnailJobTest, ImageAndVideoFilesShowTheirContentAtItsNaturalSize) {
    const QString photo = file("Photo.JPG", 1234);
    thumbnails.setContent(photo, FileThumbnail{picture(320, 240), QSize(4000, 3000)});
    const CopiedFileDetails details = inspect(photo);
    EXPECT_EQ(details.fileBytes, 1234);
    EXPECT_EQ(pngSize(details.thumbnailPng), QSize(160, 120)); // scaled to the target whatever came
    EXPECT_FALSE(details.thumbnailIsIcon);
    EXPECT_EQ(details.width, 4000);
    EXPECT_EQ(details.height, 3000);
    EXPECT_EQ(thumbnails.lastTarget(), 160);

    const QString clip = file("clip.webm");
    thumbnails.setContent(clip, FileThumbnail{picture(90, 160), QSize()});
    const CopiedFileDetails video = inspect(clip, /*hasThumbnail=*/true);
    EXPECT_EQ(pngSize(video.thumbnailPng), QSize(90, 160));
    EXPECT_EQ(video.width, 90); // no natural size reported: the picture's own
    EXPECT_EQ(video.height, 160);
    EXPECT_EQ(thumbnails.iconCalls(), 0);
}

TEST_F(ThumbnailJobTest, ContentThatFailsLeavesTheRecordWithoutAPictureAndWithoutAnIcon) {
    const QString clip = file("broken.mp4", 77);
    thumbnails.setIcon(clip, picture(64, 64));
    const CopiedFileDetails details = inspect(clip);
    EXPECT_EQ(details.fileBytes, 77);
    EXPECT_FALSE(details.thumbnailPng.has_value());
    EXPECT_EQ(details.width, 0);
    EXPECT_EQ(thumbnails.contentCalls(), 1);
    EXPECT_EQ(thumbnails.iconCalls(), 0);
}

TEST_F(ThumbnailJobTest, OtherFilesGetTheirTypeIconOnlyWithoutAThumbnail) {
    const QString notes = file("notes.txt", 5);
    thumbnails.setIcon(notes, picture(48, 48));

    const CopiedFileDetails first = inspect(notes);
    EXPECT_EQ(first.fileBytes, 5);
    EXPECT_TRUE(first.thumbnailIsIcon);
    EXPECT_EQ(pngSize(first.thumbnailPng), QSize(160, 160));
    EXPECT_EQ(first.width, 0);
    EXPECT_EQ(thumbnails.contentCalls(), 0);

    const CopiedFileDetails withThumbnail = inspect(notes, /*hasThumbnail=*/true);
    EXPECT_FALSE(withThumbnail.thumbnailPng.has_value());
    EXPECT_FALSE(withThumbnail.thumbnailIsIcon);
    EXPECT_EQ(thumbnails.iconCalls(), 1);

    // A type without an icon: nothing, not an empty picture.
    const CopiedFileDetails bare = inspect(file("archive.bin"));
    EXPECT_FALSE(bare.thumbnailPng.has_value());
    EXPECT_FALSE(bare.thumbnailIsIcon);
}

TEST_F(ThumbnailJobTest, MissingFileHasSizeZero) {
    const CopiedFileDetails details = inspect(folder.filePath("gone.png"));
    EXPECT_EQ(details.fileBytes, 0);
    EXPECT_FALSE(details.thumbnailPng.has_value());
}

TEST_F(ThumbnailJobTest, ResultsArriveInStartOrder) {
    const QString a = file("a.png"), b = file("b.txt"), c = file("c.mov");
    thumbnails.setContent(a, FileThumbnail{picture(10, 10), QSize(10, 10)});
    std::vector<QString> order;
    job.inspectFile(a, false, [&](CopiedFileDetails) { order.push_back("a"); });
    job.decodeImages({QByteArray("x")}, [&](ThumbnailJob::DecodedImages) { order.push_back("images"); });
    job.inspectFile(b, false, [&](CopiedFileDetails) { order.push_back("b"); });
    job.inspectFile(c, false, [&](CopiedFileDetails) { order.push_back("c"); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 4; }, 60000));
    EXPECT_EQ(order, (std::vector<QString>{"a", "images", "b", "c"}));
}

TEST_F(ThumbnailJobTest, DecodedImagesMatchTheirInputs) {
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture(1000, 500).save(&buffer, "PNG");

    std::optional<ThumbnailJob::DecodedImages> result;
    job.decodeImages({png, QByteArray("garbage")},
                     [&](ThumbnailJob::DecodedImages images) { result = images; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return result.has_value(); }, 60000));
    ASSERT_EQ(result->size(), 2u);
    ASSERT_TRUE((*result)[0].has_value());
    EXPECT_EQ((*result)[0]->width, 1000);
    EXPECT_EQ((*result)[0]->height, 500);
    EXPECT_EQ(QImage::fromData((*result)[0]->thumbnailPng, "PNG").size(), QSize(160, 80));
    EXPECT_FALSE((*result)[1].has_value());
}

TEST(ThumbnailJobLifetimeTest, NoCallbackRunsAfterTheJobIsGone) {
    QTemporaryDir folder;
    FakeFileThumbnails thumbnails;
    int calls = 0;
    {
        ThumbnailJob job(thumbnails);
        for (int i = 0; i < 5; ++i)
            job.inspectFile(folder.filePath("missing.png"), false, [&](CopiedFileDetails) { ++calls; });
    }
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(calls, 0);
}

TEST(ThumbnailJobExtensionsTest, ImageAndVideoExtensionsShowContentWhateverTheirCase) {
    for (const char* path :
         {"/a/b.mp4", "/a/b.MOV", "x.3g2", "x.ogv", "x.Jpeg", "x.tif", "x.heic", "x.svg", "x.ico"}) {
        EXPECT_TRUE(ThumbnailJob::showsContent(path)) << path;
    }
    for (const char* path : {"x.pdf", "x.txt", "x", "/a/mp4", "x.mp4.part", "x.mp3"}) {
        EXPECT_FALSE(ThumbnailJob::showsContent(path)) << path;
    }
}
