#include "clipboard/PasteboardItemsOfRecord.h"

namespace velmora {

std::vector<PasteboardItem> pasteboardItems(const SimpleClipboardItem& r) {
    PasteboardItem item;
    if (r.plainText)
        item.add(PasteboardType::string, r.plainText->toUtf8());
    if (r.html)
        item.add(PasteboardType::html, *r.html);
    if (r.rtf)
        item.add(PasteboardType::rtf, *r.rtf);
    if (r.tabularText)
        item.add(PasteboardType::tabularText, *r.tabularText);
    if (r.color)
        item.add(PasteboardType::color, *r.color);
    if (r.url)
        item.add(PasteboardType::url, r.url->toUtf8());
    if (r.fileURL)
        item.add(PasteboardType::fileURL, r.fileURL->toUtf8());
    if (r.payload)
        for (const auto& [type, bytes] : r.payload->data)
            item.add(type, bytes);
    if (item.representations.empty())
        return {};
    return {item};
}

} // namespace velmora
