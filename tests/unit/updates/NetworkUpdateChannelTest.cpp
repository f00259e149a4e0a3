#include "platform/linux/NetworkUpdateChannel.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

// An HTTP server on 127.0.0.1 that answers by path: /ok, /error (500), /loop (a redirect to itself),
// /silent (reads the request and never answers), /large (more than an answer may be).
class TinyHttpServer : public QObject {
public:
    TinyHttpServer() {
        m_server.listen(QHostAddress::LocalHost);
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, socket, [socket] { answer(*socket); });
        });
    }
    QString base() const { return QString("http://127.0.0.1:%1").arg(m_server.serverPort()); }
    quint16 port() const { return m_server.serverPort(); }

private:
    static void answer(QTcpSocket& socket) {
        const QByteArray request = socket.readAll();
        const QByteArray path = request.split(' ').value(1);
        if (path == "/silent")
            return;
        QByteArray status = "200 OK";
        QByteArray headers;
        QByteArray body;
        if (path == "/ok") {
            body = R"({"url": ""})";
        } else if (path == "/error") {
            status = "500 Internal Server Error";
            body = "oops";
        } else if (path == "/loop") {
            status = "302 Found";
            headers = "Location: /loop\r\n";
        } else if (path == "/large") {
            body = QByteArray(100 * 1024, ' ');
        } else {
            status = "404 Not Found";
        }
        socket.write("HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " +
                     QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
        socket.disconnectFromHost();
    }

    QTcpServer m_server;
};

UpdateResponse get(NetworkUpdateChannel& channel, const QString& url, int timeoutMs = 5000) {
    UpdateRequest request;
    request.url = QUrl(url);
    request.timeoutMs = timeoutMs;
    std::optional<UpdateResponse> response;
    QEventLoop loop;
    channel.get(request, [&](UpdateResponse r) {
        response = std::move(r);
        loop.quit();
    });
    if (!response)
        loop.exec();
    return *response;
}

} // namespace

TEST(NetworkUpdateChannel, ReturnsTheBodyOfA200) {
    TinyHttpServer server;
    NetworkUpdateChannel channel("/opt/velmora/bin/velmora", {});
    const UpdateResponse response = get(channel, server.base() + "/ok");
    ASSERT_TRUE(response.body) << response.error.toStdString();
    EXPECT_EQ(*response.body, R"({"url": ""})");
}

TEST(NetworkUpdateChannel, EveryFailureHasAReason) {
    TinyHttpServer server;
    NetworkUpdateChannel channel("/opt/velmora/bin/velmora", {});
    const std::pair<QString, QString> cases[] = {
        {"/error", "the server answered 500 Internal Server Error"},
        {"/loop", "more than 5 redirects (a redirect loop?)"},
        {"/large", "the answer is larger than 65536 bytes"},
        {"/missing", "the server answered 404 Not Found"},
    };
    for (const auto& [path, error] : cases) {
        const UpdateResponse response = get(channel, server.base() + path);
        EXPECT_FALSE(response.body) << path.toStdString();
        EXPECT_EQ(response.error.toStdString(), error.toStdString());
    }
}

TEST(NetworkUpdateChannel, ASlowServerOrABrokenConnectionEndsTheRequest) {
    TinyHttpServer server;
    NetworkUpdateChannel channel("/opt/velmora/bin/velmora", {});
    UpdateResponse response = get(channel, server.base() + "/silent", 300);
    EXPECT_FALSE(response.body);
    EXPECT_EQ(response.error, "the server did not answer within 0.3 s");
    // TLS to a server that speaks plain HTTP.
    response = get(channel, QString("https://127.0.0.1:%1/ok").arg(server.port()));
    EXPECT_FALSE(response.body);
    EXPECT_TRUE(response.error.startsWith("the secure connection failed")) << response.error.toStdString();
    // Nobody listening.
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost);
    const quint16 port = closed.serverPort();
    closed.close();
    response = get(channel, QString("http://127.0.0.1:%1/ok").arg(port));
    EXPECT_FALSE(response.body);
    EXPECT_FALSE(response.error.isEmpty());
}

TEST(NetworkUpdateChannel, OnlyAMarkedFolderOfItsOwnIsAnInstallation) {
    QTemporaryDir dir;
    const QString prefix = dir.filePath("velmora");
    QDir().mkpath(prefix + "/bin");
    QDir().mkpath(prefix + "/share/velmora");
    for (const char* program : {"/bin/velmora", "/bin/velmora-updater"}) {
        QFile file(prefix + program);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    NetworkUpdateChannel channel(prefix + "/bin/velmora", {});
    EXPECT_FALSE(channel.installationFolder()) << "no marker: a shared prefix such as /usr";
    QFile marker(prefix + "/share/velmora/self-updating");
    ASSERT_TRUE(marker.open(QIODevice::WriteOnly));
    marker.close();
    EXPECT_EQ(channel.installationFolder(), QDir(prefix).canonicalPath());
    QFile::remove(prefix + "/bin/velmora-updater");
    EXPECT_FALSE(channel.installationFolder()) << "no updater beside the program";
    EXPECT_FALSE(NetworkUpdateChannel(dir.filePath("build/velmora"), {}).installationFolder());
}
