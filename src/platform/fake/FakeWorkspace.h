#pragma once

#include "platform/Workspace.h"

#include <QHash>

namespace velmora {

// Icons by window id and the frontmost application, as a test sets them.
class FakeWorkspace final : public Workspace {
public:
    QHash<quint32, QImage> icons;
    std::optional<FrontmostApplication> frontmost;
    std::vector<ApplicationIdentity> installed;

    QImage applicationIcon(quint32 windowId, const QString&, int) override { return icons.value(windowId); }
    std::optional<FrontmostApplication> frontmostApplication() override { return frontmost; }
    std::vector<ApplicationIdentity> installedApplications() override { return installed; }
};

} // namespace velmora
