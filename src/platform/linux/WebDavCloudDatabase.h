#pragma once

#include "platform/CloudDatabase.h"

#include <QNetworkAccessManager>
#include <QNetworkRequest>

namespace velmora {

// The cloud database on a WebDAV server (Nextcloud, ownCloud, Apache mod_dav, any RFC 4918 server):
// a folder "Velmora/" in the user's folder, one file "<key>.json" per record. The server's
// getlastmodified is the record's date and its ETag the record's version; saves are conditional
// (If-Match, or If-None-Match: * for a new record), so a 412 means another machine wrote first.
class WebDavCloudDatabase final : public CloudDatabase {
    Q_OBJECT
public:
    static constexpr auto kFolder = "Velmora/";

    explicit WebDavCloudDatabase(int timeoutMs = 20'000, QObject* parent = nullptr);

    void setAccount(std::optional<CloudAccount> account) override;
    bool hasAccount() const override { return m_account.has_value(); }
    void check(const CloudAccount& account, std::function<void(QString)> done) override;
    void fetch(const QString& key, std::function<void(CloudFetchResult)> done) override;
    void list(std::function<void(CloudListing)> done) override;
    void save(const CloudRecord& record, const QString& expectedTag,
              std::function<void(CloudSaveResult)> done) override;
    double clockOffset() const override { return m_clockOffset; }

    static QUrl folderUrl(const QUrl& address);
    static QUrl recordUrl(const QUrl& address, const QString& key);

private:
    struct Answer {
        int status = 0; // 0 when no HTTP answer came
        QByteArray body;
        QString tag;
        std::optional<double> lastModified;
        QString error; // plain words when the exchange failed or the status is not 2xx
    };
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    void send(const CloudAccount& account, const QByteArray& verb, const QUrl& url, const Headers& headers,
              const QByteArray& body, std::function<void(Answer)> done, int resent = 0);
    void makeFolder(const CloudAccount& account, std::function<void(QString)> done);
    void put(const CloudAccount& account, const CloudRecord& record, const QString& expectedTag,
             bool mayMakeFolder, std::function<void(CloudSaveResult)> done);
    void noteServerClock(const QByteArray& dateHeader);

    QNetworkAccessManager m_network;
    std::optional<CloudAccount> m_account;
    int m_timeoutMs;
    double m_clockOffset = 0;
};

} // namespace velmora
