#include "clipboard/ClipboardSearchableText.h"

namespace velmora {

void writeSearchableText(const SearchableParts& parts, QString& out) {
    out.clear();
    for (const QStringView part : {parts.plainText, parts.url, parts.fileURL, parts.windowTitle}) {
        out += part;
        out += QLatin1Char(' ');
    }
    out += parts.application;
    out = std::move(out).toLower();
}

QString searchableText(const SimpleClipboardItem& item) {
    const std::optional<QString>& application = item.sourceAppName ? item.sourceAppName : item.sourceBundleId;
    const auto view = [](const std::optional<QString>& part) {
        return part ? QStringView(*part) : QStringView();
    };
    QString text;
    writeSearchableText({view(item.plainText), view(item.url), view(item.fileURL),
                         view(item.sourceWindowTitle), view(application)},
                        text);
    return text;
}

} // namespace velmora
