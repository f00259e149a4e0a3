#pragma once

#include "app/AppContext.h"
#include "app/Module.h"

namespace velmora {

class PowerManagementModule;

// Prevent Sleep mode on the screen: a switch in the drop-down panel, the Power preference page, and
// the tray icon while sleep is prevented (its menu offers "Allow Sleep").
class PowerManagementScreens final : public Module {
public:
    PowerManagementScreens(AppContext& context, PowerManagementModule& power);

    QString name() const override { return "powerManagementScreens"; }
    void registerWith(ModuleRegistry& registry) override;

private:
    PowerManagementModule& m_power;
};

} // namespace velmora
