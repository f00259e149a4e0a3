#pragma once

#include "clipboard/SimpleClipboardItem.h"

#include <QString>
#include <QStringView>

namespace velmora {

// The parts of an entry it is found by, in their order; an absent part is empty.
struct SearchableParts {
    QStringView plainText, url, fileURL, windowTitle, application; // application: name, else bundle id
};

// The text a history entry is found by: its parts with one space between each (an empty part keeps
// its separators), lower-cased. Written into `out`, which is cleared first, so that a caller reading
// many entries can use one buffer for all of them.
void writeSearchableText(const SearchableParts& parts, QString& out);
QString searchableText(const SimpleClipboardItem& item);

} // namespace velmora
