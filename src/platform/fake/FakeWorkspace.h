#pragma once

#include "platform/Workspace.h"

#include <QHash>

namespace velmora {

// Icons by window id, as a test sets them; every other window has none.
class FakeWorkspace final : public Workspace {
public:
    QHash<quint32, QImage> icons;

    QImage applicationIcon(quint32 windowId, const QString&, int) override { return icons.value(windowId); }
};

} // namespace velmora
