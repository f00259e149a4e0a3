// The preview of history entries: the toggle, and which view each kind of entry gets, over the fake
// file thumbnails and real files in a temporary folder.
#include "ui/clipboard/QuickLookHelper.h"
#include "platform/fake/FakeFileThumbnails.h"
#include "ui/clipboard/QuickLookContentFactory.h"
#include "ui/clipboard/QuickLookHtmlView.h"
#include "ui/clipboard/QuickLookPdfView.h"
#include "ui/clipboard/QuickLookVideoView.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

QByteArray encoded(QSize size, const char* format, QColor color = Qt::darkCyan) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

SimpleClipboardItem fromApp(const QString& app = "Firefox") {
    SimpleClipboardItem item;
    item.sourceAppName = app;
    return item;
}

SimpleClipboardItem withPayload(const QString& type, const QByteArray& bytes) {
    SimpleClipboardItem item = fromApp();
    item.payload = SimpleClipboardPayload{};
    item.payload->set(type, bytes);
    return item;
}

struct Preview {
    FakeFileThumbnails thumbnails; // outlives the helper, as the agent's does
    QuickLookHelper helper{&thumbnails};
    QTemporaryDir dir;

    template <typename T = QWidget> T* find(const QString& name) const {
        return helper.window()->findChild<T*>(name);
    }
    QString text(const QString& name) const {
        const auto* label = find<QLabel>(name);
        return label ? label->text() : QString("<no %1>").arg(name);
    }
    QString file(const QString& name, const QByteArray& bytes) const {
        const QString path = dir.filePath(name);
        QFile out(path);
        out.open(QIODevice::WriteOnly);
        out.write(bytes);
        return path;
    }
    SimpleClipboardItem fileItem(const QString& path) const {
        SimpleClipboardItem item = fromApp("Files");
        item.fileURL = QUrl::fromLocalFile(path).toString();
        return item;
    }
    QString pdf(const QString& name, int pages) const {
        const QString path = dir.filePath(name);
        QPdfWriter writer(path);
        writer.setPageSize(QPageSize(QPageSize::A6));
        QPainter painter(&writer);
        for (int page = 1; page <= pages; ++page) {
            if (page > 1)
                writer.newPage();
            painter.setFont(QFont("DejaVu Sans", 28));
            painter.drawText(QRect(0, 0, writer.width(), writer.height()), Qt::AlignCenter,
                             QString("Page %1").arg(page));
        }
        painter.end();
        return path;
    }
    QSize room() const {
        return (QSizeF(QGuiApplication::primaryScreen()->availableGeometry().size()) * 0.85).toSize();
    }
};

} // namespace

TEST(QuickLookHelper, TheSameKeyOpensAndClosesWithoutTakingTheFocus) {
    Preview p;
    QSignalSpy changes(&p.helper, &QuickLookHelper::visibilityChanged);
    const SimpleClipboardItem item = p.fileItem(p.file("notes.txt", "hello"));

    p.helper.toggle(item);
    EXPECT_TRUE(p.helper.isVisible());
    EXPECT_EQ(p.helper.fileURL(), item.fileURL);
    EXPECT_TRUE(p.helper.window()->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(p.helper.window()->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_EQ(p.helper.window()->windowTitle(), "notes.txt");

    // Closing also takes the entry given, whichever it is: the key names the entry selected now.
    p.helper.toggle(fromApp());
    EXPECT_FALSE(p.helper.isVisible());
    EXPECT_EQ(p.helper.fileURL(), std::nullopt);
    ASSERT_EQ(changes.size(), 2);
    EXPECT_TRUE(changes.at(0).at(0).toBool());
    EXPECT_FALSE(changes.at(1).at(0).toBool());

    // Escape, should the window ever get the keyboard, closes it as the window manager's button does.
    p.helper.toggle(item);
    QTest::keyClick(p.helper.window(), Qt::Key_Escape);
    EXPECT_FALSE(p.helper.isVisible());
    p.helper.toggle(item);
    p.helper.window()->close();
    EXPECT_FALSE(p.helper.isVisible());
    EXPECT_EQ(changes.size(), 6);
    p.helper.toggle(item);
    EXPECT_TRUE(p.helper.isVisible()) << "a preview closed from its window opens again at the next key";
}

TEST(QuickLookHelper, ShowReplacesTheEntryAndTheWindowStaysBesideThePanel) {
    Preview p;
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QRect panel(screen.left() + 20, screen.top() + 40, 200, 300);
    p.helper.setAnchor(panel);
    p.helper.show(withPayload("image/png", encoded({100, 60}, "PNG")));
    const QRect first = p.helper.window()->frameGeometry();
    EXPECT_GT(first.left(), panel.right());
    EXPECT_EQ(first.top(), panel.top());

    // The selection moved while the preview is up: the window takes the next entry's size at once.
    p.helper.show(withPayload("image/png", encoded({300, 200}, "PNG")));
    EXPECT_TRUE(p.helper.isVisible());
    EXPECT_EQ(p.helper.window()->size(), QSize(300, 200));
    EXPECT_EQ(p.helper.window()->findChildren<QLabel*>("quickLookImage").size(), 1);

    p.helper.setAnchor(panel.translated(0, 100));
    EXPECT_EQ(p.helper.window()->frameGeometry().top(), panel.top() + 100);
}

TEST(QuickLookHelper, ImageDataShowsAtItsOwnSizeOrShrunkToTheScreen) {
    Preview p;
    p.helper.toggle(withPayload("image/png", encoded({120, 80}, "PNG")));
    const auto* image = p.find<QLabel>("quickLookImage");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixmap().size(), QSize(120, 80));
    EXPECT_EQ(p.helper.window()->windowTitle(), "Firefox \u2013 Image");
    p.helper.close();

    p.helper.toggle(withPayload("image/jpeg", encoded({4000, 1000}, "JPEG")));
    image = p.find<QLabel>("quickLookImage");
    ASSERT_NE(image, nullptr);
    const QSize shown = image->pixmap().size();
    EXPECT_EQ(shown.width(), p.room().width());
    EXPECT_NEAR(double(shown.width()) / shown.height(), 4.0, 0.05);
    EXPECT_LE(p.helper.window()->width(), p.room().width());
}

TEST(QuickLookHelper, ImageDataThatDoesNotDecodeFallsBackThenSaysSo) {
    Preview p;
    SimpleClipboardItem item = withPayload("image/png", "not a png at all");
    item.payload->set("image/tiff", encoded({30, 20}, "TIFF"));
    p.helper.toggle(item);
    ASSERT_NE(p.find<QLabel>("quickLookImage"), nullptr) << "the TIFF is shown when the PNG is broken";
    EXPECT_EQ(p.find<QLabel>("quickLookImage")->pixmap().size(), QSize(30, 20));
    p.helper.close();

    p.helper.toggle(withPayload("image/png", QByteArray("\x89PNG\r\n\x1a\n garbage", 17)));
    EXPECT_TRUE(p.helper.isVisible());
    EXPECT_EQ(p.text("message"), "This image cannot be shown.");
}

TEST(QuickLookHelper, HtmlIsRenderedSealedOffAndWinsOverPlainText) {
    Preview p;
    const QString picture = p.file("local.png", encoded({8, 8}, "PNG"));
    SimpleClipboardItem item = fromApp();
    item.html =
        QString(
            "<meta charset=\"utf-8\"><p>Caf\u00e9 <b>bold</b> <a href=\"https://example.org\">link</a></p>"
            "<img src=\"https://tracker.example/pixel.png\"><img src=\"%1\">")
            .arg(QUrl::fromLocalFile(picture).toString())
            .toUtf8();
    item.plainText = "Café bold link";
    p.helper.toggle(item);

    auto* html = p.find<QuickLookHtmlView>("quickLookHtml");
    ASSERT_NE(html, nullptr);
    EXPECT_TRUE(html->toPlainText().startsWith("Caf\u00e9 bold link")) << html->toPlainText().toStdString();
    EXPECT_FALSE(html->toPlainText().contains("<b>"));
    EXPECT_FALSE(html->openLinks());
    EXPECT_FALSE(html->openExternalLinks());
    // What the renderer asks for: nothing from the network or the disk, pictures embedded in the page.
    QTextDocument* page = html->document();
    EXPECT_TRUE(
        page->resource(QTextDocument::ImageResource, QUrl("https://tracker.example/pixel.png")).isNull());
    EXPECT_TRUE(page->resource(QTextDocument::ImageResource, QUrl::fromLocalFile(picture)).isNull());
    const QUrl embedded("data:image/png;base64," + encoded({4, 4}, "PNG").toBase64());
    EXPECT_FALSE(page->resource(QTextDocument::ImageResource, embedded).isNull());
    EXPECT_EQ(p.helper.window()->windowTitle(), "Firefox \u2013 Text");
}

TEST(QuickLookHelper, TextLinksAndEmptyEntriesEachGetTheirView) {
    Preview p;
    SimpleClipboardItem text = fromApp("");
    text.plainText = "int main() { return 0; }";
    text.url = "https://example.org";
    p.helper.toggle(text);
    auto* edit = p.find<QPlainTextEdit>("text");
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->toPlainText(), "int main() { return 0; }");
    EXPECT_TRUE(edit->isReadOnly());
    EXPECT_TRUE(edit->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    EXPECT_EQ(p.helper.window()->windowTitle(), "Text") << "no source app: the kind alone";
    p.helper.close();

    SimpleClipboardItem link = fromApp();
    link.url = "https://example.org/page";
    p.helper.toggle(link);
    ASSERT_NE(p.find("quickLookLink"), nullptr);
    EXPECT_EQ(p.text("name"), "https://example.org/page");
    EXPECT_NE(p.find<QPushButton>("open"), nullptr);
    p.helper.close();

    p.helper.toggle(fromApp());
    EXPECT_EQ(p.text("message"), "Nothing to preview.");
}

TEST(QuickLookHelper, FilesAreShownByTheirType) {
    Preview p;
    p.helper.toggle(p.fileItem(p.file("photo.png", encoded({64, 48}, "PNG"))));
    ASSERT_NE(p.find<QLabel>("quickLookImage"), nullptr);
    EXPECT_EQ(p.find<QLabel>("quickLookImage")->pixmap().size(), QSize(64, 48));
    EXPECT_EQ(p.helper.window()->windowTitle(), "photo.png");
    p.helper.close();

    p.helper.toggle(p.fileItem(p.file("broken.jpg", "JFIF? no")));
    EXPECT_EQ(p.text("message"), "This image cannot be shown.");
    p.helper.close();

    p.helper.toggle(p.fileItem(p.file("readme.md", "# Title\nbody\n")));
    ASSERT_NE(p.find<QPlainTextEdit>("text"), nullptr);
    EXPECT_EQ(p.find<QPlainTextEdit>("text")->toPlainText(), "# Title\nbody\n");
    EXPECT_EQ(p.find("truncated"), nullptr);
    p.helper.close();

    const QString archive = p.file("backup.tar.xz", QByteArray(2048, 'x'));
    p.thumbnails.setIcon(archive, QImage(QSize(128, 128), QImage::Format_ARGB32));
    p.helper.toggle(p.fileItem(archive));
    ASSERT_NE(p.find("quickLookFile"), nullptr);
    EXPECT_EQ(p.text("name"), "backup.tar.xz");
    EXPECT_FALSE(p.text("detail").isEmpty());
    EXPECT_NE(p.find("icon"), nullptr);
    EXPECT_EQ(p.thumbnails.iconCalls(), 1);
    EXPECT_NE(p.find<QPushButton>("open"), nullptr);
}

TEST(QuickLookHelper, ALargeTextFileShowsItsFirstMegabyte) {
    Preview p;
    const qint64 limit = QuickLookContentFactory::textLimit;
    p.helper.toggle(p.fileItem(p.file("big.log", QByteArray(limit + 10, 'a'))));
    ASSERT_NE(p.find<QPlainTextEdit>("text"), nullptr);
    EXPECT_EQ(p.find<QPlainTextEdit>("text")->toPlainText().size(), limit);
    EXPECT_NE(p.find("truncated"), nullptr);
    // One line without a space: broken anywhere, since breaking it between words takes the layout ages.
    EXPECT_EQ(p.find<QPlainTextEdit>("text")->wordWrapMode(), QTextOption::WrapAnywhere);
}

TEST(QuickLookHelper, AFileThatIsGoneSaysSoWithItsPath) {
    Preview p;
    const QString path = p.dir.filePath("moved away.pdf");
    p.helper.toggle(p.fileItem(path));
    EXPECT_TRUE(p.helper.isVisible());
    EXPECT_EQ(p.text("message"), "This file is no longer there.");
    EXPECT_EQ(p.text("detail"), path);
    EXPECT_EQ(p.helper.window()->windowTitle(), "moved away.pdf");
}

TEST(QuickLookHelper, AVideoShowsItsFirstFrameMadeOffTheMainThreadAndItsNaturalSize) {
    Preview p;
    const QString clip = p.file("clip.mp4", "not decoded here: the thumbnails are fake");
    p.thumbnails.setContent(clip,
                            FileThumbnail{QImage(QSize(640, 360), QImage::Format_RGB32), QSize(1920, 1080)});
    p.helper.toggle(p.fileItem(clip));

    auto* video = p.find<QuickLookVideoView>("quickLookVideo");
    ASSERT_NE(video, nullptr);
    // The frame comes back through the event loop, so the window shows the wait first.
    EXPECT_TRUE(p.find<QLabel>("loading")->isVisible());
    QSignalSpy finished(video, &QuickLookVideoView::finished);
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_FALSE(p.find<QLabel>("loading")->isVisible());
    EXPECT_EQ(p.find<QLabel>("frame")->pixmap().size(), QSize(640, 360));
    EXPECT_EQ(p.text("naturalSize"), "1920 \u00d7 1080");
    EXPECT_EQ(p.thumbnails.lastTarget(), QuickLookVideoView::frameTarget);
    EXPECT_NE(p.find<QPushButton>("open"), nullptr);
    EXPECT_GE(p.helper.window()->width(), 640) << "the window grows from the wait to the frame";

    p.helper.close();
    const QString unreadable = p.file("broken.webm", "");
    p.helper.toggle(p.fileItem(unreadable));
    auto* failed = p.find<QuickLookVideoView>("quickLookVideo");
    ASSERT_NE(failed, nullptr);
    QSignalSpy failedSpy(failed, &QuickLookVideoView::finished);
    ASSERT_TRUE(failedSpy.wait(10000));
    EXPECT_EQ(p.text("message"), "This video cannot be shown.");
}

TEST(QuickLookHelper, APdfIsShownPageByPage) {
    Preview p;
    p.helper.toggle(p.fileItem(p.pdf("two pages.pdf", 2)));
    auto* pdf = p.find<QuickLookPdfView>("quickLookPdf");
    ASSERT_NE(pdf, nullptr);
    EXPECT_EQ(pdf->pageCount(), 2);
    EXPECT_EQ(p.text("pageLabel"), "Page 1 of 2");
    auto* previous = p.find<QPushButton>("previousPage");
    auto* next = p.find<QPushButton>("nextPage");
    EXPECT_FALSE(previous->isEnabled());

    QTest::mouseClick(next, Qt::LeftButton);
    EXPECT_EQ(pdf->currentPage(), 1);
    EXPECT_EQ(p.text("pageLabel"), "Page 2 of 2");
    EXPECT_FALSE(next->isEnabled());
    EXPECT_TRUE(previous->isEnabled());
    pdf->showPage(5); // past the end: stays
    EXPECT_EQ(pdf->currentPage(), 1);
    p.helper.close();

    p.helper.toggle(p.fileItem(p.file("fake.pdf", "%PDF-1.4 and then nothing")));
    EXPECT_EQ(p.text("message"), "This PDF cannot be shown.");
}

// Not a check: pictures of the image, PDF and text previews for a person to look at, written when
// VELMORA_PREVIEW_SCREENSHOTS names a folder (preview-image.png, preview-pdf.png, preview-text.png).
TEST(QuickLookScreenshots, SavesTheImagePdfAndTextPreviews) {
    const QString folder = qEnvironmentVariable("VELMORA_PREVIEW_SCREENSHOTS");
    if (folder.isEmpty())
        GTEST_SKIP() << "set VELMORA_PREVIEW_SCREENSHOTS to a folder to get the pictures";
    Preview p;
    const auto save = [&](const SimpleClipboardItem& item, const QString& name) {
        p.helper.toggle(item);
        QTest::qWait(1500); // PDF pages are rendered on a worker thread
        EXPECT_TRUE(p.helper.window()->grab().save(QString("%1/preview-%2.png").arg(folder, name)));
        p.helper.close();
    };

    QImage picture(QSize(480, 300), QImage::Format_RGB32);
    QPainter painter(&picture);
    QLinearGradient sky(0, 0, 0, 300);
    sky.setColorAt(0, QColor("#1e3c72"));
    sky.setColorAt(1, QColor("#f0a35e"));
    painter.fillRect(picture.rect(), sky);
    painter.setBrush(QColor("#ffd75e"));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPoint(340, 190), 60, 60);
    painter.setBrush(QColor("#2b2d35"));
    painter.drawPolygon(QPolygon({QPoint(0, 300), QPoint(150, 150), QPoint(300, 300)}));
    painter.end();
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    save(withPayload("image/png", png), "image");

    save(p.fileItem(p.pdf("report.pdf", 3)), "pdf");

    SimpleClipboardItem text = fromApp("Terminal");
    text.plainText =
        "#include <cstdio>\n\nint main() {\n    std::puts(\"hello from the clipboard\");\n    return 0;\n}\n";
    save(text, "text");
}
