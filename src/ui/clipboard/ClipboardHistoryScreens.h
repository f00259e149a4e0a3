#pragma once

#include "app/AppContext.h"
#include "app/Module.h"

#include <memory>

namespace velmora {

class ClipboardHistoryModule;
class ClipboardHistoryWindow;
class QuickLookHelper;

// The clipboard history's screens: the history window with its preview, its row in the drop-down
// panel, and its preference page.
class ClipboardHistoryScreens final : public Module {
public:
    ClipboardHistoryScreens(AppContext& context, ClipboardHistoryModule& history);
    ~ClipboardHistoryScreens() override;

    QString name() const override { return "clipboardHistoryScreens"; }
    void registerWith(ModuleRegistry& registry) override;

    ClipboardHistoryWindow* window() { return m_window.get(); }

private:
    Json status() const;

    AppContext& m_context;
    ClipboardHistoryModule& m_history;
    std::unique_ptr<QuickLookHelper> m_preview;
    std::unique_ptr<ClipboardHistoryWindow> m_window;
};

} // namespace velmora
