#pragma once

#include "windowmanager/WindowManagerTypes.h"

#include <QObject>
#include <QPointer>
#include <functional>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;
class QWidget;

namespace velmora {

class Accessibility;
class KeyboardLayout;
class KeyboardShortcutModel;
class Screens;
class StandardWindowController;
class WindowsCache;
class Workspace;

// The Alt+Tab panel: the windows of the current spaces, most recently used first, with a search
// field. Held open by the shortcut's modifier, it chooses the selected window when the modifier is
// let go, also after typing a search; opened without a held modifier (or for a search of its own),
// it stays open until Return, a click or Escape.
class WindowSwitcher : public QObject {
    Q_OBJECT
public:
    // Rows show the applications' icons from workspace; without one, a letter stands in.
    WindowSwitcher(WindowsCache& cache, Accessibility& access, const Screens& screens, Workspace* workspace,
                   KeyboardShortcutModel& keys, const KeyboardLayout& layout,
                   std::function<double()> panelWidth, QObject* parent = nullptr);
    ~WindowSwitcher() override;

    // Opens the panel, or moves the selection when it is already open: forward, or back with previous.
    void open(bool previous);
    // Opens the panel if needed and puts the user in the search field.
    void search();
    // Focuses the selected window and closes the panel; with nothing listed it only closes.
    void choose();
    void close();

    bool isOpen() const;
    // -1 when nothing is listed.
    int selectedIndex() const { return m_selected; }
    // The rows listed now, after the search filter.
    std::vector<WindowInfo> rows() const { return m_rows; }
    QWidget* panel() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildContent();
    void reloadRows();
    void applyFilter(const QString& text);
    void fillList();
    void select(int index);
    void step(int delta);
    void chooseRow(int index);
    void modifiersChanged();
    bool anyModifierHeld() const;
    void panelClosed();

    WindowsCache& m_cache;
    Accessibility& m_access;
    const Screens& m_screens;
    Workspace* m_workspace;
    KeyboardShortcutModel& m_keys;
    std::function<double()> m_panelWidth;
    StandardWindowController* m_controller;

    std::vector<WindowInfo> m_all;  // the current spaces' windows in switcher order
    std::vector<WindowInfo> m_rows; // m_all through the search filter
    QString m_filter;
    int m_selected = -1;
    // Armed while the shortcut's modifier is held: letting go chooses.
    bool m_chooseOnRelease = false;
    // Set once the user types or asks for the search field; from then on only Return or a click chooses.
    bool m_userTookOver = false;
    bool m_forwarding = false;

    QPointer<QWidget> m_content;
    QPointer<QLineEdit> m_search;
    QPointer<QListWidget> m_list;
    QPointer<QLabel> m_empty;
};

} // namespace velmora
