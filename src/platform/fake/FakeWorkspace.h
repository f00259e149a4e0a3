#pragma once

#include "platform/Workspace.h"

#include <QHash>

namespace velmora {

// Icons by window id, the frontmost application, the installed ones and the entry files a user may
// pick, as a test sets them.
class FakeWorkspace final : public Workspace {
public:
    QHash<quint32, QImage> icons;
    std::optional<FrontmostApplication> frontmost;
    std::vector<ApplicationIdentity> installed;
    QHash<QString, ApplicationIdentity> files; // by path; any other path is "not an application"

    QImage applicationIcon(quint32 windowId, const QString&, int) override { return icons.value(windowId); }
    std::optional<FrontmostApplication> frontmostApplication() override { return frontmost; }
    std::optional<FocusedWindow> focused;
    std::optional<FocusedWindow> focusedWindow() override { return focused; }
    std::vector<ApplicationIdentity> installedApplications() override { return installed; }
    std::vector<RunningApplication> running;
    std::vector<RunningApplication> runningApplications() override { return running; }
    std::optional<ApplicationIdentity> applicationFromFile(const QString& path, QString* error) override {
        if (const auto it = files.constFind(path); it != files.constEnd())
            return *it;
        if (error)
            *error = path + " is not an application";
        return std::nullopt;
    }
};

} // namespace velmora
