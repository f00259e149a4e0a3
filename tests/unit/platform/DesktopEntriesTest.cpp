#include "platform/linux/DesktopEntries.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "ScopedEnv.h"
#include <sys/time.h>

using namespace velmora;

namespace {

// A private search path: the user's folder, then two system folders.
struct DataDirs {
    QTemporaryDir dir;
    ScopedEnv env;
    DataDirs() {
        env.set("XDG_DATA_HOME", (dir.path() + "/home").toUtf8());
        env.set("XDG_DATA_DIRS", (dir.path() + "/first:" + dir.path() + "/second").toUtf8());
    }
    QString apps(const QString& root) const { return dir.path() + '/' + root + "/applications"; }
    QString write(const QString& root, const QString& relative, const QByteArray& text) const {
        const QString path = apps(root) + '/' + relative;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path;
    }
    // Every folder's time an hour back, so that the next scan trusts it.
    void age() const {
        const timeval past[2] = {{time(nullptr) - 3600, 0}, {time(nullptr) - 3600, 0}};
        for (const char* root : {"home", "first", "second"}) {
            QStringList folders{apps(root)};
            for (const QFileInfo& sub : QDir(apps(root)).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
                folders << sub.filePath();
            for (const QString& folder : folders)
                ::utimes(QFile::encodeName(folder).constData(), past);
        }
    }
};

QByteArray app(const QByteArray& name, const QByteArray& more = {}) {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + name.toLower() + "\n" + more;
}

QStringList ids(const std::vector<DesktopEntry>& entries) {
    QStringList list;
    for (const auto& e : entries)
        list << e.id;
    return list;
}

std::optional<DesktopEntry> readText(const QByteArray& text, const QStringList& locales = {},
                                     QString* error = nullptr) {
    QTemporaryDir dir;
    const QString path = dir.path() + "/test.desktop";
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return std::nullopt;
    file.write(text);
    file.close();
    return DesktopEntries::read(path, "test.desktop", locales, error);
}

// The messages of the backend's log category while it lives.
struct LogCapture {
    static inline QStringList messages;
    QtMessageHandler previous;
    LogCapture() {
        messages.clear();
        previous =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext& context, const QString& text) {
                if (QByteArray(context.category) == "velmora.linux")
                    messages << text;
            });
    }
    ~LogCapture() { qInstallMessageHandler(previous); }
};

} // namespace

TEST(DesktopEntries, NamesFollowTheLocaleFromMostToLeastSpecific) {
    EXPECT_EQ(DesktopEntries::localeNamesFor("de_DE.UTF-8@euro"),
              QStringList({"de_DE@euro", "de_DE", "de@euro", "de"}));
    EXPECT_EQ(DesktopEntries::localeNamesFor("pt_BR.UTF-8"), QStringList({"pt_BR", "pt"}));
    EXPECT_TRUE(DesktopEntries::localeNamesFor("C.UTF-8").isEmpty());
    EXPECT_TRUE(DesktopEntries::localeNamesFor("POSIX").isEmpty());

    const QByteArray text = "# comment\n\n[Desktop Entry]\nType=Application\nName=Text Editor\n"
                            "Name[de]=Texteditor\nName[de_DE]=Texteditor (DE)\nName[sr@latin]=Uređivač\n"
                            "Icon = accessories-text-editor \nIcon[de]=de-editor\n";
    const auto names = [&](const QString& locale) {
        return readText(text, DesktopEntries::localeNamesFor(locale)).value_or(DesktopEntry{}).name;
    };
    EXPECT_EQ(names("de_DE.UTF-8"), "Texteditor (DE)");
    EXPECT_EQ(names("de_AT.UTF-8"), "Texteditor");
    EXPECT_EQ(names("sr_RS@latin"), "Uređivač");
    EXPECT_EQ(names("fr_FR.UTF-8"), "Text Editor");
    EXPECT_EQ(names("C"), "Text Editor");
    // Spaces around '=' are not part of the value; Icon is localised too.
    EXPECT_EQ(readText(text)->icon, "accessories-text-editor");
    EXPECT_EQ(readText(text, {"de"})->icon, "de-editor");
}

TEST(DesktopEntries, EscapesAndTheProgramExecStarts) {
    const auto entry = readText("[Desktop Entry]\nType=Application\nName=A\\sB\\\\n\\tC\\nD\\;E\n"
                                "Exec=\"/opt/We\\\\\"ird Dir/bin/prog\" --open %U\nStartupWMClass=Prog\n"
                                "Hidden=false\nNoDisplay=true\n\n[Desktop Action new]\nName=Other\nJunk\n");
    ASSERT_TRUE(entry);
    // \s \t \n \\ are undone; an escape the string rules do not know stays as it is.
    EXPECT_EQ(entry->name, "A B\\n\tC\nD\\;E");
    EXPECT_EQ(entry->exec, "\"/opt/We\\\"ird Dir/bin/prog\" --open %U");
    EXPECT_EQ(entry->executableName(), "prog");
    EXPECT_EQ(entry->startupWMClass, "Prog");
    EXPECT_FALSE(entry->hidden);
    EXPECT_TRUE(entry->noDisplay);
    EXPECT_TRUE(entry->isApplication());

    DesktopEntry e;
    e.exec = "env GTK_THEME=Adwaita -i LANG=C gimp-2.10 %U";
    EXPECT_EQ(e.executableName(), "gimp-2.10");
    e.exec = "  /usr/bin/gedit --new-window";
    EXPECT_EQ(e.executableName(), "gedit");
    e.exec = "";
    EXPECT_EQ(e.executableName(), "");
    e.id = "org.gnome.gedit.desktop";
    e.path = "/usr/share/applications/my apps/org.gnome.gedit.desktop";
    EXPECT_EQ(e.stem(), "org.gnome.gedit");
    EXPECT_EQ(e.fileUrl(), "file:///usr/share/applications/my apps/org.gnome.gedit.desktop");
}

TEST(DesktopEntries, MalformedFilesAreRefusedWithTheReason) {
    const auto reason = [](const QByteArray& text) {
        QString error;
        EXPECT_FALSE(readText(text, {}, &error)) << text.left(80).constData();
        return error;
    };
    EXPECT_EQ(reason(QByteArray("\x7f"
                                "ELF\x02\x01\x01\0\0\0garbage",
                                18)),
              "binary data, not text");
    EXPECT_EQ(reason("[Desktop Entry]\nType=Application\nName=\xff\xfe\n"), "not UTF-8 text");
    EXPECT_EQ(reason("Type=Application\nName=Loose\n"), "line 1 comes before the [Desktop Entry] group");
    EXPECT_EQ(reason("# nothing here\n"), "no [Desktop Entry] group");
    EXPECT_EQ(reason("[Desktop Action x]\nName=A\n[Desktop Entry]\nType=Application\nName=B\n"),
              "the first group is [Desktop Action x], not [Desktop Entry]");
    EXPECT_EQ(reason("[Desktop Entry\nType=Application\n"), "line 1 is an unclosed group header");
    EXPECT_EQ(reason("[Desktop Entry]\nType=Application\nName=A\njust words\n"),
              "line 4 is not a key=value pair");
    EXPECT_EQ(reason("[Desktop Entry]\nType=Application\nName=" + QByteArray(100000, 'x') + "\n"),
              "line 3 is longer than 65536 characters");
    EXPECT_EQ(reason("[Desktop Entry]\nName=No type\n"), "no Type key");
    EXPECT_EQ(reason("[Desktop Entry]\nType=Application\n"), "no Name key");
    // A deleted entry needs neither: it only hides the id.
    EXPECT_TRUE(readText("[Desktop Entry]\nHidden=true\n"));
    QString error;
    EXPECT_FALSE(DesktopEntries::read("/nonexistent/x.desktop", "x.desktop", {}, &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST(DesktopEntries, TheSearchPathGivesIdsPrecedenceAndThePickerList) {
    DataDirs d;
    d.write("second", "org.gnome.gedit.desktop", app("Gedit (second)"));
    d.write("first", "org.gnome.gedit.desktop", app("gedit"));
    d.write("home", "zed.desktop", app("Zed"));
    d.write("second", "zed.desktop", app("Zed (system)"));
    d.write("first", "kde/konsole.desktop", app("Konsole"));
    d.write("first", "kde/deep/er.desktop", app("Deeper"));
    d.write("second", "hidden.desktop", app("Hidden", "Hidden=true\n"));
    d.write("second", "nodisplay.desktop", app("NoDisplay", "NoDisplay=true\n"));
    d.write("second", "link.desktop", "[Desktop Entry]\nType=Link\nName=Link\nURL=https://example.org\n");
    d.write("second", "uninstalled.desktop", app("Uninstalled", "TryExec=velmora-no-such-program\n"));
    // The user deletes a system entry by hiding it in an earlier folder.
    d.write("home", "deleted.desktop", "[Desktop Entry]\nHidden=true\n");
    d.write("second", "deleted.desktop", app("Deleted"));
    d.write("second", "alpha.desktop", app("alpha"));
    d.write("second", "readme.txt", "not an entry");

    EXPECT_EQ(DesktopEntries::applicationDirs(),
              QStringList({d.apps("home"), d.apps("first"), d.apps("second")}));
    DesktopEntries entries({}, std::chrono::milliseconds(0));
    const auto list = entries.launchable();
    EXPECT_EQ(ids(list), QStringList({"alpha.desktop", "kde-deep-er.desktop", "org.gnome.gedit.desktop",
                                      "kde-konsole.desktop", "zed.desktop"}));
    EXPECT_EQ(list[2].name, "gedit"); // sorted without regard to case
    EXPECT_EQ(list[2].path, d.apps("first") + "/org.gnome.gedit.desktop");
    EXPECT_EQ(list[4].name, "Zed");
    EXPECT_EQ(entries.byId("kde-konsole.desktop")->path, d.apps("first") + "/kde/konsole.desktop");
    ASSERT_TRUE(entries.byId("deleted.desktop"));
    EXPECT_TRUE(entries.byId("deleted.desktop")->hidden);
    EXPECT_FALSE(entries.byId("konsole.desktop"));

    // What the picker shows: the same, as applications named by their file URLs.
    const auto apps = entries.applications();
    ASSERT_EQ(apps.size(), 5u);
    EXPECT_EQ(apps[2],
              (ApplicationEntry{"org.gnome.gedit", "file://" + d.apps("first") + "/org.gnome.gedit.desktop",
                                "gedit", ""}));
}

TEST(DesktopEntries, AWindowIsMatchedByWMClassThenIdThenProgram) {
    DataDirs d;
    d.write("first", "firefox-esr.desktop", app("Firefox ESR", "StartupWMClass=Firefox-esr\n"));
    d.write("first", "org.gnome.gedit.desktop", app("Text Editor"));
    d.write("first", "org.gnome.Nautilus.desktop", app("Files"));
    d.write("first", "nautilus.desktop", app("Old Files", "Hidden=true\n"));
    d.write("first", "xterm.desktop", app("XTerm", "NoDisplay=true\n"));
    d.write("first", "claims-gedit.desktop", app("Impostor", "StartupWMClass=Gedit\n"));
    d.write("first", "tests.desktop",
            app("Tests", "Exec=\"" + QCoreApplication::applicationFilePath().toUtf8() + "\" --gtest\n"));
    d.write("first", "shell.desktop", app("Shell", "Exec=sh -c velmora_unit_tests\n"));
    DesktopEntries entries({}, std::chrono::milliseconds(0));
    const auto idOf = [&](const QString& instance, const QString& cls, qint32 pid = 0) {
        const auto e = entries.forWindow({instance, cls, pid});
        return e ? e->id : QString();
    };
    EXPECT_EQ(idOf("Navigator", "Firefox-esr"), "firefox-esr.desktop");
    EXPECT_EQ(idOf("firefox-esr", ""), "firefox-esr.desktop");
    // StartupWMClass comes before an id that merely looks like the class.
    EXPECT_EQ(idOf("gedit", "Gedit"), "claims-gedit.desktop");
    EXPECT_EQ(idOf("org.gnome.gedit", "org.gnome.Gedit"), "org.gnome.gedit.desktop");
    // Both ways round: the id's last part is the class, or the class's last part is the id.
    EXPECT_EQ(idOf("nautilus", "Nautilus"), "org.gnome.Nautilus.desktop");
    EXPECT_EQ(idOf("", "org.example.XTerm"), "xterm.desktop");
    EXPECT_EQ(idOf("xterm", "XTerm"), "xterm.desktop"); // NoDisplay entries are applications still
    // Nothing in WM_CLASS: the process's program, never a launcher such as sh.
    EXPECT_EQ(idOf("", "", qint32(QCoreApplication::applicationPid())), "tests.desktop");
    EXPECT_EQ(idOf("unknown", "Unknown"), "");
    EXPECT_EQ(idOf("", ""), "");
    EXPECT_TRUE(DesktopEntries::processNames(qint32(QCoreApplication::applicationPid()))
                    .contains(QFileInfo(QCoreApplication::applicationFilePath()).fileName()));
    EXPECT_TRUE(DesktopEntries::processNames(0).isEmpty());

    const auto found = entries.applicationOf({"Navigator", "Firefox-esr", 0});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->id, "firefox-esr");
    EXPECT_EQ(found->fileURL, "file://" + d.apps("first") + "/firefox-esr.desktop");
    EXPECT_EQ(found->name, "Firefox ESR");
}

TEST(DesktopEntries, MalformedFilesAreSkippedWithALogLineAndTheRestRead) {
    DataDirs d;
    d.write("first", "good.desktop", app("Good"));
    d.write("first", "garbage.desktop", QByteArray("\0\x01\x02\xff\xfe garbage", 14));
    d.write("first", "nogroup.desktop", "Type=Application\nName=Loose\n");
    d.write("first", "huge.desktop", app("Huge", "Comment=" + QByteArray(200000, 'y') + "\n"));
    // A broken entry does not hide a good one with the same id further down.
    d.write("second", "nogroup.desktop", app("Fallback"));
    LogCapture log;
    DesktopEntries entries({}, std::chrono::milliseconds(0));
    EXPECT_EQ(ids(entries.launchable()), QStringList({"nogroup.desktop", "good.desktop"}));
    ASSERT_EQ(log.messages.size(), 3);
    EXPECT_TRUE(log.messages.filter("garbage.desktop: binary data, not text").size() == 1)
        << log.messages.join('\n').toStdString();
    EXPECT_TRUE(log.messages.filter("huge.desktop: line 5 is longer").size() == 1);
    EXPECT_TRUE(log.messages.filter(d.apps("first") + "/nogroup.desktop: line 1 comes before").size() == 1);
}

TEST(DesktopEntries, TheScanIsKeptUntilAFolderChanges) {
    DataDirs d;
    d.write("first", "one.desktop", app("One"));
    d.write("first", "sub/two.desktop", app("Two"));
    d.age();
    DesktopEntries entries({}, std::chrono::milliseconds(0));
    const quint64 scanned = entries.generation();
    EXPECT_EQ(ids(entries.launchable()).size(), 2);
    EXPECT_EQ(entries.generation(), scanned); // nothing changed: no second scan

    d.write("first", "sub/three.desktop", app("Three"));
    EXPECT_TRUE(entries.byId("sub-three.desktop"));
    EXPECT_GT(entries.generation(), scanned);

    // A folder that appears later in the search path is seen too.
    d.write("home", "four.desktop", app("Four"));
    EXPECT_TRUE(entries.byId("four.desktop"));
    // So is a change of the search path itself.
    d.env.set("XDG_DATA_DIRS", (d.dir.path() + "/second").toUtf8());
    EXPECT_FALSE(entries.byId("one.desktop"));

    // Between checks nothing is looked at.
    DesktopEntries slow({}, std::chrono::hours(1));
    EXPECT_TRUE(slow.byId("four.desktop"));
    QFile::remove(d.apps("home") + "/four.desktop");
    EXPECT_TRUE(slow.byId("four.desktop"));
}

TEST(DesktopEntries, APickedFileMustDescribeAnApplication) {
    DataDirs d;
    const QString overridden = d.write("second", "editor.desktop", app("System Editor"));
    d.write("home", "editor.desktop", app("My Editor"));
    const QString elsewhere = d.dir.path() + "/Desktop/tool.desktop";
    QDir().mkpath(d.dir.path() + "/Desktop");
    QFile tool(elsewhere);
    ASSERT_TRUE(tool.open(QIODevice::WriteOnly));
    tool.write(app("Tool"));
    tool.close();
    const QString link = d.write("first", "link.desktop", "[Desktop Entry]\nType=Link\nName=L\nURL=x\n");
    const QString gone = d.write("first", "gone.desktop", "[Desktop Entry]\nHidden=true\n");
    const QString garbage = d.write("first", "garbage.desktop", QByteArray("\0\0\0", 3));
    const QString text = d.write("first", "notes.txt", app("Notes"));
    DesktopEntries entries({}, std::chrono::milliseconds(0));

    // The entry that is in force for the id, so that it equals what the application's windows give.
    QString error;
    const auto editor = entries.applicationIn(overridden, &error);
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->fileURL, "file://" + d.apps("home") + "/editor.desktop");
    EXPECT_EQ(editor->name, "My Editor");
    EXPECT_EQ(entries.applicationIn(elsewhere, &error)->fileURL, "file://" + elsewhere);

    const auto refused = [&](const QString& path) {
        QString reason;
        EXPECT_FALSE(entries.applicationIn(path, &reason)) << path.toStdString();
        return reason;
    };
    EXPECT_EQ(refused(link), "link.desktop describes a Link, not an application");
    EXPECT_EQ(refused(gone), "gone.desktop is a deleted entry (Hidden=true)");
    EXPECT_EQ(refused(garbage), "garbage.desktop: binary data, not text");
    EXPECT_EQ(refused(text), "notes.txt is not a desktop entry (.desktop file)");
    EXPECT_TRUE(refused(d.dir.path() + "/missing.desktop").startsWith("missing.desktop: "));
}
