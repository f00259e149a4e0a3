#pragma once

#include "platform/Pasteboard.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <map>
#include <vector>

namespace velmora {

// How the X clipboard's targets map onto pasteboard types, both ways. No X traffic here: the reader
// and the owner use these to decide what to ask for and what to offer.
namespace ClipboardTargets {

// Targets the owner offers that are worth reading, in the order to read them. Of several renderings
// of one picture only the first of PNG, JPEG, TIFF is read: X owners convert one image into every
// format they know, so reading more would store the same picture again.
QStringList wanted(const QStringList& offered);

// The items of one clipboard content, from the bytes read per target. A URI list gives one item per
// file; everything else goes on the first item.
std::vector<PasteboardItem> itemsFrom(const std::map<QString, QByteArray>& read, const QStringList& offered);

// What an owner of these items offers, each target with the bytes it serves.
std::vector<std::pair<QString, QByteArray>> offer(const std::vector<PasteboardItem>& items);

// Meta targets that are no content of their own.
bool isMeta(const QString& target);

} // namespace ClipboardTargets

} // namespace velmora
