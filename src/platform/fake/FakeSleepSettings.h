#pragma once

#include "platform/SleepSettings.h"

#include <QStringList>
#include <vector>

namespace velmora {

// The system's sleep setting in memory. `refusal` answers every change as a cancelled administrator
// prompt (the setting stays); with `deferred`, changes wait until the test calls answer().
class FakeSleepSettings final : public SleepSettings {
public:
    bool disabled = false;
    QString refusal;
    bool deferred = false;
    int queries = 0;
    QStringList changes; // "disable" or "enable", in order
    std::vector<std::function<void()>> pending;

    void isSleepDisabled(std::function<void(bool)> done) override {
        ++queries;
        done(disabled);
    }
    void setSleepDisabled(bool disable, std::function<void(const QString&)> done) override {
        changes << (disable ? "disable" : "enable");
        pending.push_back([this, disable, done = std::move(done)] {
            if (refusal.isEmpty())
                disabled = disable;
            if (done)
                done(refusal);
        });
        if (!deferred)
            answer();
    }

    void answer() {
        auto waiting = std::move(pending);
        pending.clear();
        for (auto& run : waiting)
            run();
    }
};

} // namespace velmora
