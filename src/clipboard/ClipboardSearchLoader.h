#pragma once

#include "clipboard/ClipboardHistoryIndex.h"
#include "clipboard/SimpleClipboardItem.h"

#include <QString>
#include <vector>

namespace velmora {

// Every stored entry as the search index keeps it, newest first, read through a connection of its
// own so that it can run on a worker thread while the agent keeps using the store. Empty, with the
// reason in *error, when the store cannot be read.
std::vector<ClipboardHistoryIndex::Entry> loadSearchEntries(const QString& storePath, QString* error);

// The search item of one entry. Very long texts are searched by their beginning only, so that one
// copied book does not hold megabytes of index.
ClipboardHistoryIndex::ItemInfo searchItem(SimpleClipboardItem item);

} // namespace velmora
