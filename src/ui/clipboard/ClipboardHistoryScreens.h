#pragma once

#include "app/AppContext.h"
#include "app/Module.h"

namespace velmora {

class ClipboardHistoryModule;

// The clipboard history's screens: its preference page.
class ClipboardHistoryScreens final : public Module {
public:
    ClipboardHistoryScreens(AppContext& context, ClipboardHistoryModule& history);

    QString name() const override { return "clipboardHistoryScreens"; }
    void registerWith(ModuleRegistry& registry) override;

private:
    AppContext& m_context;
    ClipboardHistoryModule& m_history;
};

} // namespace velmora
