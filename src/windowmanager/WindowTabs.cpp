#include "windowmanager/WindowTabs.h"

#include "core/MainThread.h"
#include "windowmanager/WindowManagerLog.h"

#include <QCoreApplication>
#include <QHash>
#include <QMetaObject>

namespace velmora {

namespace {

using Kind = AXElementQuery::Kind;

// Programs whose tabs are not found by the default selectors. Built once, on first use.
const QHash<QString, std::vector<AXElementQuery>>& selectorTable() {
    static const QHash<QString, std::vector<AXElementQuery>> table = {
        // Its tabs are radio buttons of a tab bar, one level below the window's tab group.
        {"Safari", {{Kind::matchChildren, {"AXRadioButton", QString("AXTabButton")}}}},
    };
    return table;
}

// Toolkits on the desktop's accessibility bus (GTK, Qt, browsers) expose a tab as a "page tab"
// inside a "page tab list", some levels below the window.
const std::vector<AXElementQuery>& defaultSelectors() {
    static const std::vector<AXElementQuery> selectors = {
        {Kind::matchDescendants, {"page tab", std::nullopt}}};
    return selectors;
}

std::optional<QString> nonBlank(const std::optional<QString>& text) {
    if (!text)
        return std::nullopt;
    const QString trimmed = text->trimmed();
    return trimmed.isEmpty() ? std::nullopt : std::optional<QString>(trimmed);
}

} // namespace

WindowTabs::WindowTabs(std::shared_ptr<AccessibleElements> elements, QObject* parent)
    : QObject(parent), m_elements(std::move(elements)) {
    m_worker.setMaxThreadCount(1);
}

WindowTabs::~WindowTabs() {
    // A read under way finishes against the elements it shares; its answer finds nobody to tell.
    m_worker.clear();
    m_worker.waitForDone();
}

std::vector<AXElementQuery> WindowTabs::selectorsFor(const QString& application) {
    const auto& table = selectorTable();
    if (const auto row = table.find(application); row != table.end())
        return *row;
    return defaultSelectors();
}

std::vector<TabInfo> WindowTabs::read(AccessibleElements& elements, const WindowInfo& window) {
    const AccessibleWindow target{window.id, window.pid, window.title.value_or(QString())};
    const QString application = window.appName.value_or(QString());
    const bool ownRow = selectorTable().contains(application);
    std::vector<AccessibleElement> found;
    for (const auto& query : selectorsFor(application)) {
        found = elements.query(target, query);
        if (!found.empty() || ownRow)
            break;
    }
    std::vector<TabInfo> tabs;
    for (auto& element : found) {
        auto title = nonBlank(element.title);
        if (!title)
            title = nonBlank(element.description);
        if (title)
            tabs.push_back({*title, std::move(element)});
    }
    return tabs;
}

void WindowTabs::request(const WindowInfo& window, std::function<void(quint32, std::vector<TabInfo>)> done) {
    assertMainThread("WindowTabs::request");
    if (!m_elements) {
        done(window.id, {});
        return;
    }
    QPointer<WindowTabs> self(this);
    m_worker.start([self, elements = m_elements, window, done = std::move(done)] {
        auto tabs = read(*elements, window);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, id = window.id, tabs = std::move(tabs), done] {
                if (self)
                    done(id, tabs);
            },
            Qt::QueuedConnection);
    });
}

void WindowTabs::select(const TabInfo& tab) {
    if (!m_elements)
        return;
    m_worker.start([elements = m_elements, tab] {
        if (!elements->press(tab.axUIElement))
            qCWarning(lcWindowManager) << "The tab" << tab.title << "could not be selected";
    });
}

} // namespace velmora
