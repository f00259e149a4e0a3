// Prevent Sleep mode as a user meets it: a login manager and a screen saver service of the test's own
// (tests/desktop/fake-login1.py on private system and session buses) hand out real inhibitors, and
// stand-ins for pkexec and systemctl keep the system's sleep setting in a file.
#include "AgentUnderTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

const QString kTargets = "sleep.target suspend.target hibernate.target hybrid-sleep.target";

// Two private D-Bus daemons, the fake services on them, and pkexec and systemctl stand-ins on PATH.
// The agent finds the system bus through DBUS_SYSTEM_BUS_ADDRESS and the session bus at
// $XDG_RUNTIME_DIR/bus, where libdbus looks when no address is given.
class PowerServices {
public:
    struct Options {
        bool loginManager = true;
        bool screenSaver = true;
    };

    PowerServices(const QString& runtimeDir, Options options) {
        QDir().mkpath(runtimeDir);
        QFile::setPermissions(runtimeDir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        m_systemAddress = startBus("unix:path=" + m_dir.filePath("system_bus_socket"), "system.conf");
        const QString sessionAddress = startBus("unix:path=" + runtimeDir + "/bus", "session.conf");
        if (m_systemAddress.isEmpty() || sessionAddress.isEmpty())
            return;
        writeStubs();
        m_savedPath = qgetenv("PATH");
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_systemAddress.toUtf8());
        qputenv("PATH", (m_dir.filePath("bin") + ":").toUtf8() + m_savedPath);

        auto env = QProcessEnvironment::systemEnvironment();
        env.insert("DBUS_SESSION_BUS_ADDRESS", sessionAddress);
        QStringList args{m_dir.filePath("fake.log")};
        if (!options.loginManager)
            args << "--no-login1";
        if (!options.screenSaver)
            args << "--no-screensaver";
        auto fake = std::make_unique<QProcess>();
        fake->setProcessEnvironment(env);
        fake->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        fake->start("/usr/bin/python3", QStringList{FAKE_LOGIN1} + args);
        m_processes.push_back(std::move(fake));
        m_ready = waitUntil([this] { return log().contains("ready"); });
    }

    ~PowerServices() {
        if (!m_savedPath.isNull())
            qputenv("PATH", m_savedPath);
        qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
        for (auto it = m_processes.rbegin(); it != m_processes.rend(); ++it) {
            (*it)->terminate();
            if (!(*it)->waitForFinished(3000)) {
                (*it)->kill();
                (*it)->waitForFinished(3000);
            }
        }
    }

    bool isReady() const { return m_ready; }
    // What the fake services saw, one event a line.
    QStringList log() const { return readLines("fake.log"); }
    bool logged(const QString& line) const { return log().contains(line); }
    bool loggedStarting(const QString& start) const {
        const QStringList lines = log();
        return std::any_of(lines.begin(), lines.end(), [&](const QString& l) { return l.startsWith(start); });
    }
    // The commands the stand-ins ran, "pkexec ARGS" and "systemctl ARGS".
    QStringList commands() const { return readLines("commands.log"); }
    // The system's sleep setting as `systemctl is-enabled sleep.target` reports it.
    QString sleepTarget() const { return readLines("state").value(0, "static"); }
    void setSleepTarget(const QString& state) { write("state", state.toUtf8() + "\n"); }
    // The administrator prompt's answer: 0 granted, 126 cancelled.
    void answerPromptsWith(int exitCode) { write("answer", QByteArray::number(exitCode) + "\n"); }
    // The administrator prompt's answer comes this many seconds late, as a user types a password.
    void answerPromptsAfter(int seconds) { write("delay", QByteArray::number(seconds) + "\n"); }

private:
    QString startBus(const QString& address, const QString& configName) {
        write(configName, R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>custom</type>
  <listen>)" + address.toUtf8() +
                              R"(</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_type="method_call"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
)");
        auto bus = std::make_unique<QProcess>();
        bus->start("dbus-daemon",
                   {"--config-file=" + m_dir.filePath(configName), "--nofork", "--print-address=1"});
        if (!bus->waitForStarted(5000) || !waitUntil([&] {
                bus->waitForReadyRead(100);
                return bus->canReadLine();
            }))
            return {};
        const QString printed = QString::fromUtf8(bus->readLine()).trimmed();
        m_processes.push_back(std::move(bus));
        return printed;
    }

    void writeStubs() {
        QDir().mkpath(m_dir.filePath("bin"));
        const QString d = m_dir.path();
        write("bin/systemctl", QString(R"(#!/bin/sh
echo "systemctl $*" >> %1/commands.log
case "$1" in
  is-enabled) s=$(cat %1/state 2>/dev/null || echo static); echo "$s"; [ "$s" = masked ] && exit 1; exit 0 ;;
  mask) echo masked > %1/state ;;
  unmask) echo static > %1/state ;;
esac
)")
                                   .arg(d)
                                   .toUtf8());
        write("bin/pkexec", QString(R"(#!/bin/sh
echo "pkexec $*" >> %1/commands.log
delay=$(cat %1/delay 2>/dev/null || echo 0); sleep "$delay"
code=$(cat %1/answer 2>/dev/null || echo 0)
[ "$code" = 0 ] || { echo "Error executing command as another user: Request dismissed" >&2; exit "$code"; }
exec "$@"
)")
                                .arg(d)
                                .toUtf8());
        for (const char* stub : {"bin/systemctl", "bin/pkexec"})
            QFile::setPermissions(m_dir.filePath(stub),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void write(const QString& name, const QByteArray& content) const {
        QFile f(m_dir.filePath(name));
        if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            f.write(content);
    }
    QStringList readLines(const QString& name) const {
        QFile f(m_dir.filePath(name));
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(f.readAll()).split('\n', Qt::SkipEmptyParts);
    }

    QTemporaryDir m_dir;
    QString m_systemAddress;
    QByteArray m_savedPath;
    bool m_ready = false;
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

class Power : public ::testing::Test {
protected:
    void startServices(PowerServices::Options options = {}) {
        ASSERT_TRUE(desktop.isReady());
        ASSERT_TRUE(desktop.writeWelcomedSettings());
        services = std::make_unique<PowerServices>(desktop.environment().value("XDG_RUNTIME_DIR"), options);
        ASSERT_TRUE(services->isReady()) << "the private buses or the fake login manager did not start";
    }
    void start(PowerServices::Options options = {}) {
        ASSERT_NO_FATAL_FAILURE(startServices(options));
        ASSERT_TRUE(agent.start());
    }
    Json power() { return agent.status()["powerManagement"]; }
    QString inhibited(int id) {
        return QString("inhibit %1 sleep:idle Velmora block pid=%2 Prevent Sleep mode is on in Velmora")
            .arg(id)
            .arg(agent.process()->processId());
    }

    VirtualDesktop desktop{VirtualDesktop::Options{1024, 768, false}};
    std::unique_ptr<PowerServices> services;
    AgentUnderTest agent{desktop};
};

TEST_F(Power, TheTemporaryModeHoldsAnInhibitorUntilTurnedOffOrQuit) {
    start();
    EXPECT_EQ(power()["preventSleep"], false);
    EXPECT_EQ(power()["mode"], "temporary");

    const auto on = agent.json({"power", "on"});
    ASSERT_TRUE(on) << agent.command({"power", "on"}).err.toStdString();
    EXPECT_EQ((*on)["preventSleep"], true);
    EXPECT_EQ((*on)["held"], Json::array({"login manager: sleep and idle blocked",
                                          "screen saver service: inhibited (cookie 1)"}));
    EXPECT_TRUE(services->logged(inhibited(1))) << services->log().join('\n').toStdString();
    EXPECT_TRUE(services->loggedStarting("screensaver-inhibit 1 Velmora"));
    EXPECT_FALSE(services->logged("released 1"));

    ASSERT_TRUE(agent.json({"power", "off"}));
    EXPECT_TRUE(waitUntil([&] { return services->logged("released 1"); }))
        << "the inhibitor's fd is still open";
    EXPECT_TRUE(waitUntil([&] { return services->logged("screensaver-uninhibit 1"); }));

    ASSERT_TRUE(agent.json({"power", "on"}));
    EXPECT_TRUE(services->logged(inhibited(2)));
    EXPECT_EQ(agent.quit(), 0);
    EXPECT_TRUE(waitUntil([&] { return services->logged("released 2"); }));
    EXPECT_TRUE(waitUntil([&] {
        return services->logged("screensaver-uninhibit 2") || services->logged("screensaver-vanished 2");
    }));
    // The temporary mode never touches the system's setting.
    EXPECT_FALSE(services->commands().join('\n').contains("pkexec"));
}

TEST_F(Power, AKilledAgentLeavesNoInhibitorBehind) {
    start();
    ASSERT_TRUE(agent.json({"power", "on"}));
    ASSERT_TRUE(services->logged(inhibited(1)));
    agent.process()->kill();
    ASSERT_TRUE(agent.process()->waitForFinished(5000));
    EXPECT_TRUE(waitUntil([&] { return services->logged("released 1"); }));
    EXPECT_TRUE(waitUntil([&] { return services->logged("screensaver-vanished 1"); }));
}

TEST_F(Power, WithoutALoginManagerTheSwitchStaysOffAndSaysWhy) {
    start({.loginManager = false, .screenSaver = true});
    const auto answer = agent.command({"power", "on"});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_TRUE(answer.err.contains("no login manager")) << answer.err.toStdString();
    EXPECT_EQ(power()["preventSleep"], false);
    EXPECT_EQ(power()["held"], Json::array());
    // Nothing else is held on its behalf.
    EXPECT_FALSE(services->loggedStarting("screensaver-inhibit"));
}

TEST_F(Power, ThePersistentModeMasksSleepThroughThePromptAndRestoresItAtQuit) {
    start();
    const QString mask = "pkexec systemctl mask " + kTargets;
    const QString unmask = "pkexec systemctl unmask " + kTargets;

    services->answerPromptsWith(126);
    const auto cancelled = agent.command({"power", "on", "--persistent"});
    EXPECT_EQ(cancelled.exitCode, 1);
    EXPECT_TRUE(cancelled.err.contains("the administrator prompt was cancelled"))
        << cancelled.err.toStdString();
    EXPECT_TRUE(services->commands().contains(mask));
    EXPECT_EQ(services->sleepTarget(), "static");
    EXPECT_EQ(power()["preventSleep"], false);
    EXPECT_EQ(power()["mode"], "persistent");

    services->answerPromptsWith(0);
    const auto on = agent.json({"power", "on", "--persistent"});
    ASSERT_TRUE(on);
    EXPECT_EQ((*on)["preventSleep"], true);
    EXPECT_EQ((*on)["held"], Json::array()); // the system's setting does the work, nothing is held
    EXPECT_EQ(services->sleepTarget(), "masked");
    EXPECT_FALSE(services->loggedStarting("inhibit"));

    EXPECT_EQ(agent.quit(), 0);
    EXPECT_EQ(services->commands().last(), "systemctl unmask " + kTargets);
    EXPECT_TRUE(services->commands().contains(unmask));
    EXPECT_EQ(services->sleepTarget(), "static");
}

TEST_F(Power, StartUpFindsSleepDisabledAndShowsThePersistentModeOn) {
    ASSERT_NO_FATAL_FAILURE(startServices());
    services->setSleepTarget("masked");
    ASSERT_TRUE(agent.start());
    const Json status = power();
    EXPECT_EQ(status["preventSleep"], true);
    EXPECT_EQ(status["usePMSet"], true);
    EXPECT_EQ(status["initialized"], true);
    EXPECT_FALSE(services->commands().join('\n').contains("pkexec")); // found as it is, not changed
    // Turned off, sleep comes back.
    ASSERT_TRUE(agent.json({"power", "off"}));
    EXPECT_EQ(services->sleepTarget(), "static");
}

// Sleep kept away shows in the tray, named in the status, without a notice on the screen.
TEST_F(Power, WhileSleepIsPreventedTheTrayShowsIt) {
    start();
    EXPECT_EQ(agent.status()["statusItem"]["state"], "normal");
    ASSERT_TRUE(agent.json({"power", "on"}));
    Json status = agent.status();
    EXPECT_EQ(status["statusItem"]["state"], "sleepPrevented");
    EXPECT_EQ(status["statusItem"]["toolTip"], "Velmora: Prevent Sleep is on");
    EXPECT_EQ(status["indicators"].dump(),
              R"([{"id":"preventSleep","title":"Prevent Sleep is on","glyph":"sleepPrevented",)"
              R"("notice":false}])");
    EXPECT_EQ(status["notices"], Json::array());

    ASSERT_TRUE(agent.json({"power", "off"}));
    status = agent.status();
    EXPECT_EQ(status["statusItem"]["state"], "normal");
    EXPECT_EQ(status["indicators"], Json::array());
}

// A password typed slowly (longer than the command line's usual wait) still gets its answer there.
TEST_F(Power, TheCommandLineWaitsForASlowAdministratorPrompt) {
    start();
    services->answerPromptsAfter(7);
    const auto on = agent.command({"power", "on", "--persistent"});
    EXPECT_EQ(on.exitCode, 0) << on.err.toStdString();
    EXPECT_TRUE(on.out.contains("\"preventSleep\": true")) << on.out.toStdString();
    EXPECT_EQ(services->sleepTarget(), "masked");
    services->answerPromptsAfter(0);
    ASSERT_TRUE(agent.json({"power", "off"}));
    EXPECT_EQ(services->sleepTarget(), "static");
}

} // namespace
