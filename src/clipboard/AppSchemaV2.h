#pragma once

#include <QString>
#include <QStringList>

// The one shape of the clipboard history store. A store whose `PRAGMA user_version` is not
// `kVersion` was written by something else and is not read.
namespace velmora::AppSchemaV2 {

inline constexpr int kVersion = 2;

inline constexpr auto kItemTable = "SimpleClipboardItem";
inline constexpr auto kPayloadTable = "SimpleClipboardPayload";
inline constexpr auto kJsonValueTable = "JSONValue";

// The item's columns in the record's field order. `payload` has no column here: the payload's row
// names its item, so that deleting the item cascades to it and deleting it leaves the item as is.
const QStringList& itemColumns();

// The item columns that hold the name of a file beside the database instead of the value.
const QStringList& itemExternalColumns();

// Creates the tables and sets the version; run once on an empty database, inside a transaction.
QStringList creationStatements();

} // namespace velmora::AppSchemaV2
