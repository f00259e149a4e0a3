#include "ui/windowmanager/WindowManagerScreens.h"

#include "app/BindingsProvider.h"
#include "app/ModuleRegistry.h"
#include "app/UserPreferences.h"
#include "platform/Platform.h"
#include "ui/windowmanager/AutoLayoutPanel.h"
#include "ui/windowmanager/SnapPreviewOverlay.h"
#include "ui/windowmanager/WindowManagerPreferencesPage.h"
#include "ui/windowmanager/WindowSwitcher.h"
#include "windowmanager/WindowManagerModule.h"

namespace velmora {

WindowManagerScreens::WindowManagerScreens(AppContext& context, WindowManagerModule& windowManager)
    : m_context(context), m_windowManager(windowManager),
      m_switcher(std::make_unique<WindowSwitcher>(
          windowManager.windowsCache(), *context.platform.accessibility, *context.platform.screens,
          context.platform.workspace.get(), context.shortcuts, *context.platform.keyboardLayout,
          [&prefs = context.preferences] { return prefs.theme.value().windowSwitcherWidth; })),
      m_preview(std::make_unique<SnapPreviewOverlay>(
          windowManager.model(), [&screens = *context.platform.screens] { return screens.isCompositing(); })),
      m_autoLayout(std::make_unique<AutoLayoutPanel>(
          windowManager.autoLayout(), windowManager.model(), windowManager.windowTabs(), context.preferences,
          *context.platform.keyboardLayout, context.platform.workspace.get())) {
    QObject::connect(m_autoLayout.get(), &AutoLayoutPanel::placed, m_preview.get(),
                     &SnapPreviewOverlay::setCutout);
}

WindowManagerScreens::~WindowManagerScreens() = default;

QString WindowManagerScreens::switcherUnavailableReason() const {
    if (const QString reason = m_windowManager.unavailableReason(); !reason.isEmpty())
        return reason;
    if (!m_context.preferences.windowManager.value().enableWindowSwitcher)
        return "the window switcher is switched off (Preferences, Window Manager)";
    return {};
}

QString WindowManagerScreens::autoLayoutUnavailableReason() const {
    if (const QString reason = m_windowManager.unavailableReason(); !reason.isEmpty())
        return reason;
    if (!m_context.preferences.windowManager.value().enableAutoLayout)
        return "auto-layout is switched off (Preferences, Window Manager)";
    return {};
}

void WindowManagerScreens::registerWith(ModuleRegistry& registry) {
    registry.actions().setHandler<action::OpenWindowSwitcher>(
        [this](const action::OpenWindowSwitcher& a) { m_switcher->open(a.previous); },
        [this] { return switcherUnavailableReason(); });
    auto& prefs = m_context.preferences;
    using A = KeyboardAppAction;
    registry.addProvider(
        ActionProviders::Slot::switcherAndAutoLayout,
        std::make_unique<BindingsProvider>(
            [&prefs]() -> const KeyboardBindings& { return prefs.keyboardBindings.value(); },
            registry.actions(),
            std::vector<BindingsProvider::Entry>{{A::switchWindow, action::OpenWindowSwitcher{false}},
                                                 {A::switchWindowPrevious, action::OpenWindowSwitcher{true}},
                                                 {A::proposeAutoLayout, action::ProposeAutoLayout{}}}));
    registry.actions().setHandler<action::ProposeAutoLayout>(
        [this](const action::ProposeAutoLayout&) { m_autoLayout->propose(); },
        [this] { return autoLayoutUnavailableReason(); });
    registry.addShortcutRows({A::switchWindow, A::switchWindowPrevious, A::proposeAutoLayout});
    registry.addStatus("autoLayout", [this] { return autoLayoutStatus(); });
    registry.addStatus("switcher", [this] { return status(); });
    registry.addPreferencePage(WindowManagerPreferencesPage::kTitle, [this] {
        return new WindowManagerPreferencesPage(m_context.preferences, m_context.shortcuts,
                                                *m_context.platform.keyboardLayout,
                                                WindowManagerPageFeatures{.dragSnapping = true});
    });
}

Json WindowManagerScreens::status() const {
    Json rows = Json::array();
    for (const auto& w : m_switcher->rows())
        rows.push_back((w.appName.value_or("") + " — " + w.title.value_or("")).toStdString());
    const Rect preview = m_preview->shownFrame();
    return {{"open", m_switcher->isOpen()},
            {"rows", rows},
            {"selected", m_switcher->selectedIndex()},
            {"preview",
             {{"visible", m_preview->isVisible()},
              {"translucent", m_preview->isTranslucent()},
              {"frame", {preview.x, preview.y, preview.width, preview.height}}}}};
}

Json WindowManagerScreens::autoLayoutStatus() const {
    const auto& proposal = m_windowManager.model().autoLayoutProposal();
    Json rows = Json::array();
    for (const auto& row : m_autoLayout->rows())
        rows.push_back(
            {{"window", row.window.id},
             {"text", (row.tab ? row.tab->title
                               : row.window.appName.value_or("") + " — " + row.window.title.value_or(""))
                          .toStdString()},
             {"tab", row.tab ? Json(row.tabIndex) : Json(nullptr)}});
    Json tabs = Json::object();
    for (const auto& [window, list] : m_autoLayout->knownTabs()) {
        Json titles = Json::array();
        for (const auto& tab : list)
            titles.push_back(tab.title.toStdString());
        tabs[std::to_string(window)] = titles;
    }
    Json frame = nullptr;
    if (proposal && !proposal->targetFrames.empty()) {
        const Rect& f = proposal->targetFrames.front();
        frame = {f.x, f.y, f.width, f.height};
    }
    return {{"open", m_autoLayout->isOpen()},
            {"snappedWindow", proposal ? Json(proposal->snappedWindow.id) : Json(nullptr)},
            {"freeSpace", frame},
            {"rows", rows},
            {"selected", m_autoLayout->selectedIndex()},
            {"tabs", tabs}};
}

} // namespace velmora
