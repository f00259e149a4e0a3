#pragma once

#include "platform/Commands.h"

namespace velmora {

// Child programs through QProcess; results are delivered by the main event loop, never waited for.
class ProcessCommands final : public Commands {
public:
    void run(const QString& program, const QStringList& arguments,
             std::function<void(const CommandResult&)> done) override;
};

} // namespace velmora
