#include "platform/linux/WebDavCloudDatabase.h"

#include "platform/linux/HttpFailure.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/WebDavListing.h"
#include "platform/linux/WebDavRecordBody.h"

#include <QDateTime>
#include <QNetworkInformation>
#include <QNetworkReply>
#include <QTimer>
#include <cmath>

namespace velmora {

namespace {

constexpr int kMaxRedirects = 5;
// The toolkit keeps up to six connections to a host; after a quiet spell the server may have closed
// every one of them, and each stale connection is only found out by using it.
constexpr int kMaxResends = 6;
constexpr auto kNoAccount = "sync is not set up";

const QByteArray kListingRequest = R"(<?xml version="1.0" encoding="utf-8"?>
<d:propfind xmlns:d="DAV:"><d:prop><d:getetag/><d:getlastmodified/></d:prop></d:propfind>
)";

// A version the server calls provisional (W/"...", for a file written within the last second) names
// the same version as its firm form, which listings and conditional requests use.
QString firmTag(const QString& tag) {
    return tag.startsWith("W/") ? tag.mid(2) : tag;
}

bool succeeded(int status) {
    return status >= 200 && status < 300;
}

QString refusedText(int status) {
    return status == 403 ? QString("the server does not let this user in there (403 Forbidden)")
                         : QString("the server refused the user name or app password");
}

} // namespace

WebDavCloudDatabase::WebDavCloudDatabase(int timeoutMs, QObject* parent)
    : CloudDatabase(parent), m_timeoutMs(timeoutMs) {
    // Where the system tells (NetworkManager), a machine coming back online looks for changes at once.
    if (QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability)) {
        auto* information = QNetworkInformation::instance();
        connect(information, &QNetworkInformation::reachabilityChanged, this,
                [this](QNetworkInformation::Reachability reachability) {
                    if (reachability == QNetworkInformation::Reachability::Online)
                        emit networkRegained();
                });
    }
}

void WebDavCloudDatabase::setAccount(std::optional<CloudAccount> account) {
    m_account = std::move(account);
}

QUrl WebDavCloudDatabase::folderUrl(const QUrl& address) {
    QUrl folder = address;
    QString path = folder.path();
    if (!path.endsWith('/'))
        path += '/';
    folder.setPath(path + kFolder);
    return folder;
}

QUrl WebDavCloudDatabase::recordUrl(const QUrl& address, const QString& key) {
    return folderUrl(address).resolved(QUrl(QString::fromLatin1(QUrl::toPercentEncoding(key)) + ".json"));
}

void WebDavCloudDatabase::send(const CloudAccount& account, const QByteArray& verb, const QUrl& url,
                               const Headers& headers, const QByteArray& body,
                               std::function<void(Answer)> done, int resent) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(kMaxRedirects);
    // Sent up front: asking first and answering the challenge would double every round trip.
    request.setRawHeader("Authorization",
                         "Basic " + (account.user + ':' + account.password).toUtf8().toBase64());
    for (const auto& [name, value] : headers)
        request.setRawHeader(name, value);
    QNetworkReply* reply = m_network.sendCustomRequest(request, verb, body);
    auto timedOut = std::make_shared<bool>(false);
    auto* deadline = new QTimer(reply);
    deadline->setSingleShot(true);
    connect(deadline, &QTimer::timeout, reply, [reply, timedOut] {
        *timedOut = true;
        reply->abort();
    });
    deadline->start(m_timeoutMs);
    connect(reply, &QNetworkReply::finished, this,
            [this, reply, timedOut, account, verb, url, headers, body, resent, done = std::move(done)] {
                reply->deleteLater();
                // A kept-alive connection the server closed meanwhile: the toolkit resends only its own
                // verbs. Every request here may be sent twice (a repeated conditional save answers 412).
                if (resent < kMaxResends && !*timedOut &&
                    reply->error() == QNetworkReply::RemoteHostClosedError &&
                    !reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid())
                    return send(account, verb, url, headers, body, done, resent + 1);
                Answer answer;
                const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
                answer.status = *timedOut || !status.isValid() ? 0 : status.toInt();
                if (reply->isOpen())
                    answer.body = reply->readAll();
                answer.tag = firmTag(QString::fromUtf8(reply->rawHeader("ETag")));
                answer.lastModified = parseHttpDate(QString::fromLatin1(reply->rawHeader("Last-Modified")));
                noteServerClock(reply->rawHeader("Date"));
                if (answer.status == 401 || answer.status == 403)
                    answer.error = refusedText(answer.status);
                else if (!succeeded(answer.status))
                    answer.error = httpFailureText(*reply, *timedOut, m_timeoutMs, kMaxRedirects);
                if (!answer.error.isEmpty())
                    qCDebug(lcLinux).noquote()
                        << "WebDAV" << verb << reply->url().toString(QUrl::RemoveUserInfo)
                        << "failed:" << answer.error;
                done(std::move(answer));
            });
}

// The server's clock decides which change is newer; a machine whose clock is off by minutes must not
// win (or lose) every time, so local times are compared on the server's clock.
void WebDavCloudDatabase::noteServerClock(const QByteArray& dateHeader) {
    const auto server = parseHttpDate(QString::fromLatin1(dateHeader));
    if (!server)
        return;
    const double offset = *server - QDateTime::currentMSecsSinceEpoch() / 1000.0;
    // The header has whole seconds: a difference of a second or two is the header's, not the clock's.
    m_clockOffset = std::abs(offset) < 2.5 ? 0.0 : std::round(offset);
}

void WebDavCloudDatabase::check(const CloudAccount& account, std::function<void(QString)> done) {
    send(account, "PROPFIND", account.address, {{"Depth", "0"}, {"Content-Type", "application/xml"}},
         kListingRequest, [this, account, done](const Answer& answer) {
             if (answer.status == 404)
                 return done(
                     QString("there is no folder at %1").arg(account.address.toString(QUrl::RemoveUserInfo)));
             if (answer.status == 405 || answer.status == 200)
                 return done(QString("%1 is not a WebDAV folder (the server answered %2 to PROPFIND)")
                                 .arg(account.address.toString(QUrl::RemoveUserInfo))
                                 .arg(answer.status));
             if (!answer.error.isEmpty())
                 return done(answer.error);
             makeFolder(account, done);
         });
}

void WebDavCloudDatabase::makeFolder(const CloudAccount& account, std::function<void(QString)> done) {
    send(account, "MKCOL", folderUrl(account.address), {}, {}, [done](const Answer& answer) {
        // 405: the folder is there already.
        done(answer.status == 405 ? QString() : answer.error);
    });
}

void WebDavCloudDatabase::fetch(const QString& key, std::function<void(CloudFetchResult)> done) {
    if (!m_account)
        return done({std::nullopt, kNoAccount});
    send(*m_account, "GET", recordUrl(m_account->address, key), {}, {}, [key, done](const Answer& answer) {
        if (answer.status == 404)
            return done({});
        if (!answer.error.isEmpty())
            return done({std::nullopt, answer.error});
        QString reason;
        const auto data = decodeWebDavRecord(key, answer.body, &reason);
        if (!data)
            return done({std::nullopt, reason, true});
        done({CloudRecord{key, *data, answer.lastModified.value_or(0), answer.tag}, {}});
    });
}

void WebDavCloudDatabase::list(std::function<void(CloudListing)> done) {
    if (!m_account)
        return done({{}, kNoAccount});
    send(*m_account, "PROPFIND", folderUrl(m_account->address),
         {{"Depth", "1"}, {"Content-Type", "application/xml"}}, kListingRequest,
         [done](const Answer& answer) {
             if (answer.status == 404)
                 return done({}); // nothing saved yet
             if (!answer.error.isEmpty())
                 return done({{}, answer.error});
             if (answer.status != 207)
                 return done({{}, QString("the server answered %1 to a listing").arg(answer.status)});
             CloudListing listing = parseWebDavListing(answer.body);
             for (auto& version : listing.versions)
                 version.tag = firmTag(version.tag);
             done(std::move(listing));
         });
}

void WebDavCloudDatabase::save(const CloudRecord& record, const QString& expectedTag,
                               std::function<void(CloudSaveResult)> done) {
    if (!m_account)
        return done({CloudSaveResult::Outcome::failed, {}, 0, kNoAccount});
    put(*m_account, record, expectedTag, true, std::move(done));
}

void WebDavCloudDatabase::put(const CloudAccount& account, const CloudRecord& record,
                              const QString& expectedTag, bool mayMakeFolder,
                              std::function<void(CloudSaveResult)> done) {
    Headers headers{{"Content-Type", "application/json"}};
    if (expectedTag.isEmpty())
        headers.append(qMakePair(QByteArray("If-None-Match"), QByteArray("*")));
    else
        headers.append(qMakePair(QByteArray("If-Match"), expectedTag.toUtf8()));
    const QUrl url = recordUrl(account.address, record.key);
    send(account, "PUT", url, headers, encodeWebDavRecord(record.key, record.data),
         [this, account, record, expectedTag, mayMakeFolder, url, done](const Answer& answer) {
             using Outcome = CloudSaveResult::Outcome;
             if (answer.status == 412)
                 return done({Outcome::conflict, {}, 0, {}});
             if (answer.status == 409 && mayMakeFolder) // the folder went away (or was never made)
                 return makeFolder(account, [this, account, record, expectedTag, done](QString error) {
                     if (!error.isEmpty())
                         return done({Outcome::failed, {}, 0, error});
                     put(account, record, expectedTag, false, done);
                 });
             if (!answer.error.isEmpty())
                 return done({Outcome::failed, {}, 0, answer.error});
             // The new version's tag and date, unless the answer carried them already.
             if (!answer.tag.isEmpty() && answer.lastModified)
                 return done({Outcome::saved, answer.tag, *answer.lastModified, {}});
             send(account, "HEAD", url, {}, {}, [done](const Answer& head) {
                 if (!head.error.isEmpty())
                     return done({Outcome::saved, {}, 0, {}}); // saved; the next look learns its tag
                 done({Outcome::saved, head.tag, head.lastModified.value_or(0), {}});
             });
         });
}

} // namespace velmora
