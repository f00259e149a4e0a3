#include "agent/AppDelegate.h"

#include "platform/Screens.h"

#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardHistoryModule.h"
#include "clipboard/ClipboardLog.h"
#include "clipboard/KeyboardCleaningModule.h"
#include "core/MainThread.h"
#include "dimming/DimmingModule.h"
#include "monitoring/SystemMonitoringModule.h"
#include "power/PowerManagementModule.h"
#include "sync/SyncModule.h"
#include "ui/BriefMessage.h"
#include "ui/DeveloperPreferencesPage.h"
#include "ui/DropDownPanelView.h"
#include "ui/GeneralPreferencesPage.h"
#include "ui/KeyboardShortcutsPreferencesPage.h"
#include "ui/PreferencesWindow.h"
#include "ui/ScreenNotice.h"
#include "ui/ShortcutRenderer.h"
#include "ui/WelcomeView.h"
#include "ui/clipboard/ClipboardHistoryScreens.h"
#include "ui/dimming/DimmingScreens.h"
#include "ui/monitoring/MenubarSystemMonitoringView.h"
#include "ui/monitoring/SystemMonitoringScreens.h"
#include "ui/power/PowerManagementScreens.h"
#include "ui/sync/SyncPreferencesSection.h"
#include "ui/windowmanager/WindowManagerScreens.h"
#include "updates/UpdatesModule.h"
#include "windowmanager/WindowManagerModule.h"

#include <QApplication>
#include <QDateTime>
#include <QMenu>
#include <QScreen>
#include <QStandardPaths>
#include <QTimer>

namespace velmora {

namespace {

qint64 nowMs() {
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

AppDelegate::AppDelegate(Platform& platform, QProcessEnvironment environment, QObject* parent)
    : QObject(parent), m_platform(platform), m_environment(std::move(environment)), m_createdAtMs(nowMs()),
      m_logging(
          [this] { return m_preferencesForLogs && m_preferencesForLogs->local.developerLogsEnabled(); }),
      m_dispatcher(m_logging) {}

AppDelegate::~AppDelegate() {
    m_preferencesForLogs = nullptr; // the clipboard store, destroyed after them, may still log
    delete m_preferencesWindow;
}

// Start-up, in its fixed order. A module starts at its own place in it.
void AppDelegate::applicationDidFinishLaunching() {
    assertMainThread("AppDelegate::applicationDidFinishLaunching");
    openClipboardStore();
    // A design-time preview host must get no status items, timers or input tap.
    if (m_environment.value("XCODE_RUNNING_FOR_PREVIEWS") == "1") {
        m_startupSteps << "previewHostStop";
        return;
    }
    createPreferences();
    createStatusItems();
    createModules();
    startModule(*module<SyncModule>(), "cloudMirroring");
    startModule(*module<UpdatesModule>(), "updateCheckTimer");
    startPermissionPoll();
    startModule(*module<WindowManagerModule>(), "windowCache");
    startModule(*module<DimmingModule>(), "monitorDimming");
    startModule(*module<ClipboardHistoryModule>(), "clipboardWatcher");
    showWelcomeWindowIfNeeded();
    startModule(*module<SystemMonitoringModule>(), "systemMonitoring");
    startModule(*module<PowerManagementModule>(), "powerManagement");
}

void AppDelegate::applicationWillTerminate() {
    assertMainThread("AppDelegate::applicationWillTerminate");
    m_startupSteps << "terminate";
    for (auto it = m_modules.rbegin(); it != m_modules.rend(); ++it)
        (*it)->stop();
    if (m_eventTap)
        m_eventTap->invalidate();
    // Preferences are written as they change; nothing else is held that must outlive the process.
}

// The history's store comes first: everything that records or shows a copy reads it. When it cannot be
// opened the agent runs on without a history, and says so.
void AppDelegate::openClipboardStore() {
    auto store = std::make_unique<AppModelContainer>(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Velmora");
    if (store->open())
        m_clipboardStore = std::move(store);
    else
        qCCritical(lcClipboard).noquote() << "The clipboard history cannot be kept:" << store->errorString();
    m_startupSteps << "clipboardStore";
}

void AppDelegate::createPreferences() {
    m_preferences = std::make_unique<UserPreferences>(*m_platform.defaults, m_logging);
    m_preferencesForLogs = m_preferences.get();
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

template <class M, class... Args> M& AppDelegate::addModule(Args&&... args) {
    auto module = std::make_unique<M>(*m_context, std::forward<Args>(args)...);
    M& ref = *module;
    module->registerWith(*m_registry);
    m_modules.push_back(std::move(module));
    return ref;
}

// The shared objects, then every module of this build; a module registers all it offers here and
// starts later, at its place in the start-up order.
void AppDelegate::createModules() {
    m_shortcuts = std::make_unique<KeyboardShortcutModel>(
        [this](const KeyboardShortcut& chord) { return m_providers.match(chord); },
        [this](const KeyboardBinding& binding) {
            // Carried out after the verdict went back, so a slow action never holds the keyboard.
            QTimer::singleShot(0, this, [this, binding] {
                if (const auto owner = refusal(binding.shortcut)) {
                    showBrief(*owner);
                    return;
                }
                m_dispatcher.dispatch(binding.action, binding.id);
            });
        });
    m_shortcuts->setRematcher(
        [this](const KeyboardBinding& binding) { return m_providers.rematch(binding); });
    m_eventTap = std::make_unique<EventTap>(*m_platform.inputTap, *m_shortcuts, m_logging, &nowMs);
    connect(m_eventTap.get(), &EventTap::refusedChordsChanged, this, &AppDelegate::logRefusedChords);
    m_context = std::make_unique<AppContext>(AppContext{m_platform, *m_preferences, m_logging, *m_shortcuts,
                                                        *m_eventTap, m_dispatcher, &nowMs,
                                                        [this](const QString& text) { showBrief(text); }});
    m_registry = std::make_unique<ModuleRegistry>(m_dispatcher, m_providers);

    auto& windowManager = addModule<WindowManagerModule>();
    addModule<WindowManagerScreens>(windowManager);
    addModule<KeyboardCleaningModule>();
    auto& clipboardHistory = addModule<ClipboardHistoryModule>(m_clipboardStore.get());
    addModule<ClipboardHistoryScreens>(clipboardHistory);
    auto& monitoring = addModule<SystemMonitoringModule>();
    auto& monitoringScreens = addModule<SystemMonitoringScreens>(monitoring);
    m_menubarPopover->showSystemMonitoring(monitoringScreens.menubarView(), [this] {
        m_dispatcher.dispatch(action::OpenSystemMonitoringDashboard{}, "systemMonitoringItem");
    });
    auto& dimming = addModule<DimmingModule>(DimmingScreens::overlayFactory());
    addModule<DimmingScreens>(dimming);
    auto& power = addModule<PowerManagementModule>();
    addModule<PowerManagementScreens>(power);
    addModule<UpdatesModule>(m_environment.value(kUpdateServerVariable));
    addModule<SyncModule>(m_environment.value(SyncAccountStore::kPasswordVariable),
                          SyncModule::checkSecondsFrom(m_environment.value("VELMORA_SYNC_CHECK_SECONDS")));

    for (auto* record : m_preferences->records())
        connect(record, &CKValueObservableBase::valueChanged, this, &AppDelegate::updateSwallowableChords);
    connect(&m_preferences->local, &LocalUserPreferences::changed, this,
            &AppDelegate::updateSwallowableChords);
    connect(m_registry.get(), &ModuleRegistry::chordsMayHaveChanged, this,
            &AppDelegate::updateSwallowableChords);
    connect(m_registry.get(), &ModuleRegistry::indicatorsChanged, this, &AppDelegate::showIndicators);
    connect(qApp, &QGuiApplication::screenAdded, this, &AppDelegate::showIndicators);
    connect(qApp, &QGuiApplication::screenRemoved, this, &AppDelegate::showIndicators);
    updateSwallowableChords();
}

// The one-second permission poll; each tick also keeps the input tap alive. The first tick runs at
// once, so shortcuts work from the first moment.
void AppDelegate::startPermissionPoll() {
    connect(m_platform.inputTap.get(), &InputTap::stateChanged, this, [this] {
        if (!m_tapActiveAfterMs && m_platform.inputTap->state() == InputTap::State::active)
            m_tapActiveAfterMs = nowMs() - m_createdAtMs;
    });
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

void AppDelegate::startModule(Module& module, const QString& step) {
    module.start();
    m_startupSteps << step;
}

void AppDelegate::updateSwallowableChords() {
    m_eventTap->setSwallowableChords(m_providers.swallowableChords());
}

void AppDelegate::logRefusedChords() {
    // Once per chord and reason: the tap is renewed often, the user needs to read it only once.
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

QWidget* AppDelegate::makeDropDownPanel() {
    auto* view = new DropDownPanelView();
    for (const auto& rows : m_registry->panelRows())
        rows(*view);
    view->addAction("Preferences…", [this] {
        m_menubarPopover->windowController().close();
        openPreferences();
    });
    view->addStretch();
    view->addAction("Quit Velmora", [this] { quit(); });
    return view;
}

void AppDelegate::showWelcomeWindowIfNeeded() {
    // Someone who ran an earlier version has been welcomed already.
    const auto lastUsed = m_platform.defaults->value("LastUsedVersion");
    const bool ranBefore = lastUsed && lastUsed->typeId() == QMetaType::QString;
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

// A chord another program holds reaches that program; acting on it too would do two things at once.
std::optional<QString> AppDelegate::refusal(const KeyboardShortcut& chord) const {
    KeyboardShortcut asked = chord;
    asked.disabled = false;
    for (const RefusedChord& refused : m_eventTap->refusedChords())
        if (refused.shortcut.matches(asked))
            return QString("%1 belongs to another program; choose another shortcut in Preferences")
                .arg(shortcutText(chord, *m_platform.keyboardLayout));
    return std::nullopt;
}

void AppDelegate::showBrief(const QString& text) {
    VELMORA_LOG(m_logging, LogContext::Default, LogLevel::Info, text + ".");
    if (!m_brief)
        m_brief = std::make_unique<BriefMessage>();
    QScreen* screen = QGuiApplication::primaryScreen();
    // Screens are in bottom-left coordinates; Qt's are top-left.
    const auto primary = primaryScreen(m_platform.screens->screens());
    if (const auto main = m_platform.screens->mainScreen(); main && primary)
        if (QScreen* at = QGuiApplication::screenAt(
                main->frame.flipped(primary->frame.height).toQRectF().center().toPoint()))
            screen = at;
    if (screen)
        m_brief->showOn(screen, text);
}

namespace {

// The buttons of the states without a notice, at the top of the tray icon's menu, above a separator.
void offerEndsInMenu(QMenu& menu, const std::vector<StatusIndicator>& active) {
    // Removed, not deleted: the action triggered may be the one that ended its state.
    for (QAction* action : menu.actions())
        if (action->property("indicator").isValid()) {
            menu.removeAction(action);
            action->deleteLater();
        }
    QAction* first = menu.actions().value(0);
    for (const StatusIndicator& indicator : active) {
        if (indicator.notice)
            continue;
        auto* end = new QAction(indicator.endTitle, &menu);
        end->setProperty("indicator", indicator.id);
        QObject::connect(end, &QAction::triggered, &menu, [end = indicator.end] { end(); });
        menu.insertAction(first, end);
    }
    if (menu.actions().value(0) != first)
        menu.insertSeparator(first)->setProperty("indicator", "");
}

} // namespace

// A state the user must see (the keyboard is off, sleep is prevented) changes the tray icon for as
// long as it lasts. The first that wants a notice puts one, with the button that ends it, on every
// screen; the others offer that button at the top of the tray icon's menu.
void AppDelegate::showIndicators() {
    const auto active = m_registry ? m_registry->activeIndicators() : std::vector<StatusIndicator>{};
    m_notices.clear();
    QStringList titles;
    for (const StatusIndicator& indicator : active)
        titles << indicator.title;
    if (m_menubarPopover)
        m_menubarPopover->showState(active.empty() ? std::nullopt : std::optional(active.front().glyph),
                                    active.empty() ? QString("Velmora") : "Velmora: " + titles.join("; "));
    if (m_contextMenu)
        offerEndsInMenu(*m_contextMenu, active);
    const auto shown = std::find_if(active.begin(), active.end(), [](const auto& i) { return i.notice; });
    if (shown == active.end())
        return;
    for (QScreen* screen : QGuiApplication::screens()) {
        auto notice = std::make_unique<ScreenNotice>(shown->title, shown->text, shown->endTitle, shown->end);
        notice->showOn(screen);
        m_notices.push_back(std::move(notice));
    }
}

void AppDelegate::openPreferences(const QString& page) {
    assertMainThread("AppDelegate::openPreferences");
    if (!m_preferences || !m_registry)
        return;
    if (!m_preferencesWindow) {
        m_preferencesWindow = new PreferencesWindow();
        m_preferencesWindow->addPage(
            "General", new GeneralPreferencesPage(*m_preferences, *m_platform.loginItem,
                                                  new SyncPreferencesSection(*module<SyncModule>())));
        for (const auto& [title, page] : m_registry->preferencePages())
            m_preferencesWindow->addPage(title, page());
        m_preferencesWindow->addPage(
            KeyboardShortcutsPreferencesPage::kTitle,
            new KeyboardShortcutsPreferencesPage(
                *m_preferences, *m_shortcuts, *m_platform.keyboardLayout, *m_eventTap,
                [this](KeyboardAppAction a) { return m_registry->offersShortcut(a); }));
        m_preferencesWindow->addPage("Developer", new DeveloperPreferencesPage(*m_preferences, m_logging));
        connect(m_preferences.get(), &UserPreferences::writeFailed, m_preferencesWindow.data(),
                &PreferencesWindow::showProblem);
        if (auto* screen = QGuiApplication::primaryScreen()) {
            QRect frame = m_preferencesWindow->geometry();
            frame.moveCenter(screen->availableGeometry().center());
            m_preferencesWindow->move(frame.topLeft());
        }
    }
    if (!page.isEmpty())
        m_preferencesWindow->showPage(page);
    m_preferencesWindow->show();
    m_preferencesWindow->raise();
    m_preferencesWindow->activateWindow();
}

void AppDelegate::quit() {
    // Leave the current event first, so a reply to the caller (a click, the command line) goes out.
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
}

} // namespace velmora
