#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <optional>

namespace velmora {

// The pictures of the clipboard history: scaling, PNG encoding and decoding of pasted image data.
// Everything here is reentrant and may run on a worker thread.
namespace ClipboardImages {

// Thumbnails of pasted images are this long on their longer side; source application icons this.
inline constexpr int thumbnailTarget = 160;
inline constexpr int iconTarget = 32;

// The size whose longer side is target, with the aspect ratio of source; small sizes are scaled up.
// Invalid when source or target is empty or negative.
QSize scaledSize(QSize source, int target);

// The image scaled (smoothly) so that its longer side is target; a null image when that cannot be.
QImage scaledToLongerSide(const QImage& image, int target);

// The image as PNG; nothing when the image is null or encoding fails.
std::optional<QByteArray> pngData(const QImage& image);

// A decoded pasted image: its true size and a PNG thumbnail.
struct DecodedImage {
    int width = 0;
    int height = 0;
    QByteArray thumbnailPng;
};

// Decodes image data of any format Qt reads (PNG, JPEG, TIFF, WebP ...) into its size and a
// thumbnail whose longer side is target. Formats that can decode at a reduced size (JPEG, SVG) never
// hold the full-resolution image. Nothing for data that does not decode or is absurdly large.
std::optional<DecodedImage> decodeImageData(const QByteArray& bytes, int target = thumbnailTarget);

// An application icon as PNG, target long on its longer side; empty when the icon is null.
QByteArray iconPng(const QImage& icon, int target = iconTarget);

} // namespace ClipboardImages

} // namespace velmora
