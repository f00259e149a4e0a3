#pragma once

#include "clipboard/SimpleClipboardItem.h"

#include <QString>

namespace velmora {

// The text a history entry is found by: its plain text, URL, file URL, source window title and
// source application name (else bundle identifier), one space between each and an absent part left
// empty so the separators stay in place; lower-cased.
QString searchableText(const SimpleClipboardItem& item);

} // namespace velmora
