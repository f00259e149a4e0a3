#include "clipboard/ClipboardSearchableText.h"

#include <QStringList>

namespace velmora {

QString searchableText(const SimpleClipboardItem& item) {
    const std::optional<QString>& application = item.sourceAppName ? item.sourceAppName : item.sourceBundleId;
    const QStringList parts{item.plainText.value_or(QString()), item.url.value_or(QString()),
                            item.fileURL.value_or(QString()), item.sourceWindowTitle.value_or(QString()),
                            application.value_or(QString())};
    return parts.join(QLatin1Char(' ')).toLower();
}

} // namespace velmora
