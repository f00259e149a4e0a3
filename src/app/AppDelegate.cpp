#include "app/AppDelegate.h"

#include "core/MainThread.h"
#include "ui/AppIcon.h"
#include "ui/DeveloperPreferencesPage.h"
#include "ui/DropDownPanelView.h"
#include "ui/GeneralPreferencesPage.h"
#include "ui/KeyboardShortcutsPreferencesPage.h"
#include "ui/PreferencesWindow.h"
#include "ui/ShortcutRenderer.h"
#include "ui/WelcomeView.h"
#include "ui/WindowManagerPreferencesPage.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDateTime>
#include <QMenu>
#include <QScreen>
#include <QTimer>

namespace velmora {

AppDelegate::AppDelegate(Platform& platform, QProcessEnvironment environment, QObject* parent)
    : QObject(parent), m_platform(platform), m_environment(std::move(environment)),
      m_logging([this] { return m_preferences && m_preferences->local.developerLogsEnabled(); }),
      m_dispatcher(m_logging) {}

AppDelegate::~AppDelegate() {
    delete m_preferencesWindow;
}

// Start-up, in its fixed order. Each area inserts its step where it belongs.
void AppDelegate::applicationDidFinishLaunching() {
    assertMainThread("AppDelegate::applicationDidFinishLaunching");
    // A design-time preview host must get no status items, timers or input tap.
    if (m_environment.value("XCODE_RUNNING_FOR_PREVIEWS") == "1") {
        m_startupSteps << "previewHostStop";
        return;
    }
    createPreferences();
    createStatusItems();
    startPermissionPoll();
    startWindowManager();
    showWelcomeWindowIfNeeded();
}

void AppDelegate::applicationWillTerminate() {
    assertMainThread("AppDelegate::applicationWillTerminate");
    m_startupSteps << "terminate";
    // The keyboard must never stay held by a process that is leaving.
    m_keyboardCleaning.setOn(false);
    if (m_eventTap)
        m_eventTap->invalidate();
    // Preferences are written as they change; nothing else is held that must outlive the process.
}

void AppDelegate::createPreferences() {
    m_preferences = std::make_unique<UserPreferences>(*m_platform.defaults, m_logging);
    m_startupSteps << "preferences";
}

void AppDelegate::createStatusItems() {
    m_menubarPopover = std::make_unique<MenubarPopover>(*m_platform.screens, *m_platform.keyboardLayout,
                                                        [this] { return makeDropDownPanel(); });
    m_contextMenu = std::make_unique<QMenu>();
    m_contextMenu->addAction("Open Velmora", this, [this] { m_menubarPopover->show(); });
    m_contextMenu->addAction("Preferences…", this, [this] { openPreferences(); });
    m_contextMenu->addSeparator();
    m_contextMenu->addAction("Quit Velmora", this, [this] { quit(); });
    m_menubarPopover->setUp(m_contextMenu.get());
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        VELMORA_LOG(m_logging, LogContext::Default, LogLevel::Info,
                    "No system tray is running; the status icon appears once one starts.");
    m_startupSteps << "statusItems";
}

QWidget* AppDelegate::makeDropDownPanel() {
    auto* view = new DropDownPanelView();
    auto* cleaning = view->addToggle("Keyboard Cleaning", m_keyboardCleaning.isOn(),
                                     [this](bool on) { m_keyboardCleaning.setOn(on); });
    connect(&m_keyboardCleaning, &KeyboardCleaningModel::isOnChanged, cleaning, &QAbstractButton::setChecked);
    view->addAction("Preferences…", [this] {
        m_menubarPopover->windowController().close();
        openPreferences();
    });
    view->addStretch();
    view->addAction("Quit Velmora", [this] { quit(); });
    return view;
}

// The one-second permission poll; each tick also keeps the input tap alive.
void AppDelegate::startPermissionPoll() {
    m_providers = std::make_unique<ActionProviders>(ActionProviders::forPreferences(*m_preferences));
    m_shortcuts = std::make_unique<KeyboardShortcutModel>(
        [this](const KeyboardShortcut& chord) { return m_providers->match(chord); },
        [this](const KeyboardBinding& binding) {
            // Carried out after the verdict went back, so a slow action never holds the keyboard.
            QTimer::singleShot(0, this,
                               [this, binding] { m_dispatcher.dispatch(binding.action, binding.id); });
        });
    m_eventTap = std::make_unique<EventTap>(*m_platform.inputTap, *m_shortcuts, m_keyboardCleaning, m_logging,
                                            [] { return QDateTime::currentMSecsSinceEpoch() / 1000.0; });
    connect(m_eventTap.get(), &EventTap::refusedChordsChanged, this, &AppDelegate::logRefusedChords);
    for (auto* record : {static_cast<CKValueObservableBase*>(&m_preferences->keyboardBindings),
                         static_cast<CKValueObservableBase*>(&m_preferences->windowManager)})
        connect(record, &CKValueObservableBase::valueChanged, this, &AppDelegate::updateSwallowableChords);
    connect(&m_preferences->local, &LocalUserPreferences::changed, this,
            &AppDelegate::updateSwallowableChords);
    updateSwallowableChords();

    m_accessibility =
        std::make_unique<AccessibilityModel>(*m_platform.permission, [this](bool hasPermission) {
            if (hasPermission)
                m_eventTap->watchdog();
            else
                m_eventTap->invalidate();
        });
    m_accessibility->start();
    m_startupSteps << "permissionPoll";
}

// The window cache and the window actions: shortcuts snap, centre and move the focused window.
void AppDelegate::startWindowManager() {
    m_windowManagerModel = std::make_unique<WindowManagerModel>();
    m_windowsCache = std::make_unique<WindowsCache>(*m_platform.windowServer, *m_platform.accessibility,
                                                    qint32(QCoreApplication::applicationPid()),
                                                    [] { return QDateTime::currentMSecsSinceEpoch(); });
    m_windowActions = std::make_unique<WindowManagerActions>(
        *m_windowsCache, *m_platform.accessibility, *m_platform.screens,
        [this] { return m_preferences->windowManager.value(); }, m_windowManagerModel.get());

    using Kind = AppAction::Kind;
    m_dispatcher.setHandler(Kind::windowAreas, [this](const AppAction& a) {
        m_windowActions->applyZone({a.candidates, a.index});
    });
    m_dispatcher.setHandler(Kind::centerWindow,
                            [this](const AppAction&) { m_windowActions->centerWindow(); });
    m_dispatcher.setHandler(Kind::makeWindow16By9,
                            [this](const AppAction&) { m_windowActions->makeWindow16By9(); });
    m_dispatcher.setHandler(Kind::moveWindowToScreen,
                            [this](const AppAction&) { m_windowActions->moveWindowToScreen(); });
    m_dispatcher.setHandler(Kind::matchSnappedWindowFrame,
                            [this](const AppAction&) { m_windowActions->matchSnappedWindowFrame(); });

    m_windowSwitcher = std::make_unique<WindowSwitcher>(
        *m_windowsCache, *m_platform.accessibility, *m_platform.screens, *m_shortcuts,
        *m_platform.keyboardLayout, [this] { return m_preferences->theme.value().windowSwitcherWidth; });
    m_dispatcher.setHandler(Kind::openWindowSwitcher,
                            [this](const AppAction& a) { m_windowSwitcher->open(a.previous); });

    m_providers->set(ActionProviders::Slot::zoneShortcuts,
                     [this](const KeyboardShortcut& chord) -> std::optional<KeyboardBinding> {
                         if (!m_preferences->local.windowManagerEnabled())
                             return std::nullopt;
                         const auto choice = m_windowActions->zonesForChord(chord);
                         if (!choice)
                             return std::nullopt;
                         AppAction action;
                         action.kind = AppAction::Kind::windowAreas;
                         action.candidates = choice->candidates;
                         action.index = choice->index;
                         return KeyboardBinding{chord, action, true, "windowAreas"};
                     });
    m_providers->addChordSource([this] {
        std::vector<KeyboardShortcut> chords;
        if (m_preferences->local.windowManagerEnabled())
            for (const auto& area : m_preferences->windowManager.value().areas)
                if (area.keyboardShortcut)
                    chords.push_back(*area.keyboardShortcut);
        return chords;
    });
    updateSwallowableChords();
    m_windowsCache->start();
    m_startupSteps << "windowCache";
}

void AppDelegate::updateSwallowableChords() {
    m_eventTap->setSwallowableChords(m_providers->swallowableChords());
}

void AppDelegate::logRefusedChords() {
    // Once per chord and reason: the tap is recreated often, the user needs to read it only once.
    for (const auto& refused : m_eventTap->refusedChords()) {
        const QString text =
            QString("Shortcut %1 cannot be used: %2.")
                .arg(shortcutText(refused.shortcut, *m_platform.keyboardLayout), refused.reason);
        if (m_loggedRefusals.contains(text))
            continue;
        m_loggedRefusals.insert(text);
        VELMORA_LOG(m_logging, LogContext::Default, LogLevel::Error, text);
    }
}

void AppDelegate::showWelcomeWindowIfNeeded() {
    // Someone who ran an earlier version has been welcomed already.
    const bool ranBefore = m_platform.defaults->value("LastUsedVersion").has_value() &&
                           m_platform.defaults->value("LastUsedVersion")->typeId() == QMetaType::QString;
    m_welcomeSeen = std::make_unique<UserDefaultsObservable>("WelcomeWindowSeen:V26", *m_platform.defaults,
                                                             QVariant(ranBefore));
    m_welcomeController = std::make_unique<StandardWindowController>(
        *m_platform.keyboardLayout, QString("Welcome to Velmora"), StandardWindowPreset::welcomeWindow(),
        [this] { return new WelcomeView([this] { m_welcomeController->close(); }); });
    m_welcomeController->onClose = [this] { m_welcomeSeen->setValue(true); };
    m_startupSteps << "welcome";

    if (m_welcomeSeen->value().toBool())
        return;
    QRect frame(0, 0, 630, 390);
    if (auto* screen = QGuiApplication::primaryScreen())
        frame.moveCenter(screen->availableGeometry().center());
    m_welcomeController->show(Rect::fromQRect(frame));
}

void AppDelegate::openPreferences() {
    assertMainThread("AppDelegate::openPreferences");
    if (!m_preferences)
        return;
    if (!m_preferencesWindow) {
        m_preferencesWindow = new PreferencesWindow();
        m_preferencesWindow->addPage("General", new GeneralPreferencesPage(*m_preferences));
        if (m_shortcuts)
            m_preferencesWindow->addPage(
                WindowManagerPreferencesPage::kTitle,
                new WindowManagerPreferencesPage(*m_preferences, *m_shortcuts, *m_platform.keyboardLayout));
        if (m_shortcuts)
            m_preferencesWindow->addPage("Keyboard Shortcuts", new KeyboardShortcutsPreferencesPage(
                                                                   *m_preferences, *m_shortcuts,
                                                                   *m_platform.keyboardLayout, *m_eventTap));
        m_preferencesWindow->addPage("Developer", new DeveloperPreferencesPage(*m_preferences, m_logging));
        if (auto* screen = QGuiApplication::primaryScreen()) {
            QRect frame = m_preferencesWindow->geometry();
            frame.moveCenter(screen->availableGeometry().center());
            m_preferencesWindow->move(frame.topLeft());
        }
    }
    m_preferencesWindow->show();
    m_preferencesWindow->raise();
    m_preferencesWindow->activateWindow();
}

void AppDelegate::quit() {
    // Leave the current event first, so a reply to the caller (a click, the command line) goes out.
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
}

} // namespace velmora
