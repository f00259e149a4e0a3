#pragma once

#include <QString>

#include <utility>
#include <vector>

namespace velmora {

// The parts of an entry's shown text to mark for the search query: every occurrence found by the
// same case-insensitive, character-by-character comparison as the search index, as (start, length)
// in UTF-16 units of shownText, ascending. Occurrences that overlap ("aa" in "aaa") are merged into
// one range; a range never splits a user-perceived character.
std::vector<std::pair<int, int>> highlightRanges(const QString& shownText, const QString& query);

} // namespace velmora
