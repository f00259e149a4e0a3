#include "clipboard/ClipboardImages.h"

#include <QBuffer>
#include <QPainter>
#include <gtest/gtest.h>

using namespace velmora;
using namespace velmora::ClipboardImages;

namespace {

QByteArray encoded(const QImage& image, const char* format, int quality = -1) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, quality);
    return bytes;
}

// A picture with a left half and a right half in different colours, so that scaling that loses the
// aspect or mirrors it shows.
QImage halves(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(width / 2, 0, width - width / 2, height, Qt::blue);
    return image;
}

} // namespace

TEST(ClipboardImagesTest, ScaledSizePutsTheTargetOnTheLongerSideKeepingTheAspect) {
    EXPECT_EQ(scaledSize({1000, 500}, 160), QSize(160, 80));
    EXPECT_EQ(scaledSize({100, 400}, 160), QSize(40, 160));
    EXPECT_EQ(scaledSize({50, 50}, 160), QSize(160, 160)); // small images grow
    EXPECT_EQ(scaledSize({1000, 333}, 160), QSize(160, 53));
    EXPECT_EQ(scaledSize({64, 64}, 32), QSize(32, 32));
    // A sliver keeps at least one pixel on its short side.
    EXPECT_EQ(scaledSize({30000, 1}, 160), QSize(160, 1));
}

TEST(ClipboardImagesTest, ScaledSizeOfNothingIsInvalid) {
    EXPECT_FALSE(scaledSize({0, 0}, 160).isValid());
    EXPECT_FALSE(scaledSize({100, 0}, 160).isValid());
    EXPECT_FALSE(scaledSize({-5, 10}, 160).isValid());
    EXPECT_FALSE(scaledSize({100, 100}, 0).isValid());
    EXPECT_TRUE(scaledToLongerSide(QImage(), 160).isNull());
}

TEST(ClipboardImagesTest, ScaledImageKeepsItsContentInPlace) {
    const QImage scaled = scaledToLongerSide(halves(1000, 500), 160);
    ASSERT_EQ(scaled.size(), QSize(160, 80));
    EXPECT_EQ(QColor(scaled.pixel(10, 40)), QColor(Qt::red));
    EXPECT_EQ(QColor(scaled.pixel(150, 40)), QColor(Qt::blue));
}

TEST(ClipboardImagesTest, PngRoundTripsAndNothingComesOfANullImage) {
    const QImage image = halves(30, 20);
    const auto png = pngData(image);
    ASSERT_TRUE(png.has_value());
    EXPECT_TRUE(png->startsWith("\x89PNG"));
    const QImage back = QImage::fromData(*png, "PNG");
    EXPECT_EQ(back.convertToFormat(QImage::Format_RGB32), image);

    EXPECT_FALSE(pngData(QImage()).has_value());
}

TEST(ClipboardImagesTest, IconPngIsSmallAndEmptyForANullIcon) {
    const QByteArray png = iconPng(halves(256, 256));
    EXPECT_EQ(QImage::fromData(png, "PNG").size(), QSize(32, 32));
    EXPECT_TRUE(iconPng(QImage()).isEmpty());
}

TEST(ClipboardImagesTest, DecodedPngGivesItsTrueSizeAndAThumbnail) {
    const auto decoded = decodeImageData(encoded(halves(1000, 500), "PNG"));
    ASSERT_TRUE(decoded.has_value());
    EXPECT_EQ(decoded->width, 1000);
    EXPECT_EQ(decoded->height, 500);
    const QImage thumbnail = QImage::fromData(decoded->thumbnailPng, "PNG");
    ASSERT_EQ(thumbnail.size(), QSize(160, 80));
    EXPECT_EQ(QColor(thumbnail.pixel(10, 40)), QColor(Qt::red));
    EXPECT_EQ(QColor(thumbnail.pixel(150, 40)), QColor(Qt::blue));
}

TEST(ClipboardImagesTest, LargeImagesDecodeToSmallThumbnails) {
    // Both are larger than Qt's default decoding allowance (128 MB) when decoded whole.
    const QImage large = halves(8000, 6000);
    for (const char* format : {"JPEG", "PNG"}) {
        const auto decoded = decodeImageData(encoded(large, format, 50));
        ASSERT_TRUE(decoded.has_value()) << format;
        EXPECT_EQ(decoded->width, 8000) << format;
        EXPECT_EQ(decoded->height, 6000) << format;
        EXPECT_EQ(QImage::fromData(decoded->thumbnailPng, "PNG").size(), QSize(160, 120)) << format;
    }
}

TEST(ClipboardImagesTest, TinyImageGrowsToTheTarget) {
    const auto decoded = decodeImageData(encoded(halves(10, 40), "PNG"), 80);
    ASSERT_TRUE(decoded.has_value());
    EXPECT_EQ(decoded->width, 10);
    EXPECT_EQ(QImage::fromData(decoded->thumbnailPng, "PNG").size(), QSize(20, 80));
}

TEST(ClipboardImagesTest, DataThatDoesNotDecodeGivesNothing) {
    EXPECT_FALSE(decodeImageData(QByteArray()).has_value());
    EXPECT_FALSE(decodeImageData("not an image at all").has_value());
    // A PNG cut off after its header: the size is known, the pixels are not.
    const QByteArray png = encoded(halves(300, 200), "PNG");
    EXPECT_FALSE(decodeImageData(png.left(40)).has_value());
}

TEST(ClipboardImagesTest, AbsurdlyWideImageIsRefused) {
    const auto decoded = decodeImageData(encoded(halves(40000, 2), "PNG"));
    EXPECT_FALSE(decoded.has_value());
}
