#pragma once

#include "app/LoggingManager.h"
#include "app/MenubarPopover.h"
#include "app/StandardWindowController.h"
#include "app/UserDefaultsObservable.h"
#include "app/UserPreferences.h"
#include "platform/Platform.h"
#include "ui/PreferencesWindow.h"

#include <QPointer>
#include <QProcessEnvironment>
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

    void openPreferences();
    void quit();

private:
    void createPreferences();
    void createStatusItems();
    void showWelcomeWindowIfNeeded();
    QWidget* makeDropDownPanel();

    Platform& m_platform;
    QProcessEnvironment m_environment;
    QStringList m_startupSteps;
    LoggingManager m_logging;
    std::unique_ptr<UserPreferences> m_preferences;
    std::unique_ptr<MenubarPopover> m_menubarPopover;
    std::unique_ptr<QMenu> m_contextMenu;
    std::unique_ptr<UserDefaultsObservable> m_welcomeSeen;
    std::unique_ptr<StandardWindowController> m_welcomeController;
    QPointer<PreferencesWindow> m_preferencesWindow;
};

} // namespace velmora
