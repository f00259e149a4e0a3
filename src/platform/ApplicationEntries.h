#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace velmora {

// An installed application as the desktop's menus describe it.
struct ApplicationEntry {
    QString id;      // "org.gnome.gedit"
    QString fileURL; // the file that describes it: "file:///usr/share/applications/org.gnome.gedit.desktop"
    QString name;    // in the user's language
    QString icon;    // an icon theme name or an absolute path; may be empty

    bool operator==(const ApplicationEntry&) const = default;
};

// What the window system tells of a window's program.
struct WindowClues {
    QString wmInstance; // the instance and class names the window gives itself
    QString wmClass;
    qint32 pid = 0; // 0 when unknown
};

// The installed applications, and which of them a window belongs to.
class ApplicationEntries {
public:
    virtual ~ApplicationEntries() = default;

    virtual std::optional<ApplicationEntry> applicationOf(const WindowClues& clues) = 0;
    // Those a user could launch, sorted by name.
    virtual std::vector<ApplicationEntry> applications() = 0;
    // The application a file describes; nothing, with the reason in *error, when it describes none.
    virtual std::optional<ApplicationEntry> applicationIn(const QString& path, QString* error) = 0;
    // Changes whenever the entries were read again: what was derived from them may be stale.
    virtual quint64 generation() = 0;
};

} // namespace velmora
