#include "ui/clipboard/ClipboardHistoryScreens.h"

#include "app/ModuleRegistry.h"
#include "clipboard/ClipboardHistoryModule.h"
#include "platform/Platform.h"
#include "ui/clipboard/ClipboardHistoryPreferencesPage.h"

namespace velmora {

ClipboardHistoryScreens::ClipboardHistoryScreens(AppContext& context, ClipboardHistoryModule& history)
    : m_context(context), m_history(history) {}

void ClipboardHistoryScreens::registerWith(ModuleRegistry& registry) {
    if (!m_context.platform.workspace)
        return;
    registry.addPreferencePage(ClipboardHistoryPreferencesPage::kTitle, [this] {
        return new ClipboardHistoryPreferencesPage(m_context.preferences, *m_context.platform.workspace,
                                                   m_history.store());
    });
}

} // namespace velmora
