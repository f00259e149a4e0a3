#pragma once

#include "platform/ApplicationEntries.h"

#include <QElapsedTimer>
#include <QHash>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <vector>

namespace velmora {

// The [Desktop Entry] group of one .desktop file, as far as telling applications apart needs it.
struct DesktopEntry {
    QString id;   // the desktop-file id: "org.gnome.gedit.desktop", "kde-foo.desktop" for kde/foo.desktop
    QString path; // absolute
    QString type;
    QString name; // in the current locale when the file has it
    QString icon; // an icon theme name or an absolute path
    QString exec;
    QString tryExec;
    QString startupWMClass;
    bool hidden = false; // the entry is deleted, and hides any same id further down the search path
    bool noDisplay = false;

    bool isApplication() const { return type == QLatin1String("Application"); }
    // The id without ".desktop": "org.gnome.gedit".
    QString stem() const;
    ApplicationEntry application() const;
    // "file:///usr/share/applications/org.gnome.gedit.desktop"; the form the ignore list stores.
    QString fileUrl() const;
    // The basename of the program Exec starts, quotes and an `env VAR=value` prefix taken off.
    QString executableName() const;
};

// The desktop entries of the XDG search path: $XDG_DATA_HOME/applications, then each of $XDG_DATA_DIRS
// (/usr/local/share:/usr/share by default) /applications, with their subfolders. For the same id the
// earlier folder wins. The scan is kept; the folders' modification times are looked at again at most
// once per `recheck`, and only a change there scans again, so that a lookup per copy costs no disk work.
class DesktopEntries final : public ApplicationEntries {
public:
    explicit DesktopEntries(QStringList localeNames = currentLocaleNames(),
                            std::chrono::milliseconds recheck = std::chrono::seconds(3));

    std::optional<ApplicationEntry> applicationOf(const WindowClues& clues) override;
    std::vector<ApplicationEntry> applications() override;
    // A file inside the applications folders stands for its id, so that it compares equal to what
    // applicationOf() gives for that application's windows even when an earlier folder overrides it.
    std::optional<ApplicationEntry> applicationIn(const QString& path, QString* error) override;
    quint64 generation() override;

    // The entry with this desktop-file id ("foo.desktop"), deleted (Hidden) ones included.
    std::optional<DesktopEntry> byId(const QString& id);
    // The application entry a window belongs to: StartupWMClass equal to its WM_CLASS class or instance,
    // else an id equal to one of them (case aside; "org.gnome.gedit" also answers to "gedit"), else the
    // entry whose Exec or TryExec names the window's program.
    std::optional<DesktopEntry> forWindow(const WindowClues& clues);
    // The applications a user could launch (not Hidden, not NoDisplay), by name.
    std::vector<DesktopEntry> launchable();
    // One file; nothing, with the reason in *error, when it is not a readable desktop entry.
    static std::optional<DesktopEntry> read(const QString& path, const QString& id,
                                            const QStringList& localeNames, QString* error);
    // The applications folders, in order of precedence, as the environment says now.
    static QStringList applicationDirs();
    // The locale suffixes to try for Name[...], most specific first: "de_DE@euro" gives
    // de_DE@euro, de_DE, de@euro, de. None for the C locale.
    static QStringList localeNamesFor(const QString& locale);
    // From LC_ALL, LC_MESSAGES or LANG, else the system locale.
    static QStringList currentLocaleNames();
    // The names a process goes by: the basename of /proc/PID/exe and of its argv[0].
    static QStringList processNames(qint32 pid);

private:
    struct Folder {
        QString path;
        qint64 modified = -1; // nanoseconds; -1: missing; -2: too fresh to trust, look again
    };

    void refresh();
    void scan();
    void index();

    QStringList m_localeNames;
    std::chrono::milliseconds m_recheck;
    QElapsedTimer m_sinceCheck;
    QStringList m_roots;
    std::vector<Folder> m_folders;
    std::vector<DesktopEntry> m_entries; // one per id, in search order
    QHash<QString, int> m_byId;
    QHash<QString, int> m_byWMClass, m_byStem, m_byLastComponent, m_byExecutable; // lower-case keys
    quint64 m_generation = 0;
};

} // namespace velmora
