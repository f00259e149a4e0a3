#pragma once

#include "app/AppContext.h"
#include "app/Module.h"
#include "clipboard/KeyboardCleaningModel.h"

namespace velmora {

// Keyboard cleaning: while on, the tap silences every key and the mouse stays free to switch it off.
// Offered as a switch in the drop-down panel and as `velmora keyboard-cleaning on|off`.
class KeyboardCleaningModule final : public Module {
public:
    explicit KeyboardCleaningModule(AppContext& context);

    QString name() const override { return "keyboardCleaning"; }
    void registerWith(ModuleRegistry& registry) override;
    // The keyboard must never stay held by a process that is leaving.
    void stop() override { m_model.setOn(false); }

    KeyboardCleaningModel& model() { return m_model; }

private:
    ControlReply command(const QStringList& arguments);

    AppContext& m_context;
    KeyboardCleaningModel m_model;
};

} // namespace velmora
