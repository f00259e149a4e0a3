#include "agent/ControlClient.h"

#include <cstdio>
#include <iostream>
#include <termios.h>
#include <unistd.h>

#include "agent/ControlCommands.h"
#include "agent/ControlServer.h"

#include <QLocalSocket>
#include <algorithm>
#include <cstdio>

namespace velmora {

std::optional<ControlClient::Answer> ControlClient::request(const QStringList& args, int timeoutMs) {
    QLocalSocket socket;
    socket.connectToServer(ControlServer::socketPath());
    if (!socket.waitForConnected(timeoutMs))
        return std::nullopt;
    Json request = Json::object();
    request["args"] = Json::array();
    for (const auto& a : args)
        request["args"].push_back(a.toStdString());
    socket.write(QByteArray::fromStdString(request.dump() + "\n"));
    socket.flush();
    QByteArray line;
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(timeoutMs))
            return Answer{false, nullptr, "the agent did not answer"};
    }
    line = socket.readLine();
    try {
        const Json reply = Json::parse(line.toStdString());
        if (reply.at("ok").get<bool>())
            return Answer{true, reply.value("result", Json()), {}};
        return Answer{false, nullptr, QString::fromStdString(reply.at("error").get<std::string>())};
    } catch (const std::exception& e) {
        return Answer{false, nullptr, QString("unreadable answer from the agent: %1").arg(e.what())};
    }
}

int ControlClient::timeoutFor(const QString& command) {
    if (ControlCommands::isAgentCommand(command))
        return kDefaultTimeoutMs;
    const auto answer = request({"timeout", command});
    if (!answer || !answer->ok || !answer->result.is_number_integer())
        return kDefaultTimeoutMs;
    return std::max(kDefaultTimeoutMs, answer->result.get<int>());
}

int ControlClient::run(const QStringList& args) {
    const auto answer = request(args, timeoutFor(args.value(0)));
    if (!answer) {
        std::fputs("velmora: the agent is not running (start it with `velmora`)\n", stderr);
        return 2;
    }
    if (!answer->ok) {
        std::fprintf(stderr, "velmora: %s\n", answer->error.toUtf8().constData());
        return 1;
    }
    // Bytes of a clipboard entry go out as they are, for redirecting into a file or another program.
    if (answer->result.is_object() && answer->result.size() == 1 && answer->result.contains("stdoutBase64")) {
        const QByteArray bytes = QByteArray::fromBase64(
            QByteArray::fromStdString(answer->result["stdoutBase64"].get<std::string>()));
        std::fwrite(bytes.constData(), 1, bytes.size(), stdout);
        return 0;
    }
    std::puts(answer->result.dump(2).c_str());
    return 0;
}

std::optional<QString> ControlClient::readSecret(const char* prompt) {
    const bool terminal = isatty(STDIN_FILENO);
    termios saved{};
    if (terminal && tcgetattr(STDIN_FILENO, &saved) == 0) {
        std::fputs(prompt, stderr);
        termios quiet = saved;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
    }
    std::string line;
    const bool read = static_cast<bool>(std::getline(std::cin, line));
    if (terminal) {
        tcsetattr(STDIN_FILENO, TCSANOW, &saved);
        std::fputs("\n", stderr);
    }
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    if (!read || line.empty())
        return std::nullopt;
    return QString::fromStdString(line);
}

} // namespace velmora
