#include "clipboard/ClipboardItemJson.h"

namespace velmora {

namespace {

template <class T> Json orNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json(nullptr);
}

} // namespace

QString leadingCharacters(const QString& text, int length) {
    qsizetype end = 0;
    for (int n = 0; n < length && end < text.size(); ++n)
        end += text[end].isHighSurrogate() && end + 1 < text.size() && text[end + 1].isLowSurrogate() ? 2 : 1;
    return text.left(end);
}

Json listingJson(const SimpleClipboardItem& item) {
    Json j = Json::object();
    j["id"] = item.id;
    j["timestamp"] = item.timestamp;
    j["sourceBundleId"] = orNull(item.sourceBundleId);
    j["sourceBundleURL"] = orNull(item.sourceBundleURL);
    j["sourceAppName"] = orNull(item.sourceAppName);
    j["sourceWindowTitle"] = orNull(item.sourceWindowTitle);
    j["isUniversalClipboard"] = item.isUniversalClipboard;
    j["plainText"] =
        item.plainText ? Json(leadingCharacters(*item.plainText, kListingTextLength)) : Json(nullptr);
    j["url"] = orNull(item.url);
    j["fileURL"] = orNull(item.fileURL);
    j["fileBytes"] = item.fileBytes;
    j["fileContentsBytes"] = item.fileContentsBytes;
    j["pngBytes"] = item.pngBytes;
    j["jpegBytes"] = item.jpegBytes;
    j["tiffBytes"] = item.tiffBytes;
    j["pdfBytes"] = item.pdfBytes;
    j["soundBytes"] = item.soundBytes;
    j["width"] = item.width;
    j["height"] = item.height;
    j["thumbnailIsIcon"] = item.thumbnailIsIcon;
    return j;
}

} // namespace velmora
