#include "clipboard/SearchableCharacters.h"

#include "clipboard/ClipboardLog.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <limits>

namespace velmora {

namespace {

bool isHangulJamo(char16_t c) {
    return (c >= 0x1100 && c <= 0x11FF) || (c >= 0xA960 && c <= 0xA97F) || (c >= 0xD7B0 && c <= 0xD7FF);
}

// Characters outside the marks that still attach to a neighbour: prepended number signs, the two
// Thai/Lao vowels counted as spacing marks, the halfwidth sound marks and the joiners.
bool attachesToNeighbour(char16_t c) {
    switch (c) {
    case 0x06DD:
    case 0x070F:
    case 0x0890:
    case 0x0891:
    case 0x08E2:
    case 0x0D4E:
    case 0x0E33:
    case 0x0EB3:
    case 0xFF9E:
    case 0xFF9F:
    case 0x200C:
    case 0x200D:
        return true;
    default:
        return c >= 0x0600 && c <= 0x0605;
    }
}

// Whether a unit at or above U+0300 is always a character of its own whatever surrounds it.
bool standsAlone(char16_t c) {
    if (QChar::isSurrogate(c) || isHangulJamo(c) || attachesToNeighbour(c))
        return false;
    switch (QChar::category(c)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
        return false;
    default:
        return true;
    }
}

// Whether a character is made of regional indicators only (each a surrogate pair).
bool isRegionalIndicators(QStringView character) {
    if (character.isEmpty() || character.size() % 2 != 0)
        return false;
    for (qsizetype i = 0; i < character.size(); i += 2) {
        if (!character[i].isHighSurrogate() || !character[i + 1].isLowSurrogate())
            return false;
        const char32_t c = QChar::surrogateToUcs4(character[i], character[i + 1]);
        if (c < 0x1F1E6 || c > 0x1F1FF)
            return false;
    }
    return true;
}

// A flag is a pair of regional indicators, paired from the first of a run. Qt 6.4 sometimes pairs
// them from the wrong one (after an emoji sequence, for one), so its characters made of indicators
// only are split and paired again.
std::vector<int> withFlagsPaired(const QString& text, const std::vector<int>& starts) {
    std::vector<int> paired{0};
    bool unpairedIndicator = false;
    for (std::size_t i = 1; i < starts.size(); ++i) {
        if (!isRegionalIndicators(QStringView(text).mid(starts[i - 1], starts[i] - starts[i - 1]))) {
            paired.push_back(starts[i]);
            unpairedIndicator = false;
            continue;
        }
        for (int end = starts[i - 1] + 2; end <= starts[i]; end += 2) {
            if (unpairedIndicator)
                paired.back() = end;
            else
                paired.push_back(end);
            unpairedIndicator = !unpairedIndicator;
        }
    }
    return paired;
}

std::vector<int> characterStarts(const QString& text) {
    std::vector<int> starts{0};
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype next = finder.toNextBoundary(); next > 0; next = finder.toNextBoundary())
        starts.push_back(static_cast<int>(next));
    if (starts.back() != text.size()) // a finder that gave up still leaves one whole last character
        starts.push_back(static_cast<int>(text.size()));
    return withFlagsPaired(text, starts);
}

bool hasNarrowForm(QStringView text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return narrow::byteOf(c.unicode()) >= 0; });
}

QByteArray narrowed(QStringView text) {
    QByteArray bytes(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        bytes[i] = static_cast<char>(narrow::byteOf(text[i].unicode()));
    return bytes;
}

} // namespace

bool SearchableCharacters::hasOneUnitPerCharacter(QStringView text) {
    const char16_t* units = text.utf16();
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = units[i];
        if (c < 0x0300) {
            if (c == u'\r' && i + 1 < size && units[i + 1] == u'\n')
                return false;
        } else if (!standsAlone(c)) {
            return false;
        }
    }
    return true;
}

SearchableCharacters::SearchableCharacters(QString text, Storage storage) : m_text(std::move(text)) {
    // Offsets are ints to halve the tables; no clipboard text comes near the limit.
    if (m_text.size() >= std::numeric_limits<int>::max()) {
        qCWarning(lcClipboard) << "Searchable text of" << m_text.size()
                               << "UTF-16 units is too long to index; only its beginning is searched";
        m_text.truncate(std::numeric_limits<int>::max() - 1);
    }
    if (hasOneUnitPerCharacter(m_text)) {
        m_size = static_cast<int>(m_text.size());
        if (storage == Storage::NarrowWherePossible && hasNarrowForm(m_text)) {
            m_bytes = narrowed(m_text);
            m_text = QString();
            m_narrow = true;
        }
        return;
    }
    auto starts = std::make_shared<std::vector<int>>(characterStarts(m_text));
    starts->shrink_to_fit();
    m_size = static_cast<int>(starts->size()) - 1;
    m_starts = std::move(starts);
}

QString SearchableCharacters::text() const {
    if (!m_narrow)
        return m_text;
    QString text(m_bytes.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < m_bytes.size(); ++i)
        text[i] = QChar(narrow::unitOf(m_bytes[i]));
    return text;
}

} // namespace velmora
