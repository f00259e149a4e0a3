#include "platform/linux/LinuxFileThumbnails.h"

#include "core/MainThread.h"
#include "platform/linux/LinuxLog.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QImageReader>
#include <QMimeDatabase>
#include <QPainter>
#include <QPdfDocument>
#include <QPixmap>
#include <QStringList>

#include <libffmpegthumbnailer/videothumbnailerc.h>

#include <cstdlib>
#include <cstring>
#include <memory>

extern "C" {
#include <libavformat/avformat.h>
}

namespace velmora {

namespace {

const QStringList videoExtensions = {"mp4",  "mov",  "avi", "mkv", "flv", "wmv", "m4v",
                                     "webm", "mpeg", "mpg", "3gp", "3g2", "ogg", "ogv"};
const QStringList imageExtensions = {"jpg", "jpeg", "png",  "gif",  "bmp", "tiff",
                                     "tif", "webp", "heic", "heif", "svg", "ico"};

// Larger sides are not pictures anyone copies on purpose; decoding them could take minutes.
constexpr int maxImageSide = 30000;
// Enough for a full decode of a photo of about 11000 x 11000 pixels; readers that decode at a reduced
// size only allocate the thumbnail.
constexpr int imageAllocationLimitMegabytes = 512;

QSize fitting(QSize size, int target) {
    return size.scaled(target, target, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

// The picture with its longer side at target, scaled up or down as needed.
QImage fitted(const QImage& image, int target) {
    const QSize size = fitting(image.size(), target);
    return size == image.size() ? image : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

std::optional<FileThumbnail> imageThumbnail(const QString& path, int target) {
    QImageReader reader(path);
    reader.setAllocationLimit(imageAllocationLimitMegabytes);
    reader.setAutoTransform(true);
    const QSize stored = reader.size();
    if (stored.width() > maxImageSide || stored.height() > maxImageSide) {
        qCWarning(lcLinux).noquote() << "The image" << path << "is too large for a thumbnail:" << stored;
        return std::nullopt;
    }
    if (stored.isValid() && reader.supportsOption(QImageIOHandler::ScaledSize))
        reader.setScaledSize(fitting(stored, target));
    const QImage image = reader.read();
    if (image.isNull()) {
        qCWarning(lcLinux).noquote() << "The image" << path << "does not decode:" << reader.errorString();
        return std::nullopt;
    }
    QSize natural = image.size();
    if (reader.scaledSize().isValid()) {
        natural = stored;
        if (reader.transformation() & QImageIOHandler::TransformationRotate90)
            natural.transpose();
    }
    return FileThumbnail{fitted(image, target), natural};
}

// ffmpegthumbnailer reports errors only through a callback without context; the last one on this
// thread goes into the warning.
thread_local QString lastThumbnailerError;

void rememberThumbnailerError(ThumbnailerLogLevel level, const char* message) {
    if (level == ThumbnailerLogLevelError)
        lastThumbnailerError = QString::fromUtf8(message).trimmed();
}

std::optional<QImage> videoFrame(const QString& path, int target) {
    const std::unique_ptr<video_thumbnailer, decltype(&video_thumbnailer_destroy)> thumbnailer(
        video_thumbnailer_create(), video_thumbnailer_destroy);
    const std::unique_ptr<image_data, decltype(&video_thumbnailer_destroy_image_data)> data(
        video_thumbnailer_create_image_data(), video_thumbnailer_destroy_image_data);
    if (!thumbnailer || !data)
        return std::nullopt;
    video_thumbnailer_set_size(thumbnailer.get(), target, target);
    thumbnailer->thumbnail_image_type = Png;
    video_thumbnailer_set_log_callback(thumbnailer.get(), rememberThumbnailerError);
    lastThumbnailerError.clear();

    const QByteArray file = QFile::encodeName(path);
    if (video_thumbnailer_generate_thumbnail_to_buffer(thumbnailer.get(), file.constData(), data.get()) !=
        0) {
        qCWarning(lcLinux).noquote() << "No frame from the video" << path << ":" << lastThumbnailerError;
        return std::nullopt;
    }
    const QImage image = QImage::fromData(data->image_data_ptr, data->image_data_size, "PNG");
    if (image.isNull()) {
        qCWarning(lcLinux).noquote() << "The frame of the video" << path << "does not decode";
        return std::nullopt;
    }
    return image;
}

// libavformat's error codes: negated errno values or four-letter tags.
QString avErrorText(int error) {
    if (error == AVERROR_INVALIDDATA)
        return "not a video it can read";
    if (error == AVERROR_EOF)
        return "ends too early";
    const int code = -error;
    if (code > 0 && code < 4096)
        return QString::fromLocal8Bit(std::strerror(code));
    QString tag;
    for (int shift = 0; shift < 32; shift += 8) {
        const char c = char((code >> shift) & 0xff);
        tag += QChar::isPrint(uchar(c)) ? QChar(c) : QChar('?');
    }
    return tag;
}

// A display matrix turned by a quarter (90 or 270 degrees) shows the frame with its sides swapped.
bool quarterTurned(const AVStream* stream) {
    size_t size = 0;
    const auto* matrix =
        reinterpret_cast<const int32_t*>(av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, &size));
    return matrix && size >= 9 * sizeof(int32_t) && std::abs(matrix[1]) > std::abs(matrix[0]);
}

// The size of the video's main picture stream as it is shown.
std::optional<QSize> videoNaturalSize(const QString& path) {
    const QByteArray file = QFile::encodeName(path);
    AVFormatContext* opened = nullptr;
    if (const int error = avformat_open_input(&opened, file.constData(), nullptr, nullptr); error < 0) {
        qCWarning(lcLinux).noquote() << "The video" << path << "does not open:" << avErrorText(error);
        return std::nullopt;
    }
    const std::unique_ptr<AVFormatContext, void (*)(AVFormatContext*)> context(
        opened, [](AVFormatContext* c) { avformat_close_input(&c); });
    if (avformat_find_stream_info(context.get(), nullptr) < 0) {
        qCWarning(lcLinux).noquote() << "The video" << path << "has no readable stream information";
        return std::nullopt;
    }
    const int index = av_find_best_stream(context.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0) {
        qCWarning(lcLinux).noquote() << "The file" << path << "has no video stream";
        return std::nullopt;
    }
    const AVStream* stream = context->streams[index];
    QSize size(stream->codecpar->width, stream->codecpar->height);
    if (size.isEmpty()) {
        qCWarning(lcLinux).noquote() << "The video" << path << "has no picture size";
        return std::nullopt;
    }
    if (quarterTurned(stream))
        size.transpose();
    return size;
}

std::optional<FileThumbnail> videoThumbnail(const QString& path, int target) {
    const auto natural = videoNaturalSize(path);
    if (!natural)
        return std::nullopt;
    const auto frame = videoFrame(path, target);
    if (!frame)
        return std::nullopt;
    return FileThumbnail{fitted(*frame, target), *natural};
}

// The first page on white (PDF pages are rendered on a transparent ground); its natural size in points.
std::optional<FileThumbnail> pdfThumbnail(const QString& path, int target) {
    QPdfDocument document;
    if (const auto error = document.load(path); error != QPdfDocument::Error::None) {
        qCWarning(lcLinux).noquote() << "The PDF file" << path << "does not load:" << error;
        return std::nullopt;
    }
    const QSizeF points = document.pageCount() > 0 ? document.pagePointSize(0) : QSizeF();
    const QSize natural = points.toSize();
    if (natural.isEmpty()) {
        qCWarning(lcLinux).noquote() << "The PDF file" << path << "has no first page to show";
        return std::nullopt;
    }
    const QSize size = fitting(natural, target);
    const QImage page = document.render(0, size);
    if (page.isNull()) {
        qCWarning(lcLinux).noquote() << "The first page of the PDF file" << path << "does not render";
        return std::nullopt;
    }
    QImage image(page.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter(&image).drawImage(0, 0, page);
    return FileThumbnail{image, natural};
}

} // namespace

std::optional<FileThumbnail> LinuxFileThumbnails::contentThumbnail(const QString& path, int target) {
    if (target <= 0)
        return std::nullopt;
    const QFileInfo info(path);
    if (!info.isFile() || !info.isReadable()) {
        qCWarning(lcLinux).noquote() << "No thumbnail for" << path << ": not a readable file";
        return std::nullopt;
    }
    const QString extension = info.suffix().toLower();
    if (imageExtensions.contains(extension))
        return imageThumbnail(path, target);
    if (videoExtensions.contains(extension))
        return videoThumbnail(path, target);
    if (extension == "pdf")
        return pdfThumbnail(path, target);
    return std::nullopt;
}

QImage LinuxFileThumbnails::fileTypeIcon(const QString& path, int size) {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        qCWarning(lcLinux).noquote() << "No icon for" << path << "without a GUI application";
        return {};
    }
    if (!isMainThread()) {
        qCWarning(lcLinux).noquote() << "The icon for" << path << "was asked for off the main thread";
        return {};
    }
    if (size <= 0)
        return {};
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path);
    const QString generic = type.inherits("text/plain") ? "text-x-generic" : "application-octet-stream";
    for (const QString& name :
         {type.iconName(), type.genericIconName(), generic, QString("application-x-generic")}) {
        const QIcon icon = QIcon::fromTheme(name);
        if (icon.isNull())
            continue;
        const QImage image = icon.pixmap(QSize(size, size)).toImage();
        if (!image.isNull())
            return fitted(image, size);
    }
    return {};
}

} // namespace velmora
