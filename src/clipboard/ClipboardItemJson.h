#pragma once

#include "clipboard/SimpleClipboardItem.h"
#include "core/JsonCodec.h"

namespace velmora {

// How many characters of the plain text a listing shows.
inline constexpr int kListingTextLength = 200;

// An entry as the command line lists it: the record's field names in their order, the large values
// (icon, HTML, RTF, tabular text, colour, payload, thumbnail) left out, absent values as null and the
// plain text cut to its first kListingTextLength characters.
Json listingJson(const SimpleClipboardItem& item);

// The first `length` characters of the text; a character outside the basic plane is never split.
QString leadingCharacters(const QString& text, int length);

} // namespace velmora
