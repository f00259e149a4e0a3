#include "platform/linux/DesktopEntries.h"

#include "platform/linux/LinuxLog.h"

#include <QCollator>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QStringDecoder>
#include <QUrl>

#include <algorithm>
#include <sys/stat.h>

namespace velmora {

namespace {

// Real entries are a few kilobytes; past these sizes a file is not one, and reading it would only cost.
constexpr qint64 kMaxFileBytes = 1024 * 1024;
constexpr qsizetype kMaxLineChars = 64 * 1024;
// A folder changed this recently may change again within the same tick of the file system's clock,
// unseen in its modification time: it is looked at again at the next check.
constexpr qint64 kRacyNanoseconds = 2'000'000'000;

// Programs that start other programs: naming one says nothing about which application a window is.
const QStringList kLaunchers = {"env",         "sh",         "bash", "dash",   "zsh",      "python",
                                "python3",     "perl",       "ruby", "java",   "node",     "wine",
                                "flatpak",     "snap",       "sudo", "pkexec", "xdg-open", "gio",
                                "dbus-launch", "gtk-launch", "mono", "gjs",    "electron", "exo-open"};

// The general escapes of string values: \s \n \t \r \\. Others are left for the key's own rules.
QString unescaped(QStringView value) {
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        if (c != u'\\' || i + 1 == value.size()) {
            out += c;
            continue;
        }
        const QChar next = value[++i];
        switch (next.unicode()) {
        case 's':
            out += u' ';
            break;
        case 'n':
            out += u'\n';
            break;
        case 't':
            out += u'\t';
            break;
        case 'r':
            out += u'\r';
            break;
        case '\\':
            out += u'\\';
            break;
        default:
            out += c;
            out += next;
        }
    }
    return out;
}

// The leading words of an Exec value: a double-quoted word has its quotes and backslash escapes undone.
QStringList leadingWords(QStringView exec, int count) {
    QStringList words;
    qsizetype i = 0;
    while (words.size() < count) {
        while (i < exec.size() && exec[i].isSpace())
            ++i;
        if (i == exec.size())
            break;
        QString word;
        if (exec[i] == u'"') {
            for (++i; i < exec.size() && exec[i] != u'"'; ++i) {
                if (exec[i] == u'\\' && i + 1 < exec.size())
                    ++i;
                word += exec[i];
            }
            ++i;
        } else {
            for (; i < exec.size() && !exec[i].isSpace(); ++i)
                word += exec[i];
        }
        words << word;
    }
    return words;
}

QString lastComponent(const QString& name) {
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? QString() : name.mid(dot + 1);
}

bool isTrue(const QString& value) {
    return value == QLatin1String("true") || value == QLatin1String("1");
}

// Whether TryExec names a program that is installed; an entry without one always is.
bool tryExecFound(const QString& tryExec) {
    if (tryExec.isEmpty())
        return true;
    if (QDir::isAbsolutePath(tryExec))
        return QFileInfo(tryExec).isExecutable();
    return !QStandardPaths::findExecutable(tryExec).isEmpty();
}

// The modification time in nanoseconds since the epoch; -1 when the folder is missing.
qint64 modifiedNs(const QString& path) {
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0 || !S_ISDIR(st.st_mode))
        return -1;
    return qint64(st.st_mtim.tv_sec) * 1'000'000'000 + st.st_mtim.tv_nsec;
}

qint64 nowNs() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

} // namespace

QString DesktopEntry::stem() const {
    return id.endsWith(QLatin1String(".desktop")) ? id.chopped(8) : id;
}

ApplicationEntry DesktopEntry::application() const {
    return {stem(), fileUrl(), name, icon};
}

QString DesktopEntry::fileUrl() const {
    return QUrl::fromLocalFile(path).toString();
}

QString DesktopEntry::executableName() const {
    QStringList words = leadingWords(exec, 8);
    // `env VAR=value program`: the program is the first word that is neither an option nor a setting.
    if (!words.isEmpty() && QFileInfo(words.front()).fileName() == QLatin1String("env")) {
        words.removeFirst();
        while (!words.isEmpty() && (words.front().contains(u'=') || words.front().startsWith(u'-')))
            words.removeFirst();
    }
    return words.isEmpty() ? QString() : QFileInfo(words.front()).fileName();
}

DesktopEntries::DesktopEntries(QStringList localeNames, std::chrono::milliseconds recheck)
    : m_localeNames(std::move(localeNames)), m_recheck(recheck) {}

std::optional<DesktopEntry> DesktopEntries::read(const QString& path, const QString& id,
                                                 const QStringList& localeNames, QString* error) {
    const auto fail = [error](const QString& reason) -> std::optional<DesktopEntry> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    const QByteArray bytes = file.read(kMaxFileBytes + 1);
    if (bytes.size() > kMaxFileBytes)
        return fail(QString("larger than %1 KiB").arg(kMaxFileBytes / 1024));
    if (bytes.contains('\0'))
        return fail("binary data, not text");
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(bytes);
    if (utf8.hasError())
        return fail("not UTF-8 text");

    QHash<QString, QString> keys;
    bool inEntry = false, seenGroup = false;
    int lineNumber = 0;
    for (QStringView line : QStringView(text).split(u'\n')) {
        ++lineNumber;
        if (line.size() > kMaxLineChars)
            return fail(QString("line %1 is longer than %2 characters").arg(lineNumber).arg(kMaxLineChars));
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[')) {
            if (!line.endsWith(u']'))
                return fail(QString("line %1 is an unclosed group header").arg(lineNumber));
            const QStringView group = line.sliced(1, line.size() - 2);
            if (!seenGroup && group != QLatin1String("Desktop Entry"))
                return fail(QString("the first group is [%1], not [Desktop Entry]").arg(group));
            if (seenGroup)
                break; // actions and other groups are not needed
            seenGroup = inEntry = true;
            continue;
        }
        if (!inEntry)
            return fail(QString("line %1 comes before the [Desktop Entry] group").arg(lineNumber));
        const qsizetype eq = line.indexOf(u'=');
        if (eq <= 0)
            return fail(QString("line %1 is not a key=value pair").arg(lineNumber));
        keys.insert(line.first(eq).trimmed().toString(), line.sliced(eq + 1).trimmed().toString());
    }
    if (!seenGroup)
        return fail("no [Desktop Entry] group");

    const auto localised = [&](const QString& key) {
        for (const QString& locale : localeNames)
            if (const auto it = keys.constFind(key + u'[' + locale + u']'); it != keys.constEnd())
                return unescaped(*it);
        return unescaped(keys.value(key));
    };
    DesktopEntry entry;
    entry.id = id;
    entry.path = QFileInfo(path).absoluteFilePath();
    entry.hidden = isTrue(keys.value("Hidden"));
    entry.noDisplay = isTrue(keys.value("NoDisplay"));
    entry.type = unescaped(keys.value("Type"));
    entry.name = localised("Name");
    entry.icon = localised("Icon");
    entry.exec = unescaped(keys.value("Exec"));
    entry.tryExec = unescaped(keys.value("TryExec"));
    entry.startupWMClass = unescaped(keys.value("StartupWMClass"));
    // A deleted entry needs nothing more: it only hides its id.
    if (!entry.hidden && entry.type.isEmpty())
        return fail("no Type key");
    if (!entry.hidden && entry.name.isEmpty())
        return fail("no Name key");
    return entry;
}

QStringList DesktopEntries::applicationDirs() {
    QString home = qEnvironmentVariable("XDG_DATA_HOME");
    if (!QDir::isAbsolutePath(home))
        home = QDir::homePath() + "/.local/share";
    QString dataDirs = qEnvironmentVariable("XDG_DATA_DIRS");
    if (dataDirs.isEmpty())
        dataDirs = "/usr/local/share:/usr/share";
    QStringList dirs;
    for (const QString& base : QStringList{home} + dataDirs.split(u':', Qt::SkipEmptyParts)) {
        if (!QDir::isAbsolutePath(base))
            continue; // the XDG rules ignore relative entries
        const QString dir = QDir::cleanPath(base + "/applications");
        if (!dirs.contains(dir))
            dirs << dir;
    }
    return dirs;
}

QStringList DesktopEntries::localeNamesFor(const QString& locale) {
    QString rest = locale;
    QString modifier;
    if (const qsizetype at = rest.indexOf(u'@'); at >= 0) {
        modifier = rest.mid(at);
        rest.truncate(at);
    }
    if (const qsizetype dot = rest.indexOf(u'.'); dot >= 0)
        rest.truncate(dot);
    if (rest.isEmpty() || rest == QLatin1String("C") || rest == QLatin1String("POSIX"))
        return {};
    const QString language = rest.section(u'_', 0, 0);
    QStringList names;
    if (language != rest) {
        if (!modifier.isEmpty())
            names << rest + modifier;
        names << rest;
    }
    if (!modifier.isEmpty())
        names << language + modifier;
    names << language;
    return names;
}

QStringList DesktopEntries::currentLocaleNames() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const QString value = qEnvironmentVariable(variable); !value.isEmpty())
            return localeNamesFor(value);
    return localeNamesFor(QLocale::system().name());
}

QStringList DesktopEntries::processNames(qint32 pid) {
    QStringList names;
    if (pid <= 0)
        return names;
    const QString proc = QString("/proc/%1/").arg(pid);
    QString exe = QFile::symLinkTarget(proc + "exe");
    if (exe.endsWith(QLatin1String(" (deleted)")))
        exe.chop(10);
    if (!exe.isEmpty())
        names << QFileInfo(exe).fileName();
    QFile cmdline(proc + "cmdline");
    if (cmdline.open(QIODevice::ReadOnly)) {
        const QByteArray args = cmdline.read(4096);
        const QString first = QFileInfo(QFile::decodeName(args.left(args.indexOf('\0')))).fileName();
        if (!first.isEmpty() && !names.contains(first))
            names << first;
    }
    return names;
}

std::optional<DesktopEntry> DesktopEntries::byId(const QString& id) {
    refresh();
    const auto it = m_byId.constFind(id);
    return it == m_byId.constEnd() ? std::nullopt : std::optional(m_entries[*it]);
}

std::optional<DesktopEntry> DesktopEntries::forWindow(const WindowClues& clues) {
    refresh();
    const QString names[] = {clues.wmClass.toLower(), clues.wmInstance.toLower()};
    const auto lookUp = [this](const QHash<QString, int>& table, const QString& key) -> const DesktopEntry* {
        if (key.isEmpty())
            return nullptr;
        const auto it = table.constFind(key);
        return it == table.constEnd() ? nullptr : &m_entries[*it];
    };
    const DesktopEntry* found = nullptr;
    for (const QString& name : names)
        if (!found)
            found = lookUp(m_byWMClass, name);
    for (const QString& name : names)
        if (!found)
            found = lookUp(m_byStem, name);
    // "org.gnome.gedit" and "gedit", whichever side is the long one.
    for (const QString& name : names)
        if (!found)
            found = lookUp(m_byLastComponent, name);
    for (const QString& name : names)
        if (!found)
            found = lookUp(m_byStem, lastComponent(name));
    if (!found)
        for (const QString& name : processNames(clues.pid))
            if (!found)
                found = lookUp(m_byExecutable, name);
    return found ? std::optional(*found) : std::nullopt;
}

std::vector<DesktopEntry> DesktopEntries::launchable() {
    refresh();
    std::vector<DesktopEntry> list;
    for (const DesktopEntry& entry : m_entries)
        if (entry.isApplication() && !entry.hidden && !entry.noDisplay && tryExecFound(entry.tryExec))
            list.push_back(entry);
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(list.begin(), list.end(), [&collator](const DesktopEntry& a, const DesktopEntry& b) {
        const int order = collator.compare(a.name, b.name);
        return order != 0 ? order < 0 : a.id < b.id;
    });
    return list;
}

quint64 DesktopEntries::generation() {
    refresh();
    return m_generation;
}

std::optional<ApplicationEntry> DesktopEntries::applicationOf(const WindowClues& clues) {
    const auto entry = forWindow(clues);
    return entry ? std::optional(entry->application()) : std::nullopt;
}

std::vector<ApplicationEntry> DesktopEntries::applications() {
    std::vector<ApplicationEntry> list;
    for (const DesktopEntry& entry : launchable())
        list.push_back(entry.application());
    return list;
}

std::optional<ApplicationEntry> DesktopEntries::applicationIn(const QString& path, QString* error) {
    const auto fail = [error](const QString& reason) -> std::optional<ApplicationEntry> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    const QFileInfo file(path);
    if (!file.fileName().endsWith(QLatin1String(".desktop")))
        return fail(QString("%1 is not a desktop entry (.desktop file)").arg(file.fileName()));
    for (const QString& root : applicationDirs()) {
        const QString relative = QDir(root).relativeFilePath(file.absoluteFilePath());
        if (relative.startsWith(QLatin1String("../")))
            continue;
        if (const auto known = byId(QString(relative).replace(u'/', u'-'));
            known && known->isApplication() && !known->hidden)
            return known->application();
        break;
    }
    QString reason;
    const auto entry = read(path, file.fileName(), m_localeNames, &reason);
    if (!entry)
        return fail(QString("%1: %2").arg(file.fileName(), reason));
    if (entry->hidden)
        return fail(QString("%1 is a deleted entry (Hidden=true)").arg(file.fileName()));
    if (!entry->isApplication())
        return fail(QString("%1 describes a %2, not an application").arg(file.fileName(), entry->type));
    return entry->application();
}

void DesktopEntries::refresh() {
    if (m_sinceCheck.isValid() && m_sinceCheck.elapsed() < m_recheck.count())
        return;
    m_sinceCheck.start();
    if (m_generation > 0 && applicationDirs() == m_roots &&
        std::all_of(m_folders.begin(), m_folders.end(),
                    [](const Folder& f) { return f.modified != -2 && modifiedNs(f.path) == f.modified; }))
        return;
    scan();
}

void DesktopEntries::scan() {
    m_roots = applicationDirs();
    m_folders.clear();
    m_entries.clear();
    m_byId.clear();
    const qint64 now = nowNs();
    const auto remember = [this, now](const QString& folder) {
        const qint64 modified = modifiedNs(folder);
        m_folders.push_back({folder, modified >= 0 && now - modified < kRacyNanoseconds ? -2 : modified});
    };
    for (const QString& root : m_roots) {
        remember(root);
        QStringList files;
        QDirIterator it(root, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            if (it.fileInfo().isDir())
                remember(path);
            else if (path.endsWith(QLatin1String(".desktop")))
                files << path;
        }
        files.sort();
        const QDir base(root);
        for (const QString& path : files) {
            const QString id = base.relativeFilePath(path).replace(u'/', u'-');
            if (m_byId.contains(id))
                continue; // an earlier folder has it
            QString error;
            auto entry = read(path, id, m_localeNames, &error);
            if (!entry) {
                qCWarning(lcLinux).noquote() << "Skipped the desktop entry" << path + ":" << error;
                continue;
            }
            m_byId.insert(id, int(m_entries.size()));
            m_entries.push_back(std::move(*entry));
        }
    }
    index();
    ++m_generation;
}

// Lookup tables over the entries a window can belong to; for the same key the earlier entry wins.
void DesktopEntries::index() {
    m_byWMClass.clear();
    m_byStem.clear();
    m_byLastComponent.clear();
    m_byExecutable.clear();
    for (int i = 0; i < int(m_entries.size()); ++i) {
        const DesktopEntry& e = m_entries[std::size_t(i)];
        if (!e.isApplication() || e.hidden)
            continue;
        const auto add = [i](QHash<QString, int>& table, const QString& key) {
            if (!key.isEmpty() && !table.contains(key))
                table.insert(key, i);
        };
        add(m_byWMClass, e.startupWMClass.toLower());
        add(m_byStem, e.stem().toLower());
        add(m_byLastComponent, lastComponent(e.stem()).toLower());
        for (const QString& program : {e.executableName(), QFileInfo(e.tryExec).fileName()})
            if (!kLaunchers.contains(program))
                add(m_byExecutable, program);
    }
}

} // namespace velmora
