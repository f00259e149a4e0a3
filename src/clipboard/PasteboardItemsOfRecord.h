#pragma once

#include "clipboard/SimpleClipboardItem.h"
#include "platform/Pasteboard.h"

#include <vector>

namespace velmora {

// What goes back on the clipboard for a stored record: every representation it holds, under its type.
std::vector<PasteboardItem> pasteboardItems(const SimpleClipboardItem& record);

} // namespace velmora
