#include "VirtualDesktop.h"

#include <QDir>
#include <QElapsedTimer>
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

    // -displayfd 1: Xvfb picks a free display and writes its number to standard output.
    auto* xvfb = start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0",
                                QString("%1x%2x24").arg(m_options.width).arg(m_options.height)});
    if (!xvfb->waitForReadyRead(10000))
        return;
    const QString number = QString::fromLatin1(xvfb->readLine()).trimmed();
    if (number.isEmpty())
        return;
    m_display = ":" + number;

    start("openbox", {"--config-file", OPENBOX_CONFIG});
    waitUntil([this] {
        return run("xprop", {"-root", "_NET_SUPPORTING_WM_CHECK"}).out.contains("window id");
    });
    if (m_options.tray) {
        start("trayer", {"--edge", "top", "--align", "right", "--widthtype", "request", "--height", "24",
                         "--SetDockType", "true", "--SetPartialStrut", "true", "--transparent", "false",
                         "--tint", "0x303030"});
        waitUntil([this] { return run("xprop", {"-name", "panel", "WM_CLASS"}).exitCode == 0; });
    }
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
    env.remove("DBUS_SESSION_BUS_ADDRESS"); // the tray must be the X11 one under test
    return env;
}

VirtualDesktop::Output VirtualDesktop::run(const QString& program, const QStringList& args,
                                           int timeoutMs) const {
    QProcess p;
    p.setProcessEnvironment(environment());
    p.start(program, args);
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

QString VirtualDesktop::pixel(int x, int y) const {
    // "import" ends its line with the 8-bit colour, e.g. "... srgb(113,95,245)".
    const auto o = run("import", {"-window", "root", "-crop", QString("1x1+%1+%2").arg(x).arg(y), "txt:-"});
    static const QRegularExpression srgb(R"(srgb\((\d+),(\d+),(\d+)\))");
    const auto m = srgb.match(o.out);
    if (!m.hasMatch())
        return {};
    return QString::asprintf("#%02x%02x%02x", m.captured(1).toInt(), m.captured(2).toInt(),
                             m.captured(3).toInt());
}
