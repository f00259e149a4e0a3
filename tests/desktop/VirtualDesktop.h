#pragma once

#include <QMap>
#include <QProcess>
#include <QRect>
#include <QString>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

// A private X11 desktop for one test: Xvfb on a free display, Openbox with no key bindings of its
// own, and (optionally) a tray host along the top edge. Everything it started is ended when it is
// destroyed, whatever the test's outcome.
class VirtualDesktop {
public:
    struct Options {
        int width = 1440;
        int height = 900;
        bool tray = true;
        // Two monitors side by side, each width x height. Xvfb has a single RandR output and ignores
        // added monitors, so this desktop runs on Xorg's dummy driver instead.
        bool twoMonitors = false;
        // The right monitor's width when it differs from the left one's (two monitors only).
        int secondWidth = 0;
        // The tray host's panel dark instead of the toolkit's light grey.
        bool darkTray = false;
    };
    VirtualDesktop() : VirtualDesktop(Options{}) {}
    explicit VirtualDesktop(Options options);
    ~VirtualDesktop();

    bool isReady() const { return !m_display.isEmpty(); }
    const QString& display() const { return m_display; }
    // DISPLAY plus XDG directories of the test's own, so nothing touches the user's files.
    QProcessEnvironment environment() const;
    QString configDir() const { return m_home.path() + "/config"; }
    QString dataDir() const { return m_home.path() + "/data"; }
    // The agent's settings file in that configuration.
    QString settingsFile() const { return configDir() + "/Velmora/Velmora.conf"; }
    // Writes the settings file as the agent will find it at start; false when it cannot be written.
    bool writeSettings(const QByteArray& ini) const;
    // Settings of someone who has been welcomed already, with more lines of [General].
    bool writeWelcomedSettings(const QByteArray& moreGeneralLines = {}) const {
        return writeSettings("[General]\nWelcomeWindowSeen:V26=true\n" + moreGeneralLines);
    }

    struct Output {
        int exitCode = -1;
        QString out;
        QString err;
    };
    // Runs a program on this desktop and waits for it (xdotool, xprop, the agent's command line);
    // input, when given, is its standard input.
    Output run(const QString& program, const QStringList& args, int timeoutMs = 10000,
               const std::optional<QByteArray>& input = std::nullopt) const;
    // A variable every program started here from now on has in its environment.
    void setVariable(const QString& name, const QString& value) { m_variables.insert(name, value); }
    // Starts a secret store (GNOME Keyring's secret service, its login keyring unlocked) on this
    // desktop's session bus, with its files in the desktop's home; false when it did not come up.
    bool startKeyring();
    // Starts a compositing manager (xcompmgr); it runs until the desktop ends or it is stopped.
    QProcess* startCompositor();
    // Starts a D-Bus session bus of this desktop's own; from then on the programs started here use it
    // (services it can activate, such as the accessibility bus, come from the system's service files).
    // False when no bus could be started.
    bool startSessionBus();
    const QString& sessionBusAddress() const { return m_sessionBus; }
    // Starts a program that keeps running until the desktop ends (or it is stopped).
    QProcess* start(const QString& program, const QStringList& args);

    // The colour of one pixel of the screen as the user sees it, "#rrggbb".
    QString pixel(int x, int y) const;
    // The colours of a row of pixels starting there, left to right, in one look at the screen.
    QStringList pixelRow(int x, int y, int width) const;

private:
    QProcess* startServer();
    void splitIntoTwoMonitors();
    int rightWidth() const { return m_options.secondWidth > 0 ? m_options.secondWidth : m_options.width; }

    Options m_options;
    QTemporaryDir m_home;
    QString m_display;
    QString m_sessionBus;
    QMap<QString, QString> m_variables;
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

// Polls until the condition holds or the deadline passes; true when it held.
bool waitUntil(const std::function<bool()>& condition, int timeoutMs = 10000);
