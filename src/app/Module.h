#pragma once

#include "app/ControlReply.h"

#include <QStringList>
#include <functional>

class QWidget;

namespace velmora {

class ModuleRegistry;

// One command of the command line that a module answers: `velmora NAME ARGS...`.
struct ModuleCommand {
    QString name;      // the first word
    QString arguments; // how the arguments are written in the help, e.g. "on|off"
    QString help;      // one line
    int minArguments = 0;
    int maxArguments = 0;
    std::function<ControlReply(const QStringList& arguments)> run;
    // Instead of run, for a command that waits for something (a child program, the next sample):
    // it answers through reply, once, on the main thread, without holding the main thread meanwhile.
    std::function<void(const QStringList& arguments, std::function<void(ControlReply)> reply)> runLater =
        nullptr;
    // How long the command line waits for the answer; 0 for the client's default. A command that may
    // wait for the user (an administrator prompt) declares minutes.
    int clientTimeoutMs = 0;
};

// A subsystem of the agent. It owns its models and registers everything it offers in one place,
// registerWith(): action handlers, action providers, commands, its status section, preference pages
// and panel rows. The agent creates each module once, registers it, and starts it at its place in
// the start-up order.
class Module {
public:
    virtual ~Module() = default;
    virtual QString name() const = 0;
    virtual void registerWith(ModuleRegistry& registry) = 0;
    // Timers and observation begin here, not in the constructor.
    virtual void start() {}
    // Called before the agent leaves; whatever the module holds of the desktop is given back.
    virtual void stop() {}
};

} // namespace velmora
