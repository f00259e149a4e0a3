#include "VirtualDesktop.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QThread>
#include <csignal>

bool waitUntil(const std::function<bool()>& condition, int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QThread::msleep(50);
    }
    return true;
}

VirtualDesktop::VirtualDesktop(Options options) : m_options(options) {
    for (const char* dir : {"/config", "/data", "/runtime"})
        QDir().mkpath(m_home.path() + dir);
    QFile::setPermissions(m_home.path() + "/runtime",
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);

    auto* server = startServer();
    if (!server->waitForReadyRead(15000))
        return;
    const QString number = QString::fromLatin1(server->readLine()).trimmed();
    if (number.isEmpty())
        return;
    m_display = ":" + number;
    if (m_options.twoMonitors)
        splitIntoTwoMonitors();

    start("openbox", {"--config-file", OPENBOX_CONFIG});
    waitUntil([this] {
        return run("xprop", {"-root", "_NET_SUPPORTING_WM_CHECK"}).out.contains("window id");
    });
    if (m_options.tray) {
        QStringList args{"--edge",   "top", "--align",       "right", "--widthtype",       "request",
                         "--height", "24",  "--SetDockType", "true",  "--SetPartialStrut", "true"};
        // A tint is drawn only on a "transparent" panel; alpha 0 makes it opaque.
        args << (m_options.darkTray
                     ? QStringList{"--transparent", "true", "--alpha", "0", "--tint", "0x202020"}
                     : QStringList{"--transparent", "false"});
        start("trayer", args);
        waitUntil([this] { return run("xprop", {"-name", "panel", "WM_CLASS"}).exitCode == 0; });
    }
}

// xcompmgr takes the compositing selection at once but says nothing when it has: a short wait.
QProcess* VirtualDesktop::startCompositor() {
    QProcess* compositor = start("xcompmgr", {});
    QThread::msleep(500);
    return compositor;
}

// -displayfd 1: the server picks a free display and writes its number to standard output.
QProcess* VirtualDesktop::startServer() {
    if (!m_options.twoMonitors)
        return start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0",
                              QString("%1x%2x24").arg(m_options.width).arg(m_options.height)});
    const QString config = m_home.path() + "/xorg.conf";
    QFile file(config);
    file.open(QIODevice::WriteOnly);
    file.write(
        QString("Section \"Device\"\n Identifier \"dummy\"\n Driver \"dummy\"\n VideoRam 256000\nEndSection\n"
                "Section \"Monitor\"\n Identifier \"m\"\n HorizSync 5.0 - 1000.0\n VertRefresh 5.0 - 200.0\n"
                "EndSection\n"
                "Section \"Screen\"\n Identifier \"s\"\n Device \"dummy\"\n Monitor \"m\"\n DefaultDepth 24\n"
                " SubSection \"Display\"\n  Depth 24\n  Virtual %1 %2\n EndSubSection\nEndSection\n")
            .arg(m_options.width + rightWidth())
            .arg(m_options.height)
            .toLatin1());
    file.close();
    return start("Xorg", {"-displayfd", "1", "-config", config, "-noreset", "-nolisten", "tcp", "-logfile",
                          m_home.path() + "/xorg.log"});
}

void VirtualDesktop::splitIntoTwoMonitors() {
    // One output as wide as both, then two RandR monitors on it: what the agent reads as two screens.
    const int w = m_options.width, h = m_options.height, total = w + rightWidth();
    const QString mode = QString("%1x%2").arg(total).arg(h);
    run("xrandr", {"--newmode", mode, "200", QString::number(total), QString::number(total + 100),
                   QString::number(total + 200), QString::number(total + 300), QString::number(h),
                   QString::number(h + 3), QString::number(h + 10), QString::number(h + 30)});
    run("xrandr", {"--addmode", "DUMMY0", mode});
    run("xrandr", {"--output", "DUMMY0", "--mode", mode});
    run("xrandr", {"--setmonitor", "LEFT", QString("%1/381x%2/238+0+0").arg(w).arg(h), "DUMMY0"});
    run("xrandr",
        {"--setmonitor", "RIGHT", QString("%1/381x%2/238+%3+0").arg(rightWidth()).arg(h).arg(w), "none"});
}

VirtualDesktop::~VirtualDesktop() {
    // The newest first: clients before the window manager before the X server.
    for (auto it = m_processes.rbegin(); it != m_processes.rend(); ++it) {
        auto& p = *it;
        if (p->state() == QProcess::NotRunning)
            continue;
        p->terminate();
        if (!p->waitForFinished(3000)) {
            p->kill();
            p->waitForFinished(3000);
        }
    }
}

QProcessEnvironment VirtualDesktop::environment() const {
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("DISPLAY", m_display);
    env.insert("XDG_CONFIG_HOME", m_home.path() + "/config");
    env.insert("XDG_DATA_HOME", m_home.path() + "/data");
    env.insert("XDG_RUNTIME_DIR", m_home.path() + "/runtime");
    env.remove("WAYLAND_DISPLAY");
    // The tray must be the X11 one under test: no bus of the user's where a tray of theirs could answer.
    env.remove("DBUS_SESSION_BUS_ADDRESS");
    if (!m_sessionBus.isEmpty())
        env.insert("DBUS_SESSION_BUS_ADDRESS", m_sessionBus);
    for (auto it = m_variables.begin(); it != m_variables.end(); ++it)
        env.insert(it.key(), it.value());
    return env;
}

bool VirtualDesktop::startKeyring() {
    if (m_sessionBus.isEmpty() && !startSessionBus())
        return false;
    auto p = std::make_unique<QProcess>();
    auto env = environment();
    env.insert("HOME", m_home.path()); // its keyring files, not the user's
    p->setProcessEnvironment(env);
    p->start("gnome-keyring-daemon", {"--foreground", "--unlock", "--components=secrets"});
    if (!p->waitForStarted(5000))
        return false;
    p->write("login-keyring-password"); // read to the end: it unlocks (and creates) the login keyring
    p->waitForBytesWritten(2000);       // no event loop here writes it for us
    p->closeWriteChannel();
    m_processes.push_back(std::move(p));
    // Ready once the secret service has its name on the bus.
    return waitUntil([this] {
        return run("dbus-send",
                   {"--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                    "org.freedesktop.DBus.NameHasOwner", "string:org.freedesktop.secrets"})
            .out.contains("boolean true");
    });
}

bool VirtualDesktop::startSessionBus() {
    QDir().mkpath(m_home.path() + "/runtime");
    QProcess* bus = start("dbus-daemon", {"--session", "--nofork", "--print-address=1",
                                          "--address=unix:dir=" + m_home.path() + "/runtime"});
    if (!bus->waitForReadyRead(5000))
        return false;
    m_sessionBus = QString::fromUtf8(bus->readLine()).trimmed();
    return !m_sessionBus.isEmpty();
}

VirtualDesktop::Output VirtualDesktop::run(const QString& program, const QStringList& args, int timeoutMs,
                                           const std::optional<QByteArray>& input) const {
    QProcess p;
    p.setProcessEnvironment(environment());
    p.start(program, args);
    if (input) {
        p.write(*input);
        p.closeWriteChannel();
    }
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        p.waitForFinished(1000);
        return {-1, QString::fromUtf8(p.readAllStandardOutput()), "timed out"};
    }
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

QProcess* VirtualDesktop::start(const QString& program, const QStringList& args) {
    auto p = std::make_unique<QProcess>();
    p->setProcessEnvironment(environment());
    p->start(program, args);
    p->waitForStarted(5000);
    m_processes.push_back(std::move(p));
    return m_processes.back().get();
}

QStringList VirtualDesktop::pixelRow(int x, int y, int width) const {
    const auto o =
        run("import", {"-window", "root", "-crop", QString("%1x1+%2+%3").arg(width).arg(x).arg(y), "txt:-"});
    // Each line reads "x,y: (r,g,b)  #RRRRGGGGBBBB  name" in 16 bits per channel; the name is not always
    // srgb(...) (greys are "grey69"), so the hex column is read, its high byte per channel.
    static const QRegularExpression hex(R"(\s#([0-9A-Fa-f]{2})[0-9A-Fa-f]{2}([0-9A-Fa-f]{2})[0-9A-Fa-f]{2})"
                                        R"(([0-9A-Fa-f]{2})[0-9A-Fa-f]{2}\s)");
    QStringList colours;
    for (auto it = hex.globalMatch(o.out); it.hasNext();) {
        const auto m = it.next();
        colours << ("#" + m.captured(1) + m.captured(2) + m.captured(3)).toLower();
    }
    return colours;
}

QString VirtualDesktop::pixel(int x, int y) const {
    return pixelRow(x, y, 1).value(0);
}

bool VirtualDesktop::writeSettings(const QByteArray& ini) const {
    QDir().mkpath(configDir() + "/Velmora");
    QFile file(settingsFile());
    return file.open(QIODevice::WriteOnly) && file.write(ini) == ini.size();
}
