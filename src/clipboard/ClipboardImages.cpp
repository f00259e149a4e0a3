#include "clipboard/ClipboardImages.h"

#include "clipboard/ClipboardLog.h"

#include <QBuffer>
#include <QImageReader>

namespace velmora::ClipboardImages {

namespace {

// Larger sides are not pictures anyone copies on purpose; decoding them could take minutes.
constexpr int maxSide = 30000;
// Enough for a full decode of a 50 MB PNG photo (about 11000 x 11000 pixels at 4 bytes); formats that
// decode at a reduced size only ever allocate the thumbnail.
constexpr int allocationLimitMegabytes = 512;

bool tooLarge(QSize size) {
    return size.width() > maxSide || size.height() > maxSide;
}

} // namespace

QSize scaledSize(QSize source, int target) {
    if (source.width() <= 0 || source.height() <= 0 || target <= 0)
        return {};
    const double ratio = double(source.width()) / source.height();
    if (ratio > 1)
        return {target, qMax(1, qRound(target / ratio))};
    return {qMax(1, qRound(target * ratio)), target};
}

QImage scaledToLongerSide(const QImage& image, int target) {
    const QSize size = scaledSize(image.size(), target);
    if (!size.isValid())
        return {};
    if (size == image.size())
        return image;
    return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

std::optional<QByteArray> pngData(const QImage& image) {
    if (image.isNull())
        return std::nullopt;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG")) {
        qCWarning(lcClipboard) << "Could not encode a" << image.size() << "image as PNG";
        return std::nullopt;
    }
    return bytes;
}

std::optional<DecodedImage> decodeImageData(const QByteArray& bytes, int target) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAllocationLimit(allocationLimitMegabytes);
    reader.setAutoTransform(true);

    // The header gives the size without decoding; a reader that can, then decodes straight to the
    // thumbnail's size.
    const QSize stored = reader.size();
    if (tooLarge(stored)) {
        qCWarning(lcClipboard) << "Pasted image of" << stored << "is too large to decode; kept without size";
        return std::nullopt;
    }
    if (stored.isValid() && reader.supportsOption(QImageIOHandler::ScaledSize))
        reader.setScaledSize(scaledSize(stored, target));

    const QImage image = reader.read();
    if (image.isNull()) {
        qCWarning(lcClipboard) << "Pasted image data of" << bytes.size()
                               << "bytes does not decode:" << reader.errorString();
        return std::nullopt;
    }
    QSize size = image.size();
    if (reader.scaledSize().isValid()) {
        size = stored;
        if (reader.transformation() & QImageIOHandler::TransformationRotate90)
            size.transpose();
    }
    if (tooLarge(size)) {
        qCWarning(lcClipboard) << "Pasted image of" << size << "is too large; kept without size";
        return std::nullopt;
    }
    const auto png = pngData(scaledToLongerSide(image, target));
    if (!png)
        return std::nullopt;
    return DecodedImage{size.width(), size.height(), *png};
}

QByteArray iconPng(const QImage& icon, int target) {
    return pngData(scaledToLongerSide(icon, target)).value_or(QByteArray());
}

} // namespace velmora::ClipboardImages
