#pragma once

#include "agent/ControlCommands.h"

#include <QLocalServer>

namespace velmora {

// The agent's end of the command line: a local socket only this user can connect to. Each
// connection carries one request line ({"args": [...]}) and gets one reply line.
class ControlServer : public QObject {
    Q_OBJECT
public:
    ControlServer(ControlCommands& commands, QObject* parent = nullptr);

    // Takes over a socket left behind by an agent that died; false when it cannot listen.
    bool listen(QString* error);

    static QString socketPath();

private:
    void serve(QLocalSocket* socket);
    static void answer(QLocalSocket* socket, const ControlReply& reply);

    ControlCommands& m_commands;
    QLocalServer m_server;
};

} // namespace velmora
