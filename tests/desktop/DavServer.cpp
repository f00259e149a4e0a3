#include "DavServer.h"

#include "VirtualDesktop.h"

#include <QDir>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <unistd.h>

namespace {

constexpr auto kModules = "/usr/lib/apache2/modules/";

int freePort() {
    QTcpServer probe;
    if (!probe.listen(QHostAddress::LocalHost, 0))
        return 0;
    return probe.serverPort();
}

bool accepts(int port) {
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected(200);
}

} // namespace

DavServer::DavServer(const QString& user, const QString& password) {
    m_port = freePort();
    if (!m_root.isValid() || m_port == 0 || !writeConfiguration(user, password) || !start())
        m_port = 0;
}

DavServer::~DavServer() {
    stop();
}

bool DavServer::writeConfiguration(const QString& user, const QString& password) {
    const QString root = m_root.path();
    for (const char* folder : {"dav", "run", "logs"})
        QDir().mkpath(root + '/' + folder);
    // Apache started by root serves as www-data, which must reach the folder and write into it.
    QFile::setPermissions(root, QFile::permissions(root) | QFile::ExeOther | QFile::ReadOther);
    if (geteuid() == 0)
        QProcess::execute("chown", {"-R", "www-data", root + "/dav", root + "/run"});
    if (QProcess::execute("htpasswd", {"-bc", root + "/users", user, password}) != 0)
        return false;
    QString modules;
    for (const char* m : {"mpm_event", "authn_core", "authn_file", "authz_core", "authz_user", "auth_basic",
                          "alias", "dav", "dav_fs"})
        modules += QString("LoadModule %1_module %2mod_%1.so\n").arg(m, kModules);
    const QString conf = QString(R"(ServerRoot %1
ServerName 127.0.0.1
Listen 127.0.0.1:%2
PidFile %1/run/httpd.pid
ErrorLog %1/logs/error.log
%3
User www-data
Group www-data
DavLockDB %1/run/davlock
Alias /dav %1/dav
<Directory %1/dav>
  Dav On
  AuthType Basic
  AuthName "Velmora tests"
  AuthUserFile %1/users
  Require valid-user
</Directory>
)")
                             .arg(root)
                             .arg(m_port)
                             .arg(modules);
    QFile file(root + "/httpd.conf");
    return file.open(QIODevice::WriteOnly) && file.write(conf.toUtf8()) == conf.toUtf8().size();
}

bool DavServer::start() {
    stop();
    m_apache = std::make_unique<QProcess>();
    m_apache->setProcessChannelMode(QProcess::MergedChannels);
    m_apache->start("apache2", {"-f", m_root.path() + "/httpd.conf", "-DFOREGROUND"});
    if (!m_apache->waitForStarted(5000))
        return false;
    return waitUntil([this] { return accepts(m_port); }, 10000);
}

void DavServer::stop() {
    if (!m_apache)
        return;
    m_apache->terminate();
    if (!m_apache->waitForFinished(5000)) {
        m_apache->kill();
        m_apache->waitForFinished(2000);
    }
    m_apache.reset();
}

QByteArray DavServer::file(const QString& key) const {
    QFile file(m_root.path() + "/dav/Velmora/" + key + ".json");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString DavServer::errorLog() const {
    QFile file(m_root.path() + "/logs/error.log");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
