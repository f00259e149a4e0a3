#include "clipboard/PasteboardItemsOfRecord.h"

#include <QStringList>

namespace velmora {

std::optional<QString> entryText(const SimpleClipboardItem& r) {
    if (r.plainText)
        return r.plainText;
    return r.url;
}

std::vector<PasteboardItem> pasteboardItems(const SimpleClipboardItem& r, bool plainTextOnly) {
    PasteboardItem item;
    if (const auto text = entryText(r))
        item.add(PasteboardType::string, text->toUtf8());
    if (!plainTextOnly) {
        if (r.html)
            item.add(PasteboardType::html, *r.html);
        if (r.rtf)
            item.add(PasteboardType::rtf, *r.rtf);
        const QStringList images = {PasteboardType::png, PasteboardType::tiff, PasteboardType::jpeg};
        if (r.payload)
            for (const QString& type : images)
                if (const auto bytes = r.payload->get(type))
                    item.add(type, *bytes);
        if (r.fileURL)
            item.add(PasteboardType::fileURL, r.fileURL->toUtf8());
        if (r.payload)
            for (const auto& [type, bytes] : r.payload->data)
                if (!images.contains(type))
                    item.add(type, bytes);
    }
    if (item.representations.empty())
        return {};
    return {item};
}

} // namespace velmora
