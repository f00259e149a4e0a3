#pragma once

#include "clipboard/CharacterSet.h"
#include "clipboard/SearchableCharacters.h"

#include <QString>
#include <QUuid>

namespace velmora {

// One history entry as the search indexes hold it.
struct ClipboardIndexEntry {
    QUuid id;
    SearchableCharacters searchableCharacters;
    CharacterSet characterSet = CharacterSet::of(searchableCharacters);

    QString searchableText() const { return searchableCharacters.text(); }
};

} // namespace velmora
