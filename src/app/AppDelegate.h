#pragma once

#include "app/ActionProviders.h"
#include "app/AppActionDispatcher.h"
#include "app/EventTap.h"
#include "app/KeyboardShortcutModel.h"
#include "app/LoggingManager.h"
#include "app/MenubarPopover.h"
#include "app/StandardWindowController.h"
#include "app/UserDefaultsObservable.h"
#include "app/UserPreferences.h"
#include "clipboard/KeyboardCleaningModel.h"
#include "platform/Platform.h"
#include "ui/PreferencesWindow.h"
#include "ui/WindowSwitcher.h"
#include "windowmanager/AccessibilityModel.h"
#include "windowmanager/WindowManagerActions.h"
#include "windowmanager/WindowManagerModel.h"
#include "windowmanager/WindowsCache.h"

#include <QPointer>
#include <QProcessEnvironment>
#include <QSet>
#include <memory>

class QMenu;

namespace velmora {

// Owns start-up and shut-down, and the shared objects every area is handed.
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
    KeyboardCleaningModel& keyboardCleaning() { return m_keyboardCleaning; }
    KeyboardShortcutModel* shortcuts() { return m_shortcuts.get(); }
    EventTap* eventTap() { return m_eventTap.get(); }
    AccessibilityModel* accessibility() { return m_accessibility.get(); }
    WindowsCache* windowsCache() { return m_windowsCache.get(); }
    WindowSwitcher* windowSwitcher() { return m_windowSwitcher.get(); }

    void openPreferences();
    void quit();

private:
    void createPreferences();
    void createStatusItems();
    void startPermissionPoll();
    void startWindowManager();
    void updateSwallowableChords();
    void logRefusedChords();
    void showWelcomeWindowIfNeeded();
    QWidget* makeDropDownPanel();

    Platform& m_platform;
    QProcessEnvironment m_environment;
    QStringList m_startupSteps;
    LoggingManager m_logging;
    AppActionDispatcher m_dispatcher;
    KeyboardCleaningModel m_keyboardCleaning;
    std::unique_ptr<UserPreferences> m_preferences;
    std::unique_ptr<MenubarPopover> m_menubarPopover;
    std::unique_ptr<QMenu> m_contextMenu;
    std::unique_ptr<ActionProviders> m_providers;
    std::unique_ptr<KeyboardShortcutModel> m_shortcuts;
    std::unique_ptr<EventTap> m_eventTap;
    std::unique_ptr<AccessibilityModel> m_accessibility;
    std::unique_ptr<WindowManagerModel> m_windowManagerModel;
    std::unique_ptr<WindowsCache> m_windowsCache;
    std::unique_ptr<WindowManagerActions> m_windowActions;
    std::unique_ptr<WindowSwitcher> m_windowSwitcher;
    QSet<QString> m_loggedRefusals;
    std::unique_ptr<UserDefaultsObservable> m_welcomeSeen;
    std::unique_ptr<StandardWindowController> m_welcomeController;
    QPointer<PreferencesWindow> m_preferencesWindow;
};

} // namespace velmora
