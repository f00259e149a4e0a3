#include "clipboard/ClipboardHighlight.h"

#include "clipboard/SearchableCharacters.h"

namespace velmora {

namespace {

// Each character of the shown text lower-cased on its own, so that a character whose lower case is
// longer (U+0130) still maps back to its own units of the shown text.
std::vector<QString> lowerCasedCharacters(const SearchableCharacters& text) {
    std::vector<QString> characters;
    characters.reserve(static_cast<std::size_t>(text.size()));
    for (int i = 0; i < text.size(); ++i)
        characters.push_back(text.at(i).toString().toLower());
    return characters;
}

bool occursAt(const std::vector<QString>& text, int start, const SearchableCharacters& query) {
    for (int k = 0; k < query.size(); ++k) {
        if (text[static_cast<std::size_t>(start + k)] != query.at(k))
            return false;
    }
    return true;
}

} // namespace

std::vector<std::pair<int, int>> highlightRanges(const QString& shownText, const QString& query) {
    const SearchableCharacters wanted(query.toLower());
    if (wanted.isEmpty())
        return {};
    const SearchableCharacters shown(shownText);
    const std::vector<QString> lowered = lowerCasedCharacters(shown);
    std::vector<std::pair<int, int>> ranges;
    int coveredUntil = -1; // in characters: the end of the last range
    for (int start = 0; start + wanted.size() <= shown.size(); ++start) {
        if (!occursAt(lowered, start, wanted))
            continue;
        const int end = start + wanted.size();
        if (start < coveredUntil) {
            ranges.back().second = shown.offset(end) - ranges.back().first;
        } else {
            ranges.emplace_back(shown.offset(start), shown.offset(end) - shown.offset(start));
        }
        coveredUntil = end;
    }
    return ranges;
}

} // namespace velmora
