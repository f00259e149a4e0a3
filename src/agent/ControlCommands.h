#pragma once

#include "app/ControlReply.h"

#include <QStringList>
#include <functional>

namespace velmora {

class AppDelegate;
class ModuleRegistry;

// What the command line can ask of the running agent: the agent's own commands and those the
// modules registered. Each command answers with JSON, or with a one-line reason and no change.
class ControlCommands {
public:
    explicit ControlCommands(AppDelegate& app) : m_app(app) {}

    ControlReply handle(const QStringList& args);
    // Every command, including those that answer later; reply is called once, on the main thread.
    void handle(const QStringList& args, std::function<void(ControlReply)> reply);

    // The help text: the agent's commands, then the modules' (when a registry is given), aligned.
    static QString usage(const ModuleRegistry* registry = nullptr);
    // Whether the agent answers NAME itself, not a module: the command line knows those without it.
    static bool isAgentCommand(const QString& name);
    // How long the command line waits for the answer to NAME: what its module declares, else the
    // client's default.
    int clientTimeoutMs(const QString& name) const;

private:
    static QString usageOf(const QStringList& args);
    ControlReply status();
    ControlReply prefsGet(const QString& key);
    ControlReply prefsSet(const QString& key, const QString& text);
    ControlReply prefsList();
    ControlReply logsExport(const QString& path);
    ControlReply panel(const QString& how);
    ControlReply preferences(const QString& page);
    ControlReply launchOnStart(bool on);
    ControlReply quit();
    ControlReply action(const QString& name);
    ControlReply debug(const QStringList& args);

    AppDelegate& m_app;
};

} // namespace velmora
