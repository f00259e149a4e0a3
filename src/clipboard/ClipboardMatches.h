#pragma once

#include <QUuid>

#include <cstddef>
#include <functional>
#include <vector>

namespace velmora {

// What a search of the history matched, newest first, read a page at a time: a list shows fifty
// rows, and listing all of tens of thousands of matches on every keystroke would cost more than
// the search itself. Pages are read from the search as it is when asked, so they follow captures
// and deletions; a list asks again from the top whenever the search text changes.
struct ClipboardMatches {
    std::size_t count = 0;
    std::function<std::vector<QUuid>(std::size_t from, std::size_t count)> page;

    std::size_t size() const { return count; }
};

} // namespace velmora
