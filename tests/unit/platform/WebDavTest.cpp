#include "platform/linux/WebDavCloudDatabase.h"
#include "platform/linux/WebDavListing.h"
#include "platform/linux/WebDavRecordBody.h"

#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>

using namespace velmora;

TEST(WebDavRecordBody, JsonStaysReadableRawBytesGoAsBase64AndAbsenceAsNull) {
    const QByteArray json = R"({"autoUpdate":false})";
    const QByteArray body = encodeWebDavRecord("BasicPreferences", json);
    EXPECT_TRUE(body.contains(R"("recordType": "CD_JSONValue")")) << body.toStdString();
    EXPECT_TRUE(body.contains(R"("autoUpdate": false)")) << "the value is JSON in the file, not a string";
    QString error;
    EXPECT_EQ(decodeWebDavRecord("BasicPreferences", body, &error), json);

    const QByteArray png("\x89PNG\r\n\x1a\n\0\xff", 10);
    EXPECT_EQ(decodeWebDavRecord("MenubarMainIcon", encodeWebDavRecord("MenubarMainIcon", png), &error), png);
    EXPECT_EQ(decodeWebDavRecord("MenubarMainIcon", encodeWebDavRecord("MenubarMainIcon", {}), &error),
              QByteArray());
}

TEST(WebDavRecordBody, AnythingElseIsRefusedWithAReason) {
    struct Case {
        QByteArray body;
        const char* reason;
    };
    for (const Case& c :
         {Case{"<html>Login</html>", "not JSON"}, Case{"[1, 2]", "not JSON"},
          Case{R"({"recordType": "Other", "CD_key": "K", "CD_jsonData": 1})", "not a CD_JSONValue"},
          Case{R"({"recordType": "CD_JSONValue", "CD_key": "Other", "CD_jsonData": 1})",
               "not the record of K"},
          Case{R"({"recordType": "CD_JSONValue", "CD_key": "K"})", "no CD_jsonData"},
          Case{R"({"recordType": "CD_JSONValue", "CD_key": "K", "CD_jsonData": "%%",
                                   "CD_dataEncoding": "base64"})",
               "does not decode"}}) {
        QString error;
        EXPECT_FALSE(decodeWebDavRecord("K", c.body, &error)) << c.body.toStdString();
        EXPECT_TRUE(error.contains(c.reason)) << error.toStdString();
    }
}

TEST(WebDavListing, NamesEachRecordWithItsVersionAndLeavesOutTheRest) {
    const QByteArray answer = R"(<?xml version="1.0" encoding="utf-8"?>
<D:multistatus xmlns:D="DAV:" xmlns:ns0="urn:x">
 <D:response><D:href>/dav/ann/Velmora/</D:href>
  <D:propstat><D:prop><D:getlastmodified>Tue, 24 Nov 2026 01:00:00 GMT</D:getlastmodified></D:prop>
   <D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>
 <D:response><D:href>/dav/ann/Velmora/WindowManagerPreferences.json</D:href>
  <D:propstat><D:prop><D:getetag>"6c-5f1"</D:getetag><ns0:other/>
   <D:getlastmodified>Tue, 24 Nov 2026 01:02:03 GMT</D:getlastmodified></D:prop>
   <D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>
 <D:response><D:href>http://host/dav/ann/Velmora/Odd%20Name.json</D:href>
  <D:propstat><D:prop><D:getetag>W/"1"</D:getetag></D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat>
  <D:propstat><D:prop><D:getlastmodified/></D:prop><D:status>HTTP/1.1 404 Not Found</D:status></D:propstat>
 </D:response>
 <D:response><D:href>/dav/ann/Velmora/notes.txt</D:href>
  <D:propstat><D:prop><D:getetag>"2"</D:getetag></D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>
 <D:response><D:href>/dav/ann/Velmora/Sub/</D:href>
  <D:propstat><D:prop><D:getetag>"3"</D:getetag></D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>
</D:multistatus>)";
    const CloudListing listing = parseWebDavListing(answer);
    EXPECT_TRUE(listing.error.isEmpty()) << listing.error.toStdString();
    ASSERT_EQ(listing.versions.size(), 2u);
    EXPECT_EQ(listing.versions[0].key, "WindowManagerPreferences");
    EXPECT_EQ(listing.versions[0].tag, "\"6c-5f1\"");
    EXPECT_EQ(listing.versions[0].modificationDate, 1795482123);
    EXPECT_EQ(listing.versions[1].key, "Odd Name");
    EXPECT_EQ(listing.versions[1].tag, "W/\"1\"");
}

TEST(WebDavListing, AnAnswerThatIsNotAListingIsAnError) {
    EXPECT_FALSE(parseWebDavListing("<html><body>Sign in</body></html>").error.isEmpty());
    EXPECT_FALSE(parseWebDavListing("").error.isEmpty());
    const CloudListing cut = parseWebDavListing(
        R"(<D:multistatus xmlns:D="DAV:"><D:response><D:href>/a/K.json</D:href><D:propstat>)");
    EXPECT_FALSE(cut.error.isEmpty());
    EXPECT_TRUE(cut.versions.empty());
}

TEST(WebDavCloudDatabase, RecordsLiveInTheVelmoraFolderOfTheUsersFolder) {
    EXPECT_EQ(WebDavCloudDatabase::recordUrl(QUrl("https://h/remote.php/dav/files/ann"), "BasicPreferences"),
              QUrl("https://h/remote.php/dav/files/ann/Velmora/BasicPreferences.json"));
    EXPECT_EQ(WebDavCloudDatabase::folderUrl(QUrl("http://127.0.0.1:8080/dav/")),
              QUrl("http://127.0.0.1:8080/dav/Velmora/"));
    EXPECT_EQ(parseHttpDate("Tue, 24 Nov 2026 01:02:03 GMT"), 1795482123.0);
    EXPECT_FALSE(parseHttpDate("yesterday"));
}

namespace {

// A server on 127.0.0.1 that reads each request and answers 401, or nothing at all when silent.
class RefusingServer : public QObject {
public:
    explicit RefusingServer(bool silent) {
        m_server.listen(QHostAddress::LocalHost);
        connect(&m_server, &QTcpServer::newConnection, this, [this, silent] {
            while (QTcpSocket* socket = m_server.nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, socket, [socket, silent] {
                    socket->readAll();
                    if (!silent)
                        socket->write("HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n\r\n");
                });
        });
    }
    quint16 port() const { return m_server.serverPort(); }

private:
    QTcpServer m_server;
};

CloudFetchResult fetchFrom(const QString& address, int timeoutMs = 5000) {
    WebDavCloudDatabase database(timeoutMs);
    database.setAccount(CloudAccount{QUrl(address), "ann", "secret"});
    std::optional<CloudFetchResult> result;
    QEventLoop loop;
    database.fetch("BasicPreferences", [&](CloudFetchResult r) {
        result = std::move(r);
        loop.quit();
    });
    if (!result)
        loop.exec();
    return *result;
}

} // namespace

TEST(WebDavCloudDatabase, EveryFailureSaysWhatWentWrongInPlainWords) {
    RefusingServer refusing(false), silent(true);
    EXPECT_EQ(fetchFrom(QString("http://127.0.0.1:%1/dav/").arg(refusing.port())).error,
              "the server refused the user name or app password");
    EXPECT_EQ(fetchFrom(QString("http://127.0.0.1:%1/dav/").arg(silent.port()), 300).error,
              "the server did not answer within 0.3 s");
    EXPECT_TRUE(fetchFrom(QString("https://127.0.0.1:%1/dav/").arg(refusing.port()), 3000)
                    .error.startsWith("the secure connection failed"));
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost);
    const quint16 port = closed.serverPort();
    closed.close();
    EXPECT_EQ(fetchFrom(QString("http://127.0.0.1:%1/dav/").arg(port)).error,
              QString("nothing answers at 127.0.0.1:%1 (connection refused)").arg(port));
    WebDavCloudDatabase database;
    std::optional<QString> error;
    database.fetch("K", [&](CloudFetchResult r) { error = r.error; });
    EXPECT_EQ(error, "sync is not set up") << "nothing is sent without an account";
}
