#pragma once

#include "clipboard/SimpleClipboardItem.h"
#include "platform/Pasteboard.h"

#include <optional>
#include <vector>

namespace velmora {

// The entry's text: its plain text, else its URL; absent when it has neither.
std::optional<QString> entryText(const SimpleClipboardItem& record);

// What goes back on the clipboard for a stored record, in this order: its text, then (unless only
// plain text is asked for) HTML, RTF, PNG, TIFF, JPEG, the file URL and the remaining payload types.
// The URL (except as the text), tabular text and colour are not written back. Empty when the record
// has nothing to write in that mode.
std::vector<PasteboardItem> pasteboardItems(const SimpleClipboardItem& record, bool plainTextOnly = false);

} // namespace velmora
