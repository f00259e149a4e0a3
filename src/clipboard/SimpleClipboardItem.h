#pragma once

#include <QByteArray>
#include <QString>
#include <QUuid>

#include <map>
#include <optional>

namespace velmora {

// The large representations of one history entry (images, PDF, sound), keyed by MIME type
// ("image/png", "image/jpeg", "image/tiff", "application/pdf"). Stored as files beside the database.
struct SimpleClipboardPayload {
    std::map<QString, QByteArray> data;

    void set(const QString& type, const std::optional<QByteArray>& bytes) {
        if (bytes)
            data[type] = *bytes;
        else
            data.erase(type);
    }
    std::optional<QByteArray> get(const QString& type) const {
        const auto it = data.find(type);
        return it == data.end() ? std::nullopt : std::optional(it->second);
    }
    bool isEmpty() const { return data.empty(); }
};

// One clipboard history entry. Fields in store order; the ones marked "external" are kept in files
// beside the database and only read when asked for.
struct SimpleClipboardItem {
    QUuid id = QUuid::createUuid();
    qint64 timestamp = 0; // ms since 1970, truncated
    std::optional<QString> sourceBundleId;
    std::optional<QString> sourceBundleURL; // the desktop entry's file URL
    std::optional<QString> sourceAppName;
    std::optional<QString> sourceWindowTitle;
    bool isUniversalClipboard = false;
    std::optional<QByteArray> sourceIconData; // PNG, 32 px on the longer side
    std::optional<QString> plainText;         // external
    std::optional<QByteArray> html;           // external
    std::optional<QByteArray> rtf;            // external
    std::optional<QByteArray> tabularText;    // external
    std::optional<QString> url;
    std::optional<QString> fileURL;
    std::optional<QByteArray> color;
    qint64 fileBytes = 0;
    qint64 fileContentsBytes = 0;
    qint64 pngBytes = 0;
    qint64 jpegBytes = 0;
    qint64 tiffBytes = 0;
    qint64 pdfBytes = 0;
    qint64 soundBytes = 0;
    // The stored side record; filled when read back with its representations.
    std::optional<SimpleClipboardPayload> payload;
    int width = 0;
    int height = 0;
    bool thumbnailIsIcon = false;
    std::optional<QByteArray> thumbnailData; // external, PNG

    // Filled during capture and attached as `payload` when the record is persisted; never stored.
    std::optional<SimpleClipboardPayload> inMemoryPayload;
};

} // namespace velmora
