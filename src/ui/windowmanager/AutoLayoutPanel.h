#pragma once

#include "core/KeyboardAppAction.h"
#include "windowmanager/WindowTabs.h"

#include <QObject>
#include <QPointer>
#include <QSet>
#include <functional>
#include <map>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;
class QWidget;

namespace velmora {

class AutoLayout;
class KeyboardLayout;
class StandardWindowController;
class UserPreferences;
class WindowManagerModel;
class Workspace;
struct KeyEvent;

// A row of the auto-layout panel: a window, or one of its tabs.
struct AutoLayoutSearchResult {
    WindowInfo window;
    std::optional<TabInfo> tab;
    int tabIndex = -1;
};

// The panel that fills the space beside a snapped window: the other windows of the current desktop,
// most recently used first, each expandable into its tabs, with a search over both. Choosing a row
// puts that window into the free space and focuses it (and selects the tab). The panel sits in the
// free space it proposes; it closes on Escape, on a choice, and when the proposal ends.
class AutoLayoutPanel : public QObject {
    Q_OBJECT
public:
    AutoLayoutPanel(AutoLayout& autoLayout, WindowManagerModel& model, WindowTabs& tabs,
                    const UserPreferences& preferences, const KeyboardLayout& layout, Workspace* workspace,
                    QObject* parent = nullptr);
    ~AutoLayoutPanel() override;

    // Computes the proposal for the focused window and shows the panel, or closes it when there is
    // nothing to propose.
    void propose();
    // Places the selected row's window (and selects its tab) and closes the panel.
    void choose();
    void close();
    void step(int delta);
    // Shows or hides the tabs of the selected row's window.
    void expandTabs(bool expand);

    bool isOpen() const;
    QWidget* panel() const;
    const std::vector<AutoLayoutSearchResult>& rows() const { return m_rows; }
    int selectedIndex() const { return m_selected; }
    // The tabs read so far, by window.
    const std::map<quint32, std::vector<TabInfo>>& knownTabs() const { return m_tabs; }

signals:
    // Where the panel is on the screen while it is open; empty once it closed.
    void placed(const QRect& frame);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildContent();
    void readTabs();
    void tabsArrived(quint32 window, std::vector<TabInfo> tabs);
    void reloadRows();
    void fillList();
    void select(int index);
    void applyFilter(const QString& text);
    std::optional<KeyboardAppAction> bindingFor(const KeyEvent& key) const;
    QString hintsText() const;
    void panelClosed();

    AutoLayout& m_autoLayout;
    WindowManagerModel& m_model;
    WindowTabs& m_tabsReader;
    const UserPreferences& m_preferences;
    const KeyboardLayout& m_layout;
    Workspace* m_workspace;
    StandardWindowController* m_controller;

    std::vector<WindowInfo> m_candidates;
    std::map<quint32, std::vector<TabInfo>> m_tabs;
    QSet<quint32> m_expanded;
    std::vector<AutoLayoutSearchResult> m_rows;
    QString m_filter;
    int m_selected = -1;
    bool m_forwarding = false;
    // Tab answers from an earlier opening are dropped.
    int m_opening = 0;

    QPointer<QWidget> m_content;
    QPointer<QLabel> m_heading;
    QPointer<QLineEdit> m_search;
    QPointer<QListWidget> m_list;
    QPointer<QLabel> m_empty;
};

} // namespace velmora
