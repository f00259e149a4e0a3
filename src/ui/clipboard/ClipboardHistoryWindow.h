#pragma once

#include "clipboard/ClipboardMatches.h"
#include "clipboard/SimpleClipboardItem.h"
#include "core/KeyboardAppAction.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <functional>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;
class QListView;
class QWidget;

namespace velmora {

class AppModelContainer;
class ClipboardHistory;
class ClipboardHistoryListModel;
class KeyboardLayout;
class QuickLookHelper;
class Screens;
class StandardWindowController;
class UserPreferences;
class Workspace;
struct KeyEvent;

// The clipboard history panel: every entry newest first, a search field that narrows the list as the
// user types, and the keys of the history bindings to move, paste (as it was or as plain text),
// preview, show the file, open the address and delete. Pastes go to the window that was in front
// when the panel opened.
class ClipboardHistoryWindow : public QObject {
    Q_OBJECT
public:
    // Answers the ids that match a search text, newest first; nothing when the text searches nothing
    // (empty), so that every entry is listed.
    using Search = std::function<std::optional<ClipboardMatches>(const QString& text)>;

    ClipboardHistoryWindow(AppModelContainer& store, ClipboardHistory& actions, Search search,
                           QuickLookHelper* preview, Workspace& workspace, const Screens& screens,
                           UserPreferences& preferences, const KeyboardLayout& layout,
                           std::function<qint64()> nowMs, QObject* parent = nullptr);
    ~ClipboardHistoryWindow() override;

    // Opens the panel with the newest entry selected, or brings it back to the front.
    void open();
    void close();
    bool isOpen() const;

    int selectedRow() const;
    int rowCount() const;
    const SimpleClipboardItem* entry(int row) const;
    QString searchText() const;
    QWidget* panel() const;
    // Performs what the binding does on the selected entry, as its key would.
    void trigger(KeyboardAppAction binding);

    // How long the last opening took until the list was painted, and the last keystroke of a search
    // until the list was narrowed (searched, its rows read) and until it was painted, in ms; for
    // status and the benchmarks.
    double lastOpenMs() const { return m_lastOpenMs; }
    double lastSearchMs() const { return m_lastSearchMs; }
    double lastSearchPaintedMs() const { return m_lastSearchPaintedMs; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildContent();
    void resetContent();
    QString hintsText() const;
    void searchChanged(const QString& text);
    void refreshFilter();
    void select(int row);
    void step(int delta);
    void updateEmptyState();
    std::optional<KeyboardAppAction> bindingFor(const KeyEvent& key, bool inSearchField) const;
    void panelClosed();

    AppModelContainer& m_store;
    ClipboardHistory& m_actions;
    Search m_search;
    QuickLookHelper* m_preview;
    Workspace& m_workspace;
    const Screens& m_screens;
    UserPreferences& m_preferences;
    const KeyboardLayout& m_layout;
    std::function<qint64()> m_now;
    StandardWindowController* m_controller;

    std::optional<quint32> m_pasteTarget;
    QString m_query;
    QPointer<QWidget> m_content;
    QPointer<QLineEdit> m_searchField;
    QPointer<QListView> m_list;
    QPointer<QLabel> m_empty;
    QPointer<QLabel> m_hints;
    ClipboardHistoryListModel* m_model = nullptr;
    bool m_forwarding = false;

    // Started when the panel opens or the search changes; read when the list has painted next.
    QElapsedTimer m_sincePaintWanted;
    double* m_paintMeasure = nullptr;
    double m_lastOpenMs = 0;
    double m_lastSearchMs = 0;
    double m_lastSearchPaintedMs = 0;
};

} // namespace velmora
