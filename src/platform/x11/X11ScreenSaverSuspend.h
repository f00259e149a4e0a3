#pragma once

#include "platform/SleepInhibitor.h"
#include "platform/x11/X11Connection.h"

namespace velmora {

// The X server's own screen saver and display power management, for desktops without a screen saver
// service: the screen saver is suspended (the server lifts that if the agent's connection closes)
// and DPMS is switched off while held, then on again if it was on before.
class X11ScreenSaverSuspend final : public SleepInhibitor {
public:
    explicit X11ScreenSaverSuspend(X11Connection connection);
    ~X11ScreenSaverSuspend() override;

    void hold(const QString& reason, Done done) override;
    void release() override;
    bool isHeld() const override { return m_suspended || m_dpmsDisabled; }
    QStringList heldMechanisms() const override;

private:
    bool canSuspend() const;
    bool disableDpms();

    X11Connection m_connection;
    bool m_suspended = false;
    bool m_dpmsDisabled = false;
};

} // namespace velmora
