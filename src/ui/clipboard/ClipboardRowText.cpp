#include "ui/clipboard/ClipboardRowText.h"

#include "clipboard/ClipboardHighlight.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <QStringList>
#include <QUrl>

namespace velmora {

namespace {

constexpr int kMaxCharactersPerLine = 300;
// How much of the line before a match a snippet keeps, so that the match is read in its context.
constexpr qsizetype kSnippetLead = 24;

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

// Where the search's first occurrence of query begins in text, in UTF-16 units; -1 if none is
// found. Candidates come from QString's case-insensitive search, which is fast on a copied book;
// each is confirmed by the search's own comparison around it, which does not, say, find "e" in an
// "e" with a combining accent. A text whose matches that search cannot see shows its first lines.
qsizetype firstOccurrence(const QString& text, const QString& query) {
    constexpr qsizetype kAround = 8;   // units either side: whole characters for the comparison
    constexpr int kMaxCandidates = 64; // a paint never searches a text without end
    qsizetype from = 0;
    for (int tries = 0; tries < kMaxCandidates; ++tries) {
        const qsizetype at = text.indexOf(query, from, Qt::CaseInsensitive);
        if (at < 0)
            return -1;
        const qsizetype begin = std::max<qsizetype>(0, at - kAround);
        const auto ranges = highlightRanges(text.mid(begin, at - begin + query.size() + kAround), query);
        if (!ranges.empty())
            return begin + ranges.front().first;
        from = at + 1;
    }
    return -1;
}

// Where a snippet for a match at `at` starts: the match's line, or, deep into a long line, a word
// or so before the match, never inside a character.
qsizetype snippetStart(const QString& text, qsizetype at) {
    const qsizetype lineStart = text.lastIndexOf(QLatin1Char('\n'), at - 1) + 1;
    if (at - lineStart <= kSnippetLead)
        return lineStart;
    qsizetype start = at - kSnippetLead;
    if (const qsizetype space = text.indexOf(QLatin1Char(' '), start); space >= 0 && space < at)
        return space + 1;
    // The second half of a surrogate pair, or a mark that belongs to the character before.
    while (start < at && (text[start].isLowSurrogate() || text[start].isMark()))
        ++start;
    return start;
}

} // namespace

QString clipboardRowSnippet(const SimpleClipboardItem& e, const QString& query, int maxLines) {
    if (!e.plainText || query.isEmpty())
        return {};
    const QString& text = *e.plainText;
    const qsizetype at = firstOccurrence(text, query);
    if (at <= 0)
        return {};
    const qsizetype start = snippetStart(text, at);
    if (start == 0)
        return {};
    const qsizetype shown = qsizetype{std::max(1, maxLines)} * kMaxCharactersPerLine * 2;
    return QStringLiteral("…") + firstLines(text.mid(start, shown), std::max(1, maxLines));
}

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
