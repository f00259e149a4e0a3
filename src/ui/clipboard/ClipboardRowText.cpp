#include "ui/clipboard/ClipboardRowText.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <QStringList>
#include <QUrl>

namespace velmora {

namespace {

constexpr int kMaxCharactersPerLine = 300;

// A text of nothing but whitespace still says what it is.
QString visibleWhitespace(const QString& text) {
    QString shown;
    for (const QChar c : text.left(kMaxCharactersPerLine)) {
        if (c == '\n')
            shown += QStringLiteral("↵");
        else if (c == '\t')
            shown += QStringLiteral("→");
        else if (c != '\r')
            shown += QStringLiteral("·");
    }
    return shown;
}

QString firstLines(const QString& text, int maxLines) {
    if (text.trimmed().isEmpty())
        return visibleWhitespace(text);
    QStringList lines;
    // Only as much text as the rows can show is looked at: a copied book costs no more than a line.
    const QString head = text.left(maxLines * kMaxCharactersPerLine * 2);
    for (QString line : head.split('\n')) {
        line.replace('\t', QStringLiteral("    "));
        line.remove('\r');
        while (!line.isEmpty() && line.back().isSpace())
            line.chop(1);
        // Blank lines would only push the text out of the row.
        if (line.isEmpty())
            continue;
        lines << line.left(kMaxCharactersPerLine);
        if (lines.size() == maxLines)
            break;
    }
    return lines.join(maxLines == 1 ? QStringLiteral(" ") : QStringLiteral("\n"));
}

} // namespace

QString clipboardRowText(const SimpleClipboardItem& e, int maxLines) {
    maxLines = std::max(1, maxLines);
    if (e.plainText && !e.plainText->isEmpty())
        return firstLines(*e.plainText, maxLines);
    if (e.fileURL) {
        const QUrl url(*e.fileURL);
        const QString name = QFileInfo(url.toLocalFile()).fileName();
        return name.isEmpty() ? url.toDisplayString() : name;
    }
    if (e.url)
        return *e.url;
    if (e.width > 0 && e.height > 0)
        return QString("Image, %1 × %2").arg(e.width).arg(e.height);
    if (e.html)
        return QStringLiteral("HTML");
    if (e.rtf)
        return QStringLiteral("Rich text");
    return QStringLiteral("Image");
}

QString clipboardRowDetail(const SimpleClipboardItem& e) {
    if (!e.fileURL || (e.plainText && !e.plainText->isEmpty()))
        return {};
    return QFileInfo(QUrl(*e.fileURL).toLocalFile()).absolutePath();
}

QString clipboardAgeText(qint64 nowMs, qint64 timestampMs) {
    const qint64 seconds = std::max<qint64>(0, (nowMs - timestampMs) / 1000);
    if (seconds < 60)
        return QStringLiteral("now");
    if (seconds < 3600)
        return QString("%1 min ago").arg(seconds / 60);
    const QDate today = QDateTime::fromMSecsSinceEpoch(nowMs).date();
    const QDate day = QDateTime::fromMSecsSinceEpoch(timestampMs).date();
    const qint64 days = day.daysTo(today);
    if (days == 0)
        return QString("%1 h ago").arg(seconds / 3600);
    if (days == 1)
        return QStringLiteral("yesterday");
    if (days < 30)
        return QString("%1 days ago").arg(days);
    return QLocale().toString(day, QLocale::ShortFormat);
}

} // namespace velmora
