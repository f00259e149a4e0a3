#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

// Fetches a URL into a file, computing its SHA-256 digest on the way.
struct DownloadResult {
    bool ok = false;
    QByteArray sha256; // lower-case hex, of the bytes received
    qint64 bytes = 0;
    QString error;
};

// Blocks (in a local event loop) until the file is complete or the transfer failed. A transfer that
// stalls for stallTimeoutMs, more than maxRedirects redirects, a status other than 200, or fewer bytes
// than the server announced are failures.
DownloadResult download(const QUrl& url, const QString& file, int stallTimeoutMs, int maxRedirects);
