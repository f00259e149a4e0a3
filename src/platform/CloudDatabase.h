#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <vector>

namespace velmora {

// Where the user's synchronised settings are kept, and as whom Velmora signs in there.
struct CloudAccount {
    QUrl address; // the user's own folder on the server (its WebDAV root)
    QString user;
    QString password;

    bool operator==(const CloudAccount&) const = default;
};

// One synchronised value as the cloud keeps it.
struct CloudRecord {
    QString key;
    QByteArray data;             // the encoded value
    double modificationDate = 0; // seconds since 1970 by the server's clock, kept by the server
    QString tag;                 // the server's version of the record, for conditional saves
};

// What a fetch found: the record, none (error empty, record absent), or why the fetch failed.
struct CloudFetchResult {
    std::optional<CloudRecord> record;
    QString error;
    // The server answered, but what it holds is not a record this program can read.
    bool unreadable = false;
};

// The versions of every record the cloud holds, without their data: a cheap look for changes.
struct CloudListing {
    struct Version {
        QString key;
        QString tag;
        double modificationDate = 0;
    };
    std::vector<Version> versions;
    QString error; // empty when the listing is complete
};

struct CloudSaveResult {
    enum class Outcome { saved, conflict, failed };
    Outcome outcome = Outcome::failed;
    QString tag;                 // the saved record's new version
    double modificationDate = 0; // and its date on the server
    QString error;
};

// The private cloud database the synchronised preferences are mirrored to. Every call answers once,
// on the main thread, also on failure; errors are plain words ("the server refused the user name or
// app password"). No call is sent while no account is set.
class CloudDatabase : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~CloudDatabase() override = default;

    virtual void setAccount(std::optional<CloudAccount> account) = 0;
    virtual bool hasAccount() const = 0;
    // Signs in with account (not necessarily the one set) and makes sure the records' folder exists;
    // error empty on success.
    virtual void check(const CloudAccount& account, std::function<void(QString error)> done) = 0;
    virtual void fetch(const QString& key, std::function<void(CloudFetchResult)> done) = 0;
    virtual void list(std::function<void(CloudListing)> done) = 0;
    // Saves record.key and record.data only if the cloud's record is still expectedTag, or, with an
    // empty expectedTag, only if there is none yet: two machines never overwrite each other unseen.
    virtual void save(const CloudRecord& record, const QString& expectedTag,
                      std::function<void(CloudSaveResult)> done) = 0;
    // The server's clock minus this machine's, in whole seconds, as last measured; 0 while unknown or
    // within a second or two.
    virtual double clockOffset() const = 0;

signals:
    // The machine came back online: a good moment to look for changes made elsewhere.
    void networkRegained();
};

} // namespace velmora
