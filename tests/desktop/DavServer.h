#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

// A WebDAV server of the test's own: Apache with mod_dav on 127.0.0.1, one folder behind basic
// authentication for one user. It can be stopped and started again on the same port, files kept.
class DavServer {
public:
    DavServer(const QString& user, const QString& password);
    ~DavServer();

    bool start();
    void stop();
    bool isReady() const { return m_port != 0; }
    // The user's folder, as a user would type it into the Sync section.
    QString address() const { return QString("http://127.0.0.1:%1/dav/").arg(m_port); }
    // The file the server keeps for a record, as it is on disk.
    QByteArray file(const QString& key) const;
    QString errorLog() const;

private:
    bool writeConfiguration(const QString& user, const QString& password);

    QTemporaryDir m_root;
    int m_port = 0;
    std::unique_ptr<QProcess> m_apache;
};
