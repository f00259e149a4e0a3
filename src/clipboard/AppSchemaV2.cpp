#include "clipboard/AppSchemaV2.h"

namespace velmora::AppSchemaV2 {

const QStringList& itemColumns() {
    static const QStringList columns = {
        "id",
        "timestamp",
        "sourceBundleId",
        "sourceBundleURL",
        "sourceAppName",
        "sourceWindowTitle",
        "isUniversalClipboard",
        "sourceIconData",
        "plainText",
        "html",
        "rtf",
        "tabularText",
        "url",
        "fileURL",
        "color",
        "fileBytes",
        "fileContentsBytes",
        "pngBytes",
        "jpegBytes",
        "tiffBytes",
        "pdfBytes",
        "soundBytes",
        "width",
        "height",
        "thumbnailIsIcon",
        "thumbnailData",
    };
    return columns;
}

const QStringList& itemExternalColumns() {
    static const QStringList columns = {"plainText", "html", "rtf", "tabularText", "thumbnailData"};
    return columns;
}

QStringList creationStatements() {
    return {
        QStringLiteral("CREATE TABLE SimpleClipboardItem ("
                       " id TEXT PRIMARY KEY NOT NULL,"
                       " timestamp INTEGER NOT NULL,"
                       " sourceBundleId TEXT,"
                       " sourceBundleURL TEXT,"
                       " sourceAppName TEXT,"
                       " sourceWindowTitle TEXT,"
                       " isUniversalClipboard INTEGER NOT NULL DEFAULT 0,"
                       " sourceIconData BLOB,"
                       " plainText TEXT,"
                       " html TEXT,"
                       " rtf TEXT,"
                       " tabularText TEXT,"
                       " url TEXT,"
                       " fileURL TEXT,"
                       " color BLOB,"
                       " fileBytes INTEGER NOT NULL DEFAULT 0,"
                       " fileContentsBytes INTEGER NOT NULL DEFAULT 0,"
                       " pngBytes INTEGER NOT NULL DEFAULT 0,"
                       " jpegBytes INTEGER NOT NULL DEFAULT 0,"
                       " tiffBytes INTEGER NOT NULL DEFAULT 0,"
                       " pdfBytes INTEGER NOT NULL DEFAULT 0,"
                       " soundBytes INTEGER NOT NULL DEFAULT 0,"
                       " width INTEGER NOT NULL DEFAULT 0,"
                       " height INTEGER NOT NULL DEFAULT 0,"
                       " thumbnailIsIcon INTEGER NOT NULL DEFAULT 0,"
                       " thumbnailData TEXT)"),
        // The rowid breaks ties between equal timestamps in insertion order; the index holds it.
        QStringLiteral("CREATE INDEX SimpleClipboardItem_timestamp ON SimpleClipboardItem (timestamp)"),
        // A payload always belongs to an item: one without would only hold files nobody reads.
        QStringLiteral("CREATE TABLE SimpleClipboardPayload ("
                       " item TEXT NOT NULL UNIQUE REFERENCES SimpleClipboardItem (id) ON DELETE CASCADE,"
                       " data TEXT NOT NULL DEFAULT '{}')"),
        QStringLiteral("CREATE TABLE JSONValue (key TEXT PRIMARY KEY NOT NULL, jsonData TEXT)"),
        QStringLiteral("PRAGMA user_version = %1").arg(kVersion),
    };
}

} // namespace velmora::AppSchemaV2
