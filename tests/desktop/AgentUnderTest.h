#pragma once

#include "VirtualDesktop.h"

#include <nlohmann/json.hpp>
#include <optional>

// The real velmora agent running on a virtual desktop, driven through its command line.
class AgentUnderTest {
public:
    using Json = nlohmann::ordered_json;

    explicit AgentUnderTest(VirtualDesktop& desktop) : m_desktop(desktop) {}

    // Starts the agent and waits until it answers on its socket.
    bool start();
    // The agent's command line: velmora ARGS.
    VirtualDesktop::Output command(const QStringList& args) const;
    // The JSON a successful command prints; absent when it failed.
    std::optional<Json> json(const QStringList& args) const;
    Json status() const { return json({"status"}).value_or(Json::object()); }
    // Waits until the tray host has embedded the status icon; its geometry then.
    std::optional<QRect> waitForStatusIcon() const;

    // Asks the agent to quit and waits for the process to end; its exit code.
    int quit();
    bool isRunning() const { return m_process && m_process->state() != QProcess::NotRunning; }
    QProcess* process() const { return m_process; }
    // What the agent printed on standard output so far.
    QString output();

private:
    VirtualDesktop& m_desktop;
    QProcess* m_process = nullptr;
    QString m_output;
};
