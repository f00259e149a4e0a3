#pragma once

#include "clipboard/SimpleClipboardItem.h"
#include "platform/Pasteboard.h"
#include "platform/Workspace.h"

#include <optional>
#include <vector>

namespace velmora {

// Turns the items of one clipboard change into history records: the type filter, the text and image
// representations, and the merge of items one application wrote at once. Images are counted and kept
// here but decoded later, off the main thread.
class ClipboardRecordBuilder {
public:
    // Where the copy came from, taken once per change.
    struct Source {
        std::optional<QString> bundleId;
        std::optional<QString> bundleURL;
        std::optional<QString> appName;
        std::optional<QString> windowTitle;
        std::optional<QByteArray> iconPng; // 32 px
    };

    // The records of one change, at most `limit`, merged as the merge rule allows.
    static std::vector<SimpleClipboardItem> records(const std::vector<PasteboardItem>& items,
                                                    const Source& source, qint64 nowMs, int limit);

    // One record from one item; nothing when the item carries a marker that forbids recording it.
    static std::optional<SimpleClipboardItem> record(const PasteboardItem& item, const Source& source,
                                                     qint64 nowMs);
    static bool hasContent(const SimpleClipboardItem& r);
    static bool canAbsorb(const SimpleClipboardItem& last, const SimpleClipboardItem& next);
    static void absorb(SimpleClipboardItem& last, SimpleClipboardItem&& next);
};

} // namespace velmora
