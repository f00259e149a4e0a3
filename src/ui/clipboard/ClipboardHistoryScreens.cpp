#include "ui/clipboard/ClipboardHistoryScreens.h"

#include "app/ModuleRegistry.h"
#include "app/PanelRows.h"
#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardHistoryModule.h"
#include "clipboard/ClipboardItemJson.h"
#include "clipboard/ClipboardSearchModel.h"
#include "platform/Platform.h"
#include "ui/clipboard/ClipboardHistoryPreferencesPage.h"
#include "ui/clipboard/ClipboardHistoryWindow.h"
#include "ui/clipboard/QuickLookHelper.h"

namespace velmora {

ClipboardHistoryScreens::ClipboardHistoryScreens(AppContext& context, ClipboardHistoryModule& history)
    : m_context(context), m_history(history) {
    Platform& platform = context.platform;
    if (!history.actions() || !platform.workspace || !platform.screens || !platform.keyboardLayout)
        return;
    m_preview = std::make_unique<QuickLookHelper>(platform.fileThumbnails.get());
    ClipboardSearchModel* search = history.search();
    m_window = std::make_unique<ClipboardHistoryWindow>(
        *history.store(), *history.actions(), [search](const QString& text) { return search->setText(text); },
        m_preview.get(), *platform.workspace, *platform.screens, context.preferences,
        *platform.keyboardLayout, context.nowMs);
}

ClipboardHistoryScreens::~ClipboardHistoryScreens() = default;

void ClipboardHistoryScreens::registerWith(ModuleRegistry& registry) {
    if (!m_context.platform.workspace)
        return;
    registry.addPreferencePage(ClipboardHistoryPreferencesPage::kTitle, [this] {
        return new ClipboardHistoryPreferencesPage(m_context.preferences, *m_context.platform.workspace,
                                                   m_history.store());
    });
    if (!m_window)
        return;
    registry.actions().setHandler<action::OpenClipboardHistory>(
        [this](const action::OpenClipboardHistory&) { m_window->open(); },
        [this] { return m_history.unavailableReason(); });
    registry.addPanelRows([this, &registry](PanelRows& rows) {
        rows.addAction("Clipboard History…",
                       [&registry] { registry.actions().dispatch(action::OpenClipboardHistory{}, "panel"); });
    });
    registry.addStatus("clipboardWindow", [this] { return status(); });
}

Json ClipboardHistoryScreens::status() const {
    Json rows = Json::array();
    const int shown = std::min(m_window->rowCount(), 30);
    for (int row = 0; row < shown; ++row)
        rows.push_back(listingJson(*m_window->entry(row)));
    return {{"open", m_window->isOpen()},
            {"search", m_window->searchText().toStdString()},
            {"selected", m_window->selectedRow()},
            {"rows", rows},
            {"rowCount", m_window->rowCount()},
            {"previewOpen", m_preview && m_preview->isVisible()},
            {"openMs", m_window->lastOpenMs()},
            {"searchMs", m_window->lastSearchMs()},
            {"searchPaintedMs", m_window->lastSearchPaintedMs()}};
}

} // namespace velmora
