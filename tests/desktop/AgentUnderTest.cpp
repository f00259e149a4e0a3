#include "AgentUnderTest.h"

#include <iostream>

bool AgentUnderTest::start() {
    m_process = m_desktop.start(VELMORA_BINARY, {});
    VirtualDesktop::Output last;
    if (waitUntil([&] { return (last = command({"status"})).exitCode == 0; }, 20000))
        return true;
    // Say why, or a failed start on a loaded machine leaves nothing to go on. Without an event loop
    // the process's end is only noticed while waiting for it.
    m_process->waitForFinished(200);
    const bool crashed = !isRunning() && m_process->exitStatus() == QProcess::CrashExit;
    std::cerr << "The agent did not answer: "
              << (isRunning() ? "it is still running"
                  : crashed   ? "it crashed"
                              : "it has ended with " + std::to_string(m_process->exitCode()))
              << "; the last status said " << last.exitCode << " " << last.err.toStdString() << "\n"
              << "The agent printed:\n"
              << output().toStdString() << QString::fromUtf8(m_process->readAllStandardError()).toStdString()
              << std::endl;
    return false;
}

VirtualDesktop::Output AgentUnderTest::command(const QStringList& args) const {
    return m_desktop.run(VELMORA_BINARY, args);
}

std::optional<AgentUnderTest::Json> AgentUnderTest::json(const QStringList& args) const {
    const auto o = command(args);
    if (o.exitCode != 0)
        return std::nullopt;
    try {
        return Json::parse(o.out.toStdString());
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::optional<QRect> AgentUnderTest::waitForStatusIcon() const {
    std::optional<QRect> rect;
    waitUntil([&] {
        const auto s = status();
        if (!s.contains("statusItem") || !s["statusItem"].value("embedded", false))
            return false;
        const auto& g = s["statusItem"]["geometry"];
        rect = QRect(g[0].get<int>(), g[1].get<int>(), g[2].get<int>(), g[3].get<int>());
        return true;
    });
    return rect;
}

int AgentUnderTest::quit() {
    command({"quit"});
    if (!m_process->waitForFinished(10000))
        return -1;
    output();
    return m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : -1;
}

QString AgentUnderTest::output() {
    // Without an event loop, the pipe is only read while waiting on it.
    if (m_process && m_process->state() == QProcess::Running)
        m_process->waitForReadyRead(50);
    if (m_process)
        m_output += QString::fromUtf8(m_process->readAllStandardOutput());
    return m_output;
}
