#pragma once

#include "platform/Commands.h"

#include <QHash>
#include <vector>

namespace velmora {

// Records every run and answers with a scripted result per program (a program with no script
// fails to start, like a missing tool).
class FakeCommands final : public Commands {
public:
    struct Call {
        QString program;
        QStringList arguments;
    };
    std::vector<Call> calls;
    QHash<QString, CommandResult> results;

    void run(const QString& program, const QStringList& arguments,
             std::function<void(const CommandResult&)> done) override {
        calls.push_back({program, arguments});
        if (done)
            done(results.value(program, CommandResult{}));
    }
};

} // namespace velmora
