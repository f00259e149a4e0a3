#include "ui/clipboard/QuickLookImageView.h"

#include "clipboard/ClipboardLog.h"

#include <QImageIOHandler>
#include <QImageReader>
#include <QPixmap>

namespace velmora {

namespace {

// The size stored in the file, turned as it will be shown.
QSize shownSize(QImageReader& reader) {
    const QSize stored = reader.size();
    return reader.transformation().testFlag(QImageIOHandler::TransformationRotate90) ? stored.transposed()
                                                                                     : stored;
}

QImage fitted(const QImage& image, QSize maxSize) {
    if (image.width() <= maxSize.width() && image.height() <= maxSize.height())
        return image;
    return image.scaled(maxSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QuickLookImageView::QuickLookImageView(const QImage& image, QWidget* parent) : QLabel(parent) {
    setObjectName("quickLookImage");
    setAlignment(Qt::AlignCenter);
    setPixmap(QPixmap::fromImage(image));
    setFixedSize(image.size());
}

std::optional<QImage> QuickLookImageView::decodeToFit(QImageReader& reader, QSize maxSize,
                                                      const QString& what) {
    reader.setAutoTransform(true);
    const QSize shown = shownSize(reader);
    if (shown.isValid() && (shown.width() > maxSize.width() || shown.height() > maxSize.height())) {
        const QSize target = shown.scaled(maxSize, Qt::KeepAspectRatio);
        const bool turned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
        reader.setScaledSize((turned ? target.transposed() : target).expandedTo(QSize(1, 1)));
    }
    const QImage image = reader.read();
    if (image.isNull()) {
        qCWarning(lcClipboard).noquote() << "The preview cannot show" << what << ":" << reader.errorString();
        return std::nullopt;
    }
    return fitted(image, maxSize);
}

} // namespace velmora
