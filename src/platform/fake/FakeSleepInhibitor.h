#pragma once

#include "platform/SleepInhibitor.h"

#include <vector>

namespace velmora {

// Holds as asked, or refuses with `refusal` (no login manager); with `deferred`, the answer waits
// until the test calls answer().
class FakeSleepInhibitor final : public SleepInhibitor {
public:
    QString refusal;
    bool deferred = false;
    bool held = false;
    int holds = 0;
    int releases = 0;
    QStringList reasons;
    std::vector<Done> pending;

    void hold(const QString& reason, Done done) override {
        ++holds;
        reasons << reason;
        pending.push_back(std::move(done));
        if (!deferred)
            answer();
    }
    void release() override {
        if (held)
            ++releases;
        held = false;
    }
    bool isHeld() const override { return held; }
    QStringList heldMechanisms() const override { return held ? QStringList{"fake"} : QStringList{}; }

    void answer() {
        auto waiting = std::move(pending);
        pending.clear();
        for (auto& done : waiting) {
            held = refusal.isEmpty();
            if (done)
                done(refusal);
        }
    }
};

} // namespace velmora
