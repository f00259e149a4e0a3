#pragma once

#include "platform/SleepInhibitor.h"

#include <memory>

namespace velmora {

// Keeps the computer awake and its screen lit: the sleep inhibitor decides whether anything is held;
// the screen's is added where it can be, and a screen that may still blank is only logged.
class SleepAndScreenInhibitor final : public SleepInhibitor {
public:
    SleepAndScreenInhibitor(std::unique_ptr<SleepInhibitor> sleep, std::unique_ptr<SleepInhibitor> screen);

    void hold(const QString& reason, Done done) override;
    void release() override;
    bool isHeld() const override { return m_sleep->isHeld(); }
    QStringList heldMechanisms() const override;

private:
    std::unique_ptr<SleepInhibitor> m_sleep;
    std::unique_ptr<SleepInhibitor> m_screen;
};

} // namespace velmora
