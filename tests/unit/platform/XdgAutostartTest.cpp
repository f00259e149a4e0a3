#include "platform/linux/XdgAutostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "ScopedEnv.h"

using namespace velmora;

namespace {

// A private XDG_CONFIG_HOME in which the autostart folder does not exist yet.
struct ConfigHome {
    QTemporaryDir dir;
    ScopedEnv env;
    ConfigHome() { env.set("XDG_CONFIG_HOME", dir.path().toUtf8()); }
    ~ConfigHome() {
        QFile::setPermissions(autostart(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QString autostart() const { return dir.path() + "/autostart"; }
    QString entry() const { return autostart() + "/velmora.desktop"; }
    QString text() const {
        QFile file(entry());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void write(const QByteArray& text) const {
        QDir().mkpath(autostart());
        QFile file(entry());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
};

// What desktop-file-validate objects to in an entry: empty when it accepts it, absent without the tool.
std::optional<QString> validationProblems(const QString& path) {
    const QString tool = QStandardPaths::findExecutable("desktop-file-validate");
    if (tool.isEmpty())
        return std::nullopt;
    QProcess process;
    process.start(tool, {path});
    process.waitForFinished();
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return QString();
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError()) + " ";
}

// The lines the Linux backend logs while alive.
struct LinuxLogLines {
    static inline QStringList lines;
    QtMessageHandler previous;
    LinuxLogLines() {
        lines.clear();
        previous =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext& context, const QString& text) {
                if (QByteArray(context.category) == "velmora.linux")
                    lines << text;
            });
    }
    ~LinuxLogLines() { qInstallMessageHandler(previous); }
};

} // namespace

TEST(XdgAutostart, TurningOnWritesAnEntryThatStartsThisBinaryAndTurningOffRemovesIt) {
    ConfigHome home;
    XdgAutostart item;
    EXPECT_FALSE(item.isEnabled());

    EXPECT_TRUE(item.setEnabled(true));
    EXPECT_TRUE(item.isEnabled());
    const QString text = home.text();
    EXPECT_TRUE(text.startsWith("[Desktop Entry]\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("\nExec=" + QCoreApplication::applicationFilePath() + "\n"))
        << text.toStdString();
    EXPECT_TRUE(text.contains("\nX-GNOME-Autostart-enabled=true\n")) << text.toStdString();
    if (const auto problems = validationProblems(home.entry())) {
        EXPECT_EQ(*problems, "");
    }

    // Turning on what is on rewrites the entry in place: no second entry, no temporary file left.
    EXPECT_TRUE(item.setEnabled(true));
    EXPECT_EQ(QDir(home.autostart()).entryList(QDir::Files | QDir::Hidden), QStringList({"velmora.desktop"}));

    EXPECT_FALSE(item.setEnabled(false));
    EXPECT_FALSE(QFile::exists(home.entry()));
    EXPECT_FALSE(item.isEnabled());
    // Off when already off is no failure.
    EXPECT_FALSE(item.setEnabled(false));
    EXPECT_EQ(item.lastError(), "");
}

TEST(XdgAutostart, APathTheExecKeyWouldSplitOrExpandIsQuoted) {
    ConfigHome home;
    XdgAutostart item("/opt/My Tools/100%/velmora$1");
    ASSERT_TRUE(item.setEnabled(true));
    const QString text = home.text();
    // Quoted for the space, '%' doubled, '$' escaped inside the quotes and that backslash escaped once more.
    EXPECT_TRUE(text.contains("\nExec=\"/opt/My Tools/100%%/velmora\\\\$1\"\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("\nTryExec=/opt/My Tools/100%/velmora$1\n")) << text.toStdString();
    if (const auto problems = validationProblems(home.entry())) {
        EXPECT_EQ(*problems, "");
    }
}

TEST(XdgAutostart, TheEntryLivesUnderAnAbsoluteConfigHomeElseUnderHome) {
    QTemporaryDir home;
    ScopedEnv env;
    env.set("HOME", home.path().toUtf8());
    env.set("XDG_CONFIG_HOME", "/elsewhere/config");
    EXPECT_EQ(XdgAutostart::entryPath(), "/elsewhere/config/autostart/velmora.desktop");
    // A relative value is ignored, as the base directory rules say: nothing lands in the current folder.
    env.set("XDG_CONFIG_HOME", "config");
    EXPECT_EQ(XdgAutostart::entryPath(), home.path() + "/.config/autostart/velmora.desktop");
    env.set("XDG_CONFIG_HOME", "");
    EXPECT_EQ(XdgAutostart::entryPath(), home.path() + "/.config/autostart/velmora.desktop");
}

TEST(XdgAutostart, AnEntrySwitchedOffInTheSessionSettingsIsOffUntilTurnedOnAgain) {
    ConfigHome home;
    XdgAutostart item;
    for (const QByteArray& off : {QByteArray("Hidden=true"), QByteArray("X-GNOME-Autostart-enabled=false")}) {
        home.write("[Desktop Entry]\nType=Application\nName=Velmora\nExec=velmora\n" + off + "\n");
        EXPECT_FALSE(item.isEnabled()) << off.constData();
        EXPECT_TRUE(item.setEnabled(true));
        EXPECT_TRUE(item.isEnabled());
        EXPECT_FALSE(home.text().contains(off)) << off.constData();
    }
    // The keys count only in the entry's own group.
    home.write("[Desktop Entry]\nType=Application\nName=Velmora\nExec=velmora\n\n"
               "[Desktop Action quit]\nName=Quit\nExec=velmora quit\nHidden=true\n");
    EXPECT_TRUE(item.isEnabled());
}

TEST(XdgAutostart, WhenTheAutostartFolderIsNoFolderTurningOnFailsAndSaysWhereOnce) {
    ConfigHome home;
    QFile blocker(home.autostart());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    LinuxLogLines log;
    XdgAutostart item;

    EXPECT_FALSE(item.setEnabled(true));
    EXPECT_FALSE(item.isEnabled());
    EXPECT_TRUE(item.lastError().contains(home.autostart() + " is not a folder"))
        << item.lastError().toStdString();
    ASSERT_EQ(log.lines.size(), 1);
    EXPECT_TRUE(log.lines[0].contains("could not be turned on")) << log.lines[0].toStdString();
    EXPECT_TRUE(log.lines[0].contains(home.entry())) << log.lines[0].toStdString();

    // Once the way is clear, the next request succeeds and forgets the old reason.
    ASSERT_TRUE(QFile::remove(home.autostart()));
    EXPECT_TRUE(item.setEnabled(true));
    EXPECT_EQ(item.lastError(), "");
}

// Read-only for whoever runs the tests: permission bits stop a user, an immutable flag stops root.
bool setReadOnly(const QString& path, bool readOnly) {
    if (!readOnly) {
        QProcess::execute("chattr", {"-i", path});
        return QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
    return !QFileInfo(path).isWritable() || QProcess::execute("chattr", {"+i", path}) == 0;
}

TEST(XdgAutostart, InAReadOnlyFolderNeitherChangeIsClaimed) {
    ConfigHome home;
    XdgAutostart item;
    ASSERT_TRUE(QDir().mkpath(home.autostart()));
    if (!setReadOnly(home.autostart(), true))
        GTEST_SKIP() << "this file system cannot make a folder read-only for this user";
    LinuxLogLines log;

    EXPECT_FALSE(item.setEnabled(true));
    EXPECT_FALSE(QFile::exists(home.entry()));
    EXPECT_TRUE(item.lastError().contains("is read-only")) << item.lastError().toStdString();

    setReadOnly(home.autostart(), false);
    ASSERT_TRUE(item.setEnabled(true));
    setReadOnly(home.autostart(), true);
    EXPECT_TRUE(item.setEnabled(false)); // the state it is in: still on
    EXPECT_TRUE(QFile::exists(home.entry()));
    EXPECT_TRUE(item.isEnabled());
    EXPECT_EQ(log.lines.size(), 2);
    setReadOnly(home.autostart(), false);
}
