// clipboard_fill FOLDER COUNT: fills the clipboard store in FOLDER (as the agent keeps it under
// $XDG_DATA_HOME/Velmora) with COUNT entries of about 200 characters of text, from ten applications,
// one in a hundred an image with its thumbnail, a second apart. For the history benchmarks.
#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardImages.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <cstdio>

using namespace velmora;

namespace {

const QStringList kWords = {"weather", "report", "invoice",  "meeting", "lisbon", "python",
                            "kernel",  "bread",  "forecast", "window",  "budget", "review",
                            "ticket",  "deploy", "garden",   "coffee",  "the",    "and",
                            "of",      "to",     "with",     "for",     "a",      "on"};
const QStringList kApps = {"Text Editor", "Terminal", "Web Browser", "Mail", "Chat",
                           "Files",       "Notes",    "Calendar",    "IDE",  "Spreadsheet"};

QString sentence(QRandomGenerator& random, int characters) {
    QString text;
    while (text.size() < characters) {
        text += kWords[random.bounded(kWords.size())];
        text += random.bounded(12) == 0 ? QStringLiteral(".\n") : QStringLiteral(" ");
    }
    return text.left(characters);
}

QByteArray png(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: clipboard_fill FOLDER COUNT\n");
        return 2;
    }
    AppModelContainer store(QString::fromLocal8Bit(argv[1]));
    if (!store.open()) {
        std::fprintf(stderr, "clipboard_fill: %s\n", qPrintable(store.errorString()));
        return 1;
    }
    QImage picture(640, 400, QImage::Format_RGB32);
    picture.fill(QColor("#fda085"));
    QPainter(&picture).fillRect(200, 100, 240, 200, Qt::white);
    const QByteArray picturePng = png(picture);
    const QByteArray thumbnailPng = png(picture.scaled(160, 100));
    QImage icon(32, 32, QImage::Format_ARGB32);
    icon.fill(QColor("#3b7dd8"));
    const QByteArray iconPng = png(icon);

    QRandomGenerator random(7);
    const int count = QString(argv[2]).toInt();
    const qint64 start = 1'700'000'000'000;
    for (int i = 0; i < count; ++i) {
        SimpleClipboardItem item;
        item.timestamp = start + qint64(i) * 1000;
        const QString app = kApps[i % kApps.size()];
        item.sourceAppName = app;
        item.sourceBundleId = "org.example." + QString(app).remove(' ');
        item.sourceWindowTitle = QString("%1 — document %2").arg(app).arg(i % 97);
        item.sourceIconData = iconPng;
        if (i % 100 == 99) {
            SimpleClipboardPayload payload;
            payload.set("image/png", picturePng);
            item.inMemoryPayload = payload;
            item.pngBytes = picturePng.size();
            item.width = 640;
            item.height = 400;
            item.thumbnailData = thumbnailPng;
        } else {
            item.plainText = sentence(random, 180 + random.bounded(40));
        }
        if (!store.persistItem(item)) {
            std::fprintf(stderr, "clipboard_fill: entry %d could not be stored\n", i);
            return 1;
        }
    }
    std::printf("%d entries in %s\n", store.count(), qPrintable(store.path()));
    return 0;
}
