// Renders an SVG icon into the PNG sizes of an icon theme, laid out as the theme wants them:
//   render-icon ICON.svg THEME_DIR NAME SIZE...   writes THEME_DIR/<SIZE>x<SIZE>/apps/NAME.png
// Qt's own SVG renderer, so that the build needs no image tool beyond the libraries it links.
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 5) {
        std::fputs("usage: render-icon ICON.svg THEME_DIR NAME SIZE...\n", stderr);
        return 2;
    }
    QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
    if (!svg.isValid()) {
        std::fprintf(stderr, "render-icon: %s is not an SVG image Qt can draw\n", argv[1]);
        return 1;
    }
    const QString themeDir = QString::fromLocal8Bit(argv[2]);
    const QString name = QString::fromLocal8Bit(argv[3]);
    for (int i = 4; i < argc; ++i) {
        bool ok = false;
        const int size = QString(argv[i]).toInt(&ok);
        if (!ok || size < 1 || size > 1024) {
            std::fprintf(stderr, "render-icon: %s is not an icon size\n", argv[i]);
            return 2;
        }
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        svg.render(&painter, QRectF(0, 0, size, size));
        painter.end();
        const QString folder = QString("%1/%2x%2/apps").arg(themeDir).arg(size);
        const QString file = folder + "/" + name + ".png";
        if (!QDir().mkpath(folder) || !image.save(file, "PNG")) {
            std::fprintf(stderr, "render-icon: could not write %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
