#include "platform/linux/XdgAutostart.h"

#include "platform/linux/LinuxLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>

namespace velmora {

namespace {

// An argument of Exec: quoted when it holds a character the format reserves, with the characters that
// stay special inside the quotes escaped, and a literal '%' doubled so that it is not read as a field code.
QString execArgument(QString argument) {
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    argument.replace('%', "%%");
    const bool quote =
        std::any_of(argument.begin(), argument.end(), [](QChar c) { return reserved.contains(c); });
    if (!quote)
        return argument;
    QString quoted;
    for (const QChar c : argument) {
        if (c == '"' || c == '`' || c == '$' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return '"' + quoted + '"';
}

// A value of type string escapes its backslashes once more, on top of the quoting of Exec.
QString stringValue(QString value) {
    return value.replace('\\', "\\\\").replace('\n', "\\n").replace('\t', "\\t");
}

QString folderProblem(const QString& folder, const QString& fallback) {
    const QFileInfo info(folder);
    if (info.exists() && !info.isDir())
        return QString("%1 is not a folder").arg(folder);
    if (info.exists() && !info.isWritable())
        return QString("%1 is read-only").arg(folder);
    return fallback;
}

} // namespace

XdgAutostart::XdgAutostart(QString program) : m_program(std::move(program)) {}

QString XdgAutostart::entryPath() {
    // A relative XDG_CONFIG_HOME is ignored, as the XDG base directory rules say.
    QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (config.isEmpty() || QDir::isRelativePath(config))
        config = QDir::homePath() + "/.config";
    return config + "/autostart/velmora.desktop";
}

QByteArray XdgAutostart::entryText(const QString& program) {
    const QString text =
        QStringLiteral("[Desktop Entry]\n"
                       "Type=Application\n"
                       "Name=Velmora\n"
                       "Comment=Window zones, clipboard history and system gauges in the tray\n"
                       "Icon=velmora\n"
                       // A deleted or moved binary is then skipped quietly at login.
                       "TryExec=%1\n"
                       "Exec=%2\n"
                       "Terminal=false\n"
                       "X-GNOME-Autostart-enabled=true\n")
            .arg(stringValue(program), stringValue(execArgument(program)));
    return text.toUtf8();
}

bool XdgAutostart::isEnabled() const {
    QFile file(entryPath());
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // A session's own settings switch an entry off without deleting it.
    bool inMainGroup = false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith('['))
            inMainGroup = line == "[Desktop Entry]";
        else if (inMainGroup && (line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false"))
            return false;
    }
    return true;
}

bool XdgAutostart::setEnabled(bool enabled) {
    const bool before = isEnabled();
    const bool done = enabled ? write() : remove();
    if (done)
        m_error.clear();
    return done ? enabled : before;
}

bool XdgAutostart::write() {
    const QString path = entryPath();
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return fail("on", folderProblem(folder, QString("%1 could not be created").arg(folder)));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail("on", folderProblem(folder, file.errorString()));
    file.write(entryText(m_program));
    if (!file.commit())
        return fail("on", folderProblem(
                              folder, QString("%1 could not be written: %2").arg(path, file.errorString())));
    return true;
}

bool XdgAutostart::remove() {
    QFile file(entryPath());
    if (!file.exists() || file.remove())
        return true;
    return fail("off", folderProblem(QFileInfo(file.fileName()).absolutePath(), file.errorString()));
}

bool XdgAutostart::fail(const QString& what, const QString& reason) {
    m_error = reason;
    qCWarning(lcLinux).noquote() << "Launch at login could not be turned" << what
                                 << "(" + entryPath() + "):" << reason;
    return false;
}

} // namespace velmora
