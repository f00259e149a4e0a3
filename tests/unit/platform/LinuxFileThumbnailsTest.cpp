#include "platform/linux/LinuxFileThumbnails.h"

#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include <memory>

using namespace velmora;

namespace {

// Fixture files made once for the suite, in a temporary folder.
class LinuxFileThumbnailsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder = new QTemporaryDir;
        videoMade = makeVideo();
    }
    static void TearDownTestSuite() {
        delete folder;
        folder = nullptr;
    }

    static QString file(const QString& name) { return folder->filePath(name); }

    static void write(const QString& name, const QByteArray& bytes) {
        QFile out(file(name));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }

    static QByteArray read(const QString& name) {
        QFile in(file(name));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    // A one-second 320 x 240 video, when ffmpeg is there to make it.
    static bool makeVideo() {
        const QString ffmpeg = QStandardPaths::findExecutable("ffmpeg");
        if (ffmpeg.isEmpty())
            return false;
        QProcess process;
        process.start(ffmpeg, {"-loglevel", "error", "-y", "-f", "lavfi", "-i", "testsrc=size=320x240:rate=5",
                               "-t", "1", "-pix_fmt", "yuv420p", file("clip.mp4")});
        return process.waitForFinished(120000) && process.exitCode() == 0;
    }

    LinuxFileThumbnails thumbnails;
    static inline QTemporaryDir* folder = nullptr;
    static inline bool videoMade = false;
};

// Runs work on a thread of its own (a thread pool may run a waited-for task on the waiting thread).
template <typename Work> auto onAnotherThread(Work work) {
    decltype(work()) result;
    std::unique_ptr<QThread> thread(QThread::create([&] { result = work(); }));
    thread->start();
    thread->wait();
    return result;
}

QImage picture(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    return image;
}

} // namespace

TEST_F(LinuxFileThumbnailsTest, ImageFileGivesItsPictureAndSize) {
    ASSERT_TRUE(picture(640, 480).save(file("photo.png")));
    const auto thumbnail = thumbnails.contentThumbnail(file("photo.png"), 160);
    ASSERT_TRUE(thumbnail.has_value());
    EXPECT_EQ(thumbnail->naturalSize, QSize(640, 480));
    EXPECT_EQ(thumbnail->image.size(), QSize(160, 120));
    EXPECT_EQ(QColor(thumbnail->image.pixel(80, 60)), QColor(Qt::darkGreen));

    // Upper-case extensions and scaled-down JPEG decoding; small pictures grow to the target.
    ASSERT_TRUE(picture(40, 80).save(file("SMALL.JPG"), "JPEG"));
    const auto small = thumbnails.contentThumbnail(file("SMALL.JPG"), 160);
    ASSERT_TRUE(small.has_value());
    EXPECT_EQ(small->naturalSize, QSize(40, 80));
    EXPECT_EQ(small->image.size(), QSize(80, 160));
}

TEST_F(LinuxFileThumbnailsTest, VideoFileGivesAFrameAndTheVideoSize) {
    if (!videoMade) {
        GTEST_SKIP() << "ffmpeg is not available to make a video";
    }
    const auto thumbnail = thumbnails.contentThumbnail(file("clip.mp4"), 160);
    ASSERT_TRUE(thumbnail.has_value());
    EXPECT_EQ(thumbnail->naturalSize, QSize(320, 240));
    EXPECT_EQ(thumbnail->image.size(), QSize(160, 120));
}

TEST_F(LinuxFileThumbnailsTest, QuarterTurnedVideoHasItsSidesSwapped) {
    if (!videoMade) {
        GTEST_SKIP() << "ffmpeg is not available to make a video";
    }
    QProcess process;
    process.start(QStandardPaths::findExecutable("ffmpeg"),
                  {"-loglevel", "error", "-y", "-i", file("clip.mp4"), "-c", "copy", "-metadata:s:v:0",
                   "rotate=90", file("turned.mp4")});
    ASSERT_TRUE(process.waitForFinished(120000) && process.exitCode() == 0);
    const auto thumbnail = thumbnails.contentThumbnail(file("turned.mp4"), 160);
    ASSERT_TRUE(thumbnail.has_value());
    EXPECT_EQ(thumbnail->naturalSize, QSize(240, 320));
    EXPECT_EQ(thumbnail->image.size(), QSize(120, 160));
}

TEST_F(LinuxFileThumbnailsTest, TruncatedVideoGivesNothing) {
    if (!videoMade) {
        GTEST_SKIP() << "ffmpeg is not available to make a video";
    }
    const QByteArray video = read("clip.mp4");
    ASSERT_FALSE(video.isEmpty());
    write("cut.mp4", video.left(video.size() / 2));
    EXPECT_FALSE(thumbnails.contentThumbnail(file("cut.mp4"), 160).has_value());
    write("start.mov", video.left(100));
    EXPECT_FALSE(thumbnails.contentThumbnail(file("start.mov"), 160).has_value());
}

TEST_F(LinuxFileThumbnailsTest, PdfGivesItsFirstPageOnWhiteAndThePageSizeInPoints) {
    {
        QPdfWriter writer(file("letter.pdf"));
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        QPainter painter(&writer);
        painter.fillRect(QRect(0, 0, writer.width() / 4, writer.height() / 4), Qt::black);
        writer.newPage();
    }
    // Made off the main thread, as the history does.
    const auto thumbnail =
        onAnotherThread([this] { return thumbnails.contentThumbnail(file("letter.pdf"), 160); });
    ASSERT_TRUE(thumbnail.has_value());
    EXPECT_EQ(thumbnail->naturalSize, QSize(595, 842));
    EXPECT_EQ(thumbnail->image.height(), 160);
    EXPECT_NEAR(thumbnail->image.width(), 113, 1);
    EXPECT_EQ(QColor(thumbnail->image.pixel(5, 5)), QColor(Qt::black));
    EXPECT_EQ(QColor(thumbnail->image.pixel(100, 150)), QColor(Qt::white));
}

TEST_F(LinuxFileThumbnailsTest, BrokenOrMissingFilesGiveNothing) {
    write("broken.pdf", "%PDF-1.4\nthis is not a document");
    EXPECT_FALSE(thumbnails.contentThumbnail(file("broken.pdf"), 160).has_value());
    write("broken.png", "\x89PNG\r\n\x1a\nnot really");
    EXPECT_FALSE(thumbnails.contentThumbnail(file("broken.png"), 160).has_value());
    write("noise.webm", QByteArray(4096, 'x'));
    EXPECT_FALSE(thumbnails.contentThumbnail(file("noise.webm"), 160).has_value());
    EXPECT_FALSE(thumbnails.contentThumbnail(file("missing.jpg"), 160).has_value());
    EXPECT_FALSE(thumbnails.contentThumbnail(folder->path(), 160).has_value());
    // Neither image nor video nor PDF.
    write("notes.txt", "hello");
    EXPECT_FALSE(thumbnails.contentThumbnail(file("notes.txt"), 160).has_value());
}

TEST_F(LinuxFileThumbnailsTest, FileTypeIconWithoutATheme) {
    // The offscreen platform names no icon theme: no icon, and no crash.
    write("notes.txt", "hello");
    const QImage icon = thumbnails.fileTypeIcon(file("notes.txt"), 48);
    if (!icon.isNull()) {
        EXPECT_EQ(qMax(icon.width(), icon.height()), 48);
    }
}

TEST_F(LinuxFileThumbnailsTest, FileTypeIconFromAnInstalledTheme) {
    if (!QFileInfo::exists("/usr/share/icons/Adwaita/index.theme")) {
        GTEST_SKIP() << "no Adwaita icon theme installed";
    }
    const QStringList searchPaths = QIcon::themeSearchPaths();
    const QString theme = QIcon::themeName();
    QIcon::setThemeSearchPaths({"/usr/share/icons"});
    QIcon::setThemeName("Adwaita");

    write("notes.txt", "hello");
    EXPECT_EQ(thumbnails.fileTypeIcon(file("notes.txt"), 48).size(), QSize(48, 48));
    // Named by the file name alone when the file is gone; an unknown kind still gets a generic icon.
    EXPECT_EQ(thumbnails.fileTypeIcon(file("missing.odt"), 64).size(), QSize(64, 64));
    write("blob", QByteArray("\x00\x01\x02\xff", 4));
    EXPECT_EQ(thumbnails.fileTypeIcon(file("blob"), 32).size(), QSize(32, 32));
    // Off the main thread the theme is not touched.
    const QImage offMain = onAnotherThread([this] { return thumbnails.fileTypeIcon(file("notes.txt"), 48); });
    EXPECT_TRUE(offMain.isNull());

    QIcon::setThemeName(theme);
    QIcon::setThemeSearchPaths(searchPaths);
}
