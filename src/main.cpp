// The composition root: picks the X11 backend, builds the platform and starts the agent, or acts as
// the agent's command-line client when given a command.
#include "Version.h"
#include "agent/AppDelegate.h"
#include "agent/ControlClient.h"
#include "agent/ControlCommands.h"
#include "agent/ControlServer.h"
#include "app/LogRouter.h"
#include "platform/linux/AtspiElements.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/FreedesktopOpener.h"
#include "platform/linux/KeychainSecretStore.h"
#include "platform/linux/LinuxFileThumbnails.h"
#include "platform/linux/LinuxSystemProbes.h"
#include "platform/linux/LoginManagerInhibitor.h"
#include "platform/linux/NetworkUpdateChannel.h"
#include "platform/linux/ProcessCommands.h"
#include "platform/linux/ScreenSaverInhibitor.h"
#include "platform/linux/SettingsDefaults.h"
#include "platform/linux/SleepAndScreenInhibitor.h"
#include "platform/linux/SystemdSleepSettings.h"
#include "platform/linux/TerminationSignals.h"
#include "platform/linux/WebDavCloudDatabase.h"
#include "platform/linux/XdgAutostart.h"
#include "platform/x11/X11Accessibility.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11EventHub.h"
#include "platform/x11/X11InputTap.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/X11Log.h"
#include "platform/x11/X11Permission.h"
#include "platform/x11/X11ScreenSaverSuspend.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11WindowServer.h"
#include "platform/x11/X11Workspace.h"

#include <QApplication>
#include <QDateTime>
#include <QFile>
#include <QIcon>
#include <QStandardPaths>
#include <cstdio>
#include <malloc.h>
#include <xcb/xcb.h>

using namespace velmora;

namespace {

int runClient(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    if (args.value(0) == "--version" || args.value(0) == "-v") {
        std::printf("velmora %s\n", kVersion);
        return 0;
    }
    if (args.value(0) == "--help" || args.value(0) == "-h" || args.value(0) == "help") {
        // The running agent knows every module's commands; without one, the agent's own are listed.
        if (const auto answer = ControlClient::request({"help"}, 1000); answer && answer->ok)
            std::fputs(answer->result.get<std::string>().c_str(), stdout);
        else
            std::fputs(ControlCommands::usage().toUtf8().constData(), stdout);
        return 0;
    }
    // Large records do not fit in an argument: "-" reads the value from standard input.
    if (args.size() == 4 && args[0] == "prefs" && args[1] == "set" && args[3] == "-") {
        QFile in;
        in.open(stdin, QIODevice::ReadOnly);
        args[3] = QString::fromUtf8(in.readAll());
    }
    // The sync password is never an argument (other users can read those): it comes on standard input.
    if (args.value(0) == "sync" && args.value(1) == "setup") {
        if (args.contains("--password")) {
            std::fputs("velmora: the app password is read from standard input, not from the arguments.\n",
                       stderr);
            return 2;
        }
        const auto password = ControlClient::readSecret("App password: ");
        if (!password) {
            std::fputs("velmora: no app password on standard input; nothing was set up.\n", stderr);
            return 1;
        }
        args << "--password" << *password;
    }
    return ControlClient::run(args);
}

// Only an X11 display will do; say plainly what is missing instead of letting the toolkit abort.
bool hasX11Display() {
    if (!qEnvironmentVariableIsEmpty("DISPLAY")) {
        // Asked before the toolkit starts: it would abort with advice about reinstalling.
        xcb_connection_t* probe = xcb_connect(nullptr, nullptr);
        const bool reachable = !xcb_connection_has_error(probe);
        xcb_disconnect(probe);
        if (!reachable)
            std::fprintf(stderr,
                         "velmora: cannot open the X display %s (is the X server running, and may this user "
                         "use it?)\n",
                         qgetenv("DISPLAY").constData());
        return reachable;
    }
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        std::fputs("velmora: this is a Wayland session without X11; Velmora needs an X11 desktop for now.\n",
                   stderr);
    else
        std::fputs("velmora: no X display (DISPLAY is not set). Run it on an X11 desktop, or use `make run`, "
                   "which starts a virtual one.\n",
                   stderr);
    return false;
}

// The X11 backend: the event hub on the toolkit's connection keeps the window and screen models; the
// accessibility service has a connection of its own, so that it can wait for the window manager.
QtMessageHandler g_defaultHandler = nullptr;

// Until the agent's log exists, messages are printed as usual and ours are also kept for it.
void keepEarlyMessages() {
    g_defaultHandler =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
            LogRouter::keepEarly(type, context, message);
            if (g_defaultHandler)
                g_defaultHandler(type, context, message);
            else
                std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
        });
}

std::optional<Platform> makeX11Platform() {
    auto qtConnection = X11Connection::borrowApplication();
    auto own = X11Connection::open();
    if (!qtConnection || !own)
        return std::nullopt;
    X11RequestProbe probe;
    probe.add(qtConnection->connection());
    probe.add(own->connection());
    auto hub = std::make_shared<X11EventHub>(std::move(*qtConnection));
    auto windowServer = std::make_unique<X11WindowServer>(*hub);
    Platform platform;
    platform.backendResources.push_back(hub);
    platform.defaults = std::make_unique<SettingsDefaults>();
    platform.permission = std::make_unique<X11Permission>(hub.get());
    platform.commands = std::make_unique<ProcessCommands>();
    platform.keyboardLayout = std::make_unique<X11KeyboardLayout>();
    platform.inputTap = std::make_unique<X11InputTap>(probe);
    platform.screens = std::make_unique<X11Screens>(*hub, *windowServer);
    platform.accessibility = std::make_unique<X11Accessibility>(std::move(*own), *windowServer);
    platform.windowServer = std::move(windowServer);
    platform.loginItem = std::make_unique<XdgAutostart>();
    if (auto forIcons = X11Connection::borrowApplication())
        platform.workspace =
            std::make_unique<X11Workspace>(std::move(*forIcons), *hub, std::make_unique<DesktopEntries>());
    if (auto forClipboard = X11Connection::open())
        platform.pasteboard = std::make_unique<X11Clipboard>(std::move(*forClipboard));
    platform.fileThumbnails = std::make_unique<LinuxFileThumbnails>();
    platform.opener = std::make_unique<FreedesktopOpener>();
    platform.systemProbes = std::make_unique<LinuxSystemProbes>();
    platform.accessibleElements = std::make_shared<AtspiElements>();
    // Sleep through the login manager; the screen through the desktop's screen saver service, else
    // the X server's own screen saver and DPMS.
    std::unique_ptr<SleepInhibitor> xScreenSaver;
    if (auto forScreenSaver = X11Connection::borrowApplication())
        xScreenSaver = std::make_unique<X11ScreenSaverSuspend>(std::move(*forScreenSaver));
    platform.sleepInhibitor = std::make_unique<SleepAndScreenInhibitor>(
        std::make_unique<LoginManagerInhibitor>(),
        std::make_unique<ScreenSaverInhibitor>(std::move(xScreenSaver)));
    platform.sleepSettings = std::make_unique<SystemdSleepSettings>(*platform.commands);
    platform.updateChannel = std::make_unique<NetworkUpdateChannel>(
        QCoreApplication::applicationFilePath(),
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Velmora/updater.log");
    platform.cloudDatabase = std::make_unique<WebDavCloudDatabase>();
    platform.secretStore = std::make_unique<KeychainSecretStore>();
    return platform;
}

int runAgent(int argc, char** argv) {
    const qint64 launchedAtMs = QDateTime::currentMSecsSinceEpoch();
    if (!hasX11Display())
        return 1;
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);
    QApplication::setApplicationName("Velmora");
    QApplication::setOrganizationName("Velmora");
    QApplication::setApplicationVersion(kVersion);
    QApplication::setQuitOnLastWindowClosed(false);
    // A bare window manager sets no icon theme, and hicolor alone has no file type or application icons.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == "hicolor")
        QIcon::setThemeName("Adwaita");

    if (const auto running = ControlClient::request({"status"}, 1000); running && running->ok) {
        const std::string display = running->result.value("display", std::string());
        std::printf("Velmora is already running (pid %lld%s%s).\n",
                    static_cast<long long>(running->result.value("pid", 0LL)),
                    display.empty() ? "" : " on display ", display.c_str());
        return 0;
    }

    keepEarlyMessages();
    auto platform = makeX11Platform();
    if (!platform) {
        std::fputs("velmora: cannot reach the X server.\n", stderr);
        return 1;
    }
    AppDelegate delegate(*platform, QProcessEnvironment::systemEnvironment());
    delegate.setLaunchedAtMs(launchedAtMs);
    ControlCommands commands(delegate);
    ControlServer server(commands);
    QString error;
    if (!server.listen(&error))
        std::fprintf(stderr, "velmora: the command line will not reach this agent: %s\n",
                     error.toUtf8().constData());
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &delegate, &AppDelegate::quit);

    delegate.applicationDidFinishLaunching();
    std::printf("Velmora %s is running (pid %lld).\n",
                QApplication::applicationVersion().toUtf8().constData(),
                static_cast<long long>(QApplication::applicationPid()));
    std::fflush(stdout);
    const int code = app.exec();
    delegate.applicationWillTerminate();
    return code;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1)
        return runClient(argc, argv);
    // A few worker threads do short bursts of work (reading the clipboard history, decoding a copied
    // picture); with an arena each, what they freed stays in the agent's footprint. Two arenas
    // measured 60 MB less with a history of 100,000 entries.
    mallopt(M_ARENA_MAX, 2);
    return runAgent(argc, argv);
}
