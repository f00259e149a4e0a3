#include "ui/clipboard/QuickLookContentFactory.h"

#include "clipboard/ClipboardLog.h"
#include "ui/clipboard/QuickLookFileCard.h"
#include "ui/clipboard/QuickLookHtmlView.h"
#include "ui/clipboard/QuickLookImageView.h"
#include "ui/clipboard/QuickLookPdfView.h"
#include "ui/clipboard/QuickLookVideoView.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QLabel>
#include <QLocale>
#include <QMimeDatabase>
#include <QPlainTextEdit>
#include <QStringDecoder>
#include <QUrl>
#include <QVBoxLayout>

namespace velmora {

namespace {

// Text and documents open at a size that reads well; the screen may make it smaller.
constexpr QSize kDocumentSize(720, 540);
constexpr int kMessageWidth = 380;
// Text with a line longer than this is broken anywhere, not between words: laying out a megabyte
// without a space (minified code, base64) at word boundaries takes the main thread most of a minute.
constexpr qsizetype kLongLine = 10000;
// Image data in the order it is preferred.
const char* const kImageTypes[] = {"image/png", "image/jpeg", "image/tiff"};

enum class FileKind { Image, Video, Pdf, Text, Other };

bool isReadableImage(const QMimeType& type) {
    const QList<QByteArray> readable = QImageReader::supportedMimeTypes();
    if (readable.contains(type.name().toLatin1()))
        return true;
    for (const QString& alias : type.aliases()) {
        if (readable.contains(alias.toLatin1()))
            return true;
    }
    return false;
}

FileKind kindOf(const QString& path) {
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path);
    if (isReadableImage(type))
        return FileKind::Image;
    if (type.name().startsWith("video/"))
        return FileKind::Video;
    if (type.inherits("application/pdf"))
        return FileKind::Pdf;
    if (type.inherits("text/plain"))
        return FileKind::Text;
    return FileKind::Other;
}

QString titleOf(const SimpleClipboardItem& item, const QString& kind) {
    const QString app = item.sourceAppName.value_or(QString()).trimmed();
    return app.isEmpty() ? kind : QString("%1 \u2013 %2").arg(app, kind);
}

QLabel* label(const QString& text, const QString& name) {
    auto* label = new QLabel(text);
    label->setObjectName(name);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

// A plain sentence in place of the content, with the path or address it is about.
QWidget* messageView(const QString& text, const QString& detail = {}) {
    auto* view = new QWidget;
    view->setObjectName("quickLookMessage");
    auto* column = new QVBoxLayout(view);
    column->setContentsMargins(24, 24, 24, 24);
    column->addWidget(label(text, "message"));
    if (!detail.isEmpty()) {
        QLabel* about = label(detail, "detail");
        about->setTextInteractionFlags(Qt::TextSelectableByMouse);
        column->addWidget(about);
    }
    view->setFixedWidth(kMessageWidth);
    return view;
}

bool hasLongLine(const QString& text) {
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf(u'\n', start);
        if (end < 0)
            end = text.size();
        if (end - start > kLongLine)
            return true;
        start = end + 1;
    }
    return false;
}

QWidget* textView(const QString& text, bool truncated) {
    auto* view = new QWidget;
    view->setObjectName("quickLookText");
    auto* column = new QVBoxLayout(view);
    column->setContentsMargins(0, 0, 0, 0);
    auto* edit = new QPlainTextEdit;
    edit->setObjectName("text");
    edit->setReadOnly(true);
    if (hasLongLine(text))
        edit->setWordWrapMode(QTextOption::WrapAnywhere);
    edit->setPlainText(text);
    column->addWidget(edit, 1);
    if (truncated)
        column->addWidget(label("Only the first 1 MB is shown.", "truncated"));
    return view;
}

QString decodedText(const QByteArray& bytes) {
    QStringDecoder decoder(QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8));
    QString text = decoder(bytes);
    // Not UTF-8 after all: an older single-byte file still shows every character as some letter.
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

QString decodedHtml(const QByteArray& bytes) {
    QStringDecoder decoder(QStringConverter::encodingForHtml(bytes).value_or(QStringConverter::Utf8));
    return decoder(bytes);
}

} // namespace

QuickLookContentFactory::QuickLookContentFactory(FileThumbnails* thumbnails, QThreadPool& pool, QSize maxSize)
    : m_thumbnails(thumbnails), m_pool(pool), m_maxSize(maxSize) {}

QuickLookContent QuickLookContentFactory::make(const SimpleClipboardItem& item) const {
    if (item.fileURL) {
        const QUrl url(*item.fileURL);
        if (url.isLocalFile())
            return forFile(url.toLocalFile());
    }
    return forData(item);
}

QuickLookContent QuickLookContentFactory::forFile(const QString& path) const {
    const QFileInfo info(path);
    QuickLookContent content{nullptr, info.fileName().isEmpty() ? path : info.fileName(), {}};
    if (!info.exists()) {
        qCWarning(lcClipboard).noquote() << "The file to preview is gone:" << path;
        content.view = messageView("This file is no longer there.", path);
        return content;
    }
    switch (info.isFile() ? kindOf(path) : FileKind::Other) {
    case FileKind::Image:
        content.view = imageFile(path);
        break;
    case FileKind::Video:
        content.view = videoFile(path);
        break;
    case FileKind::Pdf:
        content.view = pdfFile(path, &content.preferredSize);
        break;
    case FileKind::Text:
        content.view = textFile(path);
        content.preferredSize = kDocumentSize;
        break;
    case FileKind::Other:
        content.view = otherFile(path);
        break;
    }
    return content;
}

QuickLookContent QuickLookContentFactory::forData(const SimpleClipboardItem& item) const {
    const SimpleClipboardPayload payload =
        item.payload.value_or(item.inMemoryPayload.value_or(SimpleClipboardPayload{}));
    for (const char* type : kImageTypes) {
        if (payload.get(type))
            return {imageData(payload), titleOf(item, "Image"), {}};
    }
    if (item.html) {
        return {new QuickLookHtmlView(decodedHtml(item.html->left(textLimit))), titleOf(item, "Text"),
                kDocumentSize};
    }
    if (item.plainText) {
        const bool truncated = item.plainText->size() > textLimit;
        return {textView(item.plainText->left(textLimit), truncated), titleOf(item, "Text"), kDocumentSize};
    }
    if (item.url) {
        auto* card = new QuickLookFileCard(QImage(), *item.url, QString(), QUrl(*item.url));
        card->setObjectName("quickLookLink");
        return {card, titleOf(item, "Link"), {}};
    }
    return {messageView("Nothing to preview."), titleOf(item, "Preview"), {}};
}

QWidget* QuickLookContentFactory::imageFile(const QString& path) const {
    QImageReader reader(path);
    if (const auto image = QuickLookImageView::decodeToFit(reader, m_maxSize, path))
        return new QuickLookImageView(*image);
    return messageView("This image cannot be shown.", path);
}

QWidget* QuickLookContentFactory::videoFile(const QString& path) const {
    if (!m_thumbnails) {
        qCWarning(lcClipboard) << "The preview has no way to read videos";
        return messageView("This video cannot be shown.", path);
    }
    return new QuickLookVideoView(path, *m_thumbnails, m_pool, m_maxSize);
}

QWidget* QuickLookContentFactory::pdfFile(const QString& path, QSize* preferredSize) const {
    auto* view = new QuickLookPdfView(path);
    if (!view->isLoaded()) {
        delete view;
        return messageView("This PDF cannot be shown.", path);
    }
    *preferredSize = view->preferredSize();
    return view;
}

QWidget* QuickLookContentFactory::textFile(const QString& path) const {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcClipboard).noquote() << "The preview cannot read" << path << ":" << file.errorString();
        return messageView("This file cannot be read.", path);
    }
    const QByteArray head = file.read(textLimit);
    return textView(decodedText(head), !file.atEnd());
}

QWidget* QuickLookContentFactory::otherFile(const QString& path) const {
    const QFileInfo info(path);
    const QImage icon = m_thumbnails ? m_thumbnails->fileTypeIcon(path, iconSize) : QImage();
    const QString detail =
        info.isDir() ? QString("Folder")
                     : QLocale().formattedDataSize(info.size(), 1, QLocale::DataSizeTraditionalFormat);
    auto* card = new QuickLookFileCard(icon, info.fileName().isEmpty() ? path : info.fileName(), detail,
                                       QUrl::fromLocalFile(path));
    card->setObjectName("quickLookFile");
    return card;
}

QWidget* QuickLookContentFactory::imageData(const SimpleClipboardPayload& payload) const {
    for (const char* type : kImageTypes) {
        const auto bytes = payload.get(type);
        if (!bytes)
            continue;
        QBuffer buffer;
        buffer.setData(*bytes);
        buffer.open(QIODevice::ReadOnly);
        QImageReader reader(&buffer);
        if (const auto image =
                QuickLookImageView::decodeToFit(reader, m_maxSize, QString("the copied %1").arg(type)))
            return new QuickLookImageView(*image);
    }
    return messageView("This image cannot be shown.");
}

} // namespace velmora
