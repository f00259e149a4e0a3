#pragma once

#include <QImage>
#include <QLabel>

#include <optional>

class QImageReader;

namespace velmora {

// An image at its own size, or scaled down (never up) to fit the room the screen gives.
class QuickLookImageView final : public QLabel {
    Q_OBJECT
public:
    QuickLookImageView(const QImage& image, QWidget* parent = nullptr);

    // The image the reader gives, decoded at most maxSize large (formats that can decode at a reduced
    // size, such as JPEG, never hold the full image); the Exif orientation is applied. Nothing, with a
    // warning naming what, when it does not decode.
    static std::optional<QImage> decodeToFit(QImageReader& reader, QSize maxSize, const QString& what);
};

} // namespace velmora
