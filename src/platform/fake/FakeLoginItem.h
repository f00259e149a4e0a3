#pragma once

#include "platform/LoginItem.h"

namespace velmora {

// A login item that can be told to refuse every change, as a desktop without a writable autostart
// folder would.
class FakeLoginItem final : public LoginItem {
public:
    bool enabled = false;
    bool failing = false;
    int requests = 0;

    bool setEnabled(bool on) override {
        ++requests;
        m_error = failing ? QString("the autostart folder is read-only") : QString();
        if (!failing)
            enabled = on;
        return enabled;
    }
    bool isEnabled() const override { return enabled; }
    QString lastError() const override { return m_error; }

private:
    QString m_error;
};

} // namespace velmora
