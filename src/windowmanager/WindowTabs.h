#pragma once

#include "platform/AccessibleElements.h"
#include "windowmanager/WindowManagerTypes.h"

#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <functional>
#include <memory>
#include <vector>

namespace velmora {

struct TabInfo {
    QString title;
    AccessibleElement axUIElement;
    bool operator==(const TabInfo&) const = default;
};

// The tabs a window shows, read through the desktop's accessibility tree. Reading can take long (a
// huge tree, a program that never answers), so it runs on a worker of its own and the answer comes
// back on the main thread.
class WindowTabs : public QObject {
    Q_OBJECT
public:
    // Without elements (no accessibility bus), no window has tabs.
    explicit WindowTabs(std::shared_ptr<AccessibleElements> elements, QObject* parent = nullptr);
    ~WindowTabs() override;

    // done runs on the main thread with the window's tabs (empty when it shows none), unless this
    // object is gone by then.
    void request(const WindowInfo& window, std::function<void(quint32 window, std::vector<TabInfo>)> done);
    // Selects the tab in its window, off the main thread.
    void select(const TabInfo& tab);

    // The reading itself: the program's own selectors if it has a row in the table, else the default
    // selectors in turn until one finds something; a tab is titled by its title, else its description.
    static std::vector<TabInfo> read(AccessibleElements& elements, const WindowInfo& window);
    static std::vector<AXElementQuery> selectorsFor(const QString& application);

private:
    std::shared_ptr<AccessibleElements> m_elements;
    QThreadPool m_worker;
};

} // namespace velmora
