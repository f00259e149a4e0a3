#pragma once

#include <QImage>
#include <QString>

#include <optional>
#include <vector>

namespace velmora {

// An application as the desktop presents it: its desktop entry when one is found.
struct ApplicationIdentity {
    std::optional<QString> id;      // the desktop entry's id ("org.gnome.gedit"), else the WM_CLASS class
    std::optional<QString> fileURL; // "file:///usr/share/applications/org.gnome.gedit.desktop"
    std::optional<QString> name;    // the entry's localised Name, else the WM_CLASS class
    QImage icon;                    // the entry's theme icon, else the window's own; may be null
};

// The application in front and its focused window, at the moment of asking.
struct FrontmostApplication {
    ApplicationIdentity application;
    std::optional<QString> windowTitle;
};

// The window that has the keyboard focus, as much as a paste into it needs to know.
struct FocusedWindow {
    quint32 id = 0;
    QString instanceName; // WM_CLASS's instance ("xterm")
    QString className;    // WM_CLASS's class ("XTerm")
};

// A program that owns a window of the desktop, as the desktop presents it.
struct RunningApplication {
    qint64 pid = 0;
    std::optional<QString> localizedName;    // the desktop entry's Name, else the WM_CLASS class
    std::optional<QString> bundleIdentifier; // the desktop entry's id, else the WM_CLASS class
};

// The applications behind windows, as the desktop presents them.
class Workspace {
public:
    virtual ~Workspace() = default;

    // The icon of the window's application, about size x size pixels: the one the window publishes,
    // else the icon theme's for the application's name; a null image when neither exists.
    virtual QImage applicationIcon(quint32 windowId, const QString& appName, int size) = 0;
    // The application of the active window; nothing when no window is active.
    virtual std::optional<FrontmostApplication> frontmostApplication() = 0;
    // The active window; nothing when no window is active. Answers from memory where it can.
    virtual std::optional<FocusedWindow> focusedWindow() { return std::nullopt; }
    // The programs owning managed windows, one entry per window owner. Main thread.
    virtual std::vector<RunningApplication> runningApplications() { return {}; }
    // Every application a user could launch (desktop entries not hidden), sorted by name.
    virtual std::vector<ApplicationIdentity> installedApplications() = 0;
    // The application a desktop entry file describes, for a user who picks the file by hand; nothing,
    // with the reason in *error, when the file is not a launchable application's entry.
    virtual std::optional<ApplicationIdentity> applicationFromFile(const QString& path, QString* error) {
        Q_UNUSED(path);
        if (error)
            *error = "this desktop has no application entries";
        return std::nullopt;
    }
};

} // namespace velmora
