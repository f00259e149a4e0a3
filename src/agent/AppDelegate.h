#pragma once

#include "agent/MenubarPopover.h"
#include "app/ActionProviders.h"
#include "app/AppActionDispatcher.h"
#include "app/AppContext.h"
#include "app/EventTap.h"
#include "app/KeyboardShortcutModel.h"
#include "app/LogRouter.h"
#include "app/LoggingManager.h"
#include "app/ModuleRegistry.h"
#include "app/StandardWindowController.h"
#include "app/UserDefaultsObservable.h"
#include "app/UserPreferences.h"
#include "platform/Platform.h"
#include "ui/PreferencesWindow.h"
#include "windowmanager/AccessibilityModel.h"

#include <QPointer>
#include <QProcessEnvironment>
#include <QSet>
#include <memory>

class QMenu;

namespace velmora {

class AppModelContainer;
class BriefMessage;
class ScreenNotice;

// Owns start-up and shut-down, the shared objects every module is handed, and the modules themselves.
class AppDelegate : public QObject {
    Q_OBJECT
public:
    AppDelegate(Platform& platform, QProcessEnvironment environment, QObject* parent = nullptr);
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    void applicationWillTerminate();

    // The steps start-up ran, in order (what support and the tests look at).
    const QStringList& startupSteps() const { return m_startupSteps; }

    Platform& platform() { return m_platform; }
    LoggingManager& logging() { return m_logging; }
    UserPreferences* preferences() { return m_preferences.get(); }
    MenubarPopover* menubarPopover() { return m_menubarPopover.get(); }
    StandardWindowController* welcomeWindowController() { return m_welcomeController.get(); }
    PreferencesWindow* preferencesWindow() { return m_preferencesWindow; }
    AppActionDispatcher& dispatcher() { return m_dispatcher; }
    KeyboardShortcutModel* shortcuts() { return m_shortcuts.get(); }
    EventTap* eventTap() { return m_eventTap.get(); }
    AccessibilityModel* accessibility() { return m_accessibility.get(); }
    ModuleRegistry* registry() { return m_registry.get(); }
    // When the process started, if main() knows it: the tap's readiness is counted from there.
    void setLaunchedAtMs(qint64 ms) { m_createdAtMs = ms; }
    // The notices on the screens while a module's state must be seen (keyboard cleaning).
    const std::vector<std::unique_ptr<ScreenNotice>>& notices() const { return m_notices; }
    // Says briefly on the screen the user works on what could not be done.
    void showBrief(const QString& text);
    const BriefMessage* brief() const { return m_brief.get(); }
    const ActionProviders& providers() const { return m_providers; }
    // Milliseconds from the agent's construction until its input tap was first active.
    std::optional<qint64> tapActiveAfterMs() const { return m_tapActiveAfterMs; }

    // A module by its type, or null when this build has none.
    template <class M> M* module() const {
        for (const auto& m : m_modules)
            if (auto* typed = dynamic_cast<M*>(m.get()))
                return typed;
        return nullptr;
    }

    // Opens the window, at the page of that title when one is given.
    void openPreferences(const QString& page = {});
    void quit();

private:
    void openClipboardStore();
    void createPreferences();
    void createStatusItems();
    void createModules();
    template <class M, class... Args> M& addModule(Args&&... args);
    void startPermissionPoll();
    void startModule(Module& module, const QString& step);
    void updateSwallowableChords();
    void logRefusedChords();
    void showIndicators();
    std::optional<QString> refusal(const KeyboardShortcut& chord) const;
    void showWelcomeWindowIfNeeded();
    QWidget* makeDropDownPanel();

    Platform& m_platform;
    QProcessEnvironment m_environment;
    qint64 m_createdAtMs;
    QStringList m_startupSteps;
    // What the logging asks whether developer logs are on. It asks from its first message on, and
    // the router replays messages logged before the agent was made while it is being made, when
    // m_preferences (declared after it) is not constructed yet: this pointer is, and is null.
    UserPreferences* m_preferencesForLogs = nullptr;
    LoggingManager m_logging;
    LogRouter m_logRouter{m_logging};
    AppActionDispatcher m_dispatcher;
    ActionProviders m_providers;
    // Declared before the modules that use it, so it outlives them.
    std::unique_ptr<AppModelContainer> m_clipboardStore;
    std::unique_ptr<UserPreferences> m_preferences;
    std::unique_ptr<MenubarPopover> m_menubarPopover;
    std::unique_ptr<QMenu> m_contextMenu;
    std::unique_ptr<KeyboardShortcutModel> m_shortcuts;
    std::unique_ptr<EventTap> m_eventTap;
    std::unique_ptr<AppContext> m_context;
    std::unique_ptr<ModuleRegistry> m_registry;
    std::vector<std::unique_ptr<ScreenNotice>> m_notices;
    std::unique_ptr<BriefMessage> m_brief;
    std::vector<std::unique_ptr<Module>> m_modules;
    std::unique_ptr<AccessibilityModel> m_accessibility;
    std::optional<qint64> m_tapActiveAfterMs;
    QSet<QString> m_loggedRefusals;
    std::unique_ptr<UserDefaultsObservable> m_welcomeSeen;
    std::unique_ptr<StandardWindowController> m_welcomeController;
    QPointer<PreferencesWindow> m_preferencesWindow;
};

} // namespace velmora
