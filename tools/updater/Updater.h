#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

// What the agent hands over.
struct UpdaterOptions {
    QUrl url;           // the new build, a .tar.gz of the installation folder
    QByteArray sha256;  // its digest, lower-case hex
    QString installDir; // the installation folder to replace
    QString relaunch;   // started once the new build is in place; empty: nothing is started
    qint64 quitPid = 0; // the running agent, asked to quit before the swap; 0: none
    QString logFile;    // where the lines are also appended; empty: standard error only
};

// The exit codes, one per step that can fail; the installed folder is untouched by every failure.
enum class UpdaterExit {
    installed = 0,
    badArguments = 1,
    downloadFailed = 2,
    digestMismatch = 3,
    badArchive = 4,
    agentStillRunning = 5,
    swapFailed = 6,
    relaunchFailed = 7,
};

// Reads the command line; absent, with the reason, when it is not usable.
std::optional<UpdaterOptions> parseUpdaterArguments(const QStringList& arguments, QString* error);

// The whole update: download beside the installation, check the digest, unpack, ask the agent to
// quit, swap the folders (the old one is put back on any failure), start the new build.
UpdaterExit runUpdate(const UpdaterOptions& options);

// The file whose presence marks a folder as a Velmora installation of its own, which may be replaced
// as a whole (the same path the agent looks for).
inline constexpr auto kInstallationMarker = "share/velmora/self-updating";
