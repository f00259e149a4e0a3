#include "agent/ControlServer.h"

#include <QDir>
#include <QLocalSocket>
#include <QPointer>
#include <QStandardPaths>

namespace velmora {

ControlServer::ControlServer(ControlCommands& commands, QObject* parent)
    : QObject(parent), m_commands(commands) {
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (auto* socket = m_server.nextPendingConnection())
            serve(socket);
    });
}

QString ControlServer::socketPath() {
    // $XDG_RUNTIME_DIR is private to the user; Qt falls back to a private directory of its own.
    QString dir = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (dir.isEmpty())
        dir = QDir::tempPath();
    return dir + "/velmora.sock";
}

bool ControlServer::listen(QString* error) {
    QLocalServer::removeServer(socketPath());
    if (!m_server.listen(socketPath())) {
        if (error)
            *error = m_server.errorString();
        return false;
    }
    return true;
}

void ControlServer::serve(QLocalSocket* socket) {
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
        if (!socket->canReadLine())
            return;
        const QByteArray line = socket->readLine();
        QStringList args;
        try {
            const Json request = Json::parse(line.toStdString());
            for (const auto& a : request.at("args"))
                args << QString::fromStdString(a.get<std::string>());
        } catch (const std::exception& e) {
            answer(socket, ControlReply::failure(QString("malformed request: %1").arg(e.what())));
            return;
        }
        // A command that answers later may outlive a client that gave up waiting.
        m_commands.handle(args, [socket = QPointer<QLocalSocket>(socket)](ControlReply reply) {
            if (socket)
                answer(socket, reply);
        });
    });
}

void ControlServer::answer(QLocalSocket* socket, const ControlReply& reply) {
    Json answer = Json::object();
    answer["ok"] = reply.ok;
    if (reply.ok)
        answer["result"] = reply.result;
    else
        answer["error"] = reply.error;
    socket->write(QByteArray::fromStdString(answer.dump() + "\n"));
    socket->flush();
    socket->disconnectFromServer();
}

} // namespace velmora
