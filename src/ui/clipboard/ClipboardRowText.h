#pragma once

#include "clipboard/SimpleClipboardItem.h"

#include <QString>

namespace velmora {

// How an entry reads in the history list: its first lines of text with whitespace kept readable (a
// copied run of spaces or blank lines is shown, not a blank row), a file as its name, an image as
// its size. Never more than maxLines lines.
QString clipboardRowText(const SimpleClipboardItem& entry, int maxLines);
// The same lines, but from shortly before the first occurrence of the search query in the entry's
// text, after an ellipsis: for a match the first lines do not reach. Empty when the text has no
// occurrence past its beginning (the entry may match by its application or title).
QString clipboardRowSnippet(const SimpleClipboardItem& entry, const QString& query, int maxLines);
// The second line of a file entry: the folder it is in; empty for other entries.
QString clipboardRowDetail(const SimpleClipboardItem& entry);
// "now", "2 min ago", "3 h ago", "yesterday", "4 days ago", then the date.
QString clipboardAgeText(qint64 nowMs, qint64 timestampMs);

} // namespace velmora
