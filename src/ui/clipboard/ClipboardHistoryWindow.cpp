#include "ui/clipboard/ClipboardHistoryWindow.h"

#include "app/StandardWindowController.h"
#include "app/UserPreferences.h"
#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardHistory.h"
#include "core/KeyEvent.h"
#include "core/MainThread.h"
#include "platform/KeyboardLayout.h"
#include "platform/Screens.h"
#include "platform/Workspace.h"
#include "ui/PanelBindings.h"
#include "ui/PanelPlacement.h"
#include "ui/clipboard/ClipboardHistoryListModel.h"
#include "ui/clipboard/ClipboardHistoryRowDelegate.h"
#include "ui/clipboard/QuickLookHelper.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace velmora {

namespace {

constexpr int kMargin = 8;
constexpr double kWidth = 640;
constexpr double kHeightShare = 0.65;

using A = KeyboardAppAction;

// The panel's bindings, in the order their hints are shown.
const PanelBindings& panelBindings() {
    static const PanelBindings bindings = {
        {A::clipboardSelect, "paste"},      {A::clipboardPastePlainText, "paste as plain text"},
        {A::clipboardQuickLook, "preview"}, {A::clipboardShowInFinder, "show file"},
        {A::clipboardOpenURL, "open link"}, {A::clipboardDelete, "delete"},
        {A::clipboardSearch, "search"},     {A::clipboardPasteOriginal, "paste as it was"},
        {A::clipboardPrevious, nullptr},    {A::clipboardNext, nullptr},
    };
    return bindings;
}

// Keys that mean nothing to a text field, so they act on the list even while the user types a search.
bool isNavigationKey(std::uint16_t keyCode) {
    return keyCode == 36 || keyCode == 76 || keyCode == 125 || keyCode == 126 || keyCode == 116 ||
           keyCode == 121;
}

} // namespace

ClipboardHistoryWindow::ClipboardHistoryWindow(AppModelContainer& store, ClipboardHistory& actions,
                                               Search search, QuickLookHelper* preview, Workspace& workspace,
                                               const Screens& screens, UserPreferences& preferences,
                                               const KeyboardLayout& layout, std::function<qint64()> nowMs,
                                               QObject* parent)
    : QObject(parent), m_store(store), m_actions(actions), m_search(std::move(search)), m_preview(preview),
      m_workspace(workspace), m_screens(screens), m_preferences(preferences), m_layout(layout),
      m_now(std::move(nowMs)) {
    m_controller = new StandardWindowController(
        layout, QStringLiteral("Clipboard History"), StandardWindowPreset::dropDownPanel(),
        [this]() -> QWidget* { return m_content ? m_content.data() : new QWidget(); }, this);
    // The panel opens many times a day and must appear at once: it is kept, hidden, between uses.
    m_controller->keepPanelWhenClosed();
    m_controller->onClose = [this] { panelClosed(); };
    m_actions.closeWindow = [this] { close(); };
    m_actions.quickLook = [this](const SimpleClipboardItem& entry) {
        if (!m_preview)
            return;
        if (m_controller->window())
            m_preview->setAnchor(m_controller->window()->frameGeometry());
        m_preview->toggle(entry);
    };
    // A capture or a deletion while the user searches: the list follows, the search text stays.
    connect(&m_store, &AppModelContainer::itemAdded, this, [this] {
        if (isOpen() && !m_query.isEmpty())
            refreshFilter();
    });
}

ClipboardHistoryWindow::~ClipboardHistoryWindow() {
    m_actions.closeWindow = nullptr;
    m_actions.quickLook = nullptr;
    m_controller->onClose = nullptr;
    m_controller->close();
}

bool ClipboardHistoryWindow::isOpen() const {
    return m_controller->isShown();
}

QWidget* ClipboardHistoryWindow::panel() const {
    return m_controller->window();
}

int ClipboardHistoryWindow::selectedRow() const {
    return m_list && m_list->currentIndex().isValid() ? m_list->currentIndex().row() : -1;
}

int ClipboardHistoryWindow::rowCount() const {
    return m_model ? m_model->rowCount() : 0;
}

const SimpleClipboardItem* ClipboardHistoryWindow::entry(int row) const {
    return m_model ? m_model->entry(row) : nullptr;
}

QString ClipboardHistoryWindow::searchText() const {
    return m_query;
}

void ClipboardHistoryWindow::open() {
    assertMainThread("ClipboardHistoryWindow::open");
    if (isOpen()) {
        m_controller->show();
        return;
    }
    m_sincePaintWanted.start();
    m_paintMeasure = &m_lastOpenMs;
    // Where the paste goes: the window in front now, before the panel takes the keyboard.
    const auto focused = m_workspace.focusedWindow();
    m_pasteTarget = focused ? std::optional(focused->id) : std::nullopt;
    m_query.clear();
    if (m_controller->window() && m_content)
        resetContent();
    else
        m_content = buildContent();
    select(0);
    updateEmptyState();

    std::optional<Rect> frame;
    if (const auto usable = PanelPlacement::mainUsableArea(m_screens))
        frame = PanelPlacement::centredIn(*usable, kWidth, std::floor(usable->height * kHeightShare));
    m_controller->show(frame);
    m_controller->window()->installEventFilter(this);
    m_list->setFocus();
}

void ClipboardHistoryWindow::close() {
    if (m_preview)
        m_preview->close();
    m_controller->close();
}

QWidget* ClipboardHistoryWindow::buildContent() {
    auto* content = new QWidget();
    content->setObjectName("ClipboardHistory");
    content->setAttribute(Qt::WA_StyledBackground);
    content->setStyleSheet(
        "#ClipboardHistory { background: palette(window); border: 1px solid palette(mid); }");
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(6);

    m_searchField = new QLineEdit();
    m_searchField->setObjectName("clipboardHistorySearch");
    m_searchField->setPlaceholderText("Search clipboard history");
    m_searchField->setClearButtonEnabled(true);
    m_searchField->installEventFilter(this);
    layout->addWidget(m_searchField);

    m_model = new ClipboardHistoryListModel(m_store, content);
    m_list = new QListView();
    m_list->setObjectName("clipboardHistoryList");
    m_list->setModel(m_model);
    m_list->setItemDelegate(new ClipboardHistoryRowDelegate(
        [this] { return m_preferences.theme.value().clipboardUseCompactView; }, [this] { return m_query; },
        m_now, m_list));
    m_list->setUniformItemSizes(true);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    PanelPlacement::keepSelectionColourWhenInactive(*m_list);
    m_list->installEventFilter(this);
    m_list->viewport()->installEventFilter(this);
    layout->addWidget(m_list, 1);

    m_empty = new QLabel();
    m_empty->setObjectName("clipboardHistoryEmpty");
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_empty->setForegroundRole(QPalette::PlaceholderText);
    m_empty->hide();
    layout->addWidget(m_empty, 1);

    m_hints = new QLabel(hintsText());
    m_hints->setObjectName("clipboardHistoryHints");
    m_hints->setWordWrap(true);
    m_hints->setForegroundRole(QPalette::PlaceholderText);
    QFont small = m_hints->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    m_hints->setFont(small);
    layout->addWidget(m_hints);

    connect(m_searchField, &QLineEdit::textChanged, this, &ClipboardHistoryWindow::searchChanged);
    connect(m_list, &QListView::clicked, this, [this](const QModelIndex& index) { select(index.row()); });
    connect(m_list, &QListView::activated, this, [this](const QModelIndex& index) {
        select(index.row());
        trigger(A::clipboardSelect);
    });
    connect(m_model, &ClipboardHistoryListModel::rowsChangedUnderneath, this, [this] {
        if (selectedRow() < 0 && m_model->rowCount() > 0)
            select(0);
        updateEmptyState();
    });
    return content;
}

// The kept panel as a fresh one would be: no search, the newest entries, the current key hints.
void ClipboardHistoryWindow::resetContent() {
    {
        const QSignalBlocker quiet(m_searchField);
        m_searchField->clear();
    }
    m_model->setFilter(std::nullopt);
    m_list->scrollToTop();
    m_hints->setText(hintsText());
}

QString ClipboardHistoryWindow::hintsText() const {
    return panelHintsText(panelBindings(), m_preferences.keyboardBindings.value(), m_layout);
}

void ClipboardHistoryWindow::searchChanged(const QString& text) {
    m_sincePaintWanted.start();
    m_paintMeasure = &m_lastSearchPaintedMs;
    m_query = text;
    refreshFilter();
    m_lastSearchMs = double(m_sincePaintWanted.nsecsElapsed()) / 1e6;
}

void ClipboardHistoryWindow::refreshFilter() {
    if (!m_model)
        return;
    const QUuid keep = selectedRow() >= 0 ? m_model->entry(selectedRow())->id : QUuid();
    m_model->setFilter(m_search ? m_search(m_query) : std::nullopt);
    const int row = keep.isNull() ? -1 : m_model->rowOf(keep);
    select(m_query.isEmpty() && row >= 0 ? row : 0);
    updateEmptyState();
    m_list->viewport()->update();
}

void ClipboardHistoryWindow::updateEmptyState() {
    if (!m_list)
        return;
    const bool empty = m_model->rowCount() == 0;
    m_list->setVisible(!empty);
    m_empty->setVisible(empty);
    m_empty->setText(m_query.isEmpty() ? QString("Nothing copied yet.\nWhat you copy in any application "
                                                 "appears here.")
                                       : QString("No entry contains “%1”.").arg(m_query));
}

void ClipboardHistoryWindow::select(int row) {
    if (!m_list)
        return;
    while (row >= m_model->rowCount() && m_model->canFetchMore({}))
        m_model->fetchMore({});
    if (row < 0 || row >= m_model->rowCount()) {
        m_list->setCurrentIndex({});
        return;
    }
    const QModelIndex index = m_model->index(row);
    m_list->setCurrentIndex(index);
    m_list->scrollTo(index);
}

void ClipboardHistoryWindow::step(int delta) {
    const int row = selectedRow();
    const int next = row < 0 ? 0 : row + delta;
    if (next >= 0 && (next < m_model->rowCount() || m_model->canFetchMore({})))
        select(next);
}

void ClipboardHistoryWindow::trigger(KeyboardAppAction binding) {
    if (binding == A::clipboardPrevious || binding == A::clipboardNext) {
        step(binding == A::clipboardPrevious ? -1 : 1);
        return;
    }
    if (binding == A::clipboardSearch) {
        m_searchField->setFocus();
        m_searchField->selectAll();
        return;
    }
    const SimpleClipboardItem* selected = entry(selectedRow());
    if (!selected)
        return;
    const SimpleClipboardItem e = *selected; // the row may go while the action runs
    switch (binding) {
    case A::clipboardSelect:
    case A::clipboardPasteOriginal:
        m_actions.perform(e, clipboardaction::Paste{}, m_pasteTarget);
        break;
    case A::clipboardPastePlainText:
        m_actions.perform(e, clipboardaction::PastePlainText{}, m_pasteTarget);
        break;
    case A::clipboardShowInFinder:
        if (e.fileURL)
            m_actions.perform(e, clipboardaction::ShowInFinder{*e.fileURL});
        break;
    case A::clipboardQuickLook:
        m_actions.perform(e, clipboardaction::QuickLook{e.fileURL.value_or(QString())});
        break;
    case A::clipboardOpenURL:
        if (e.url)
            m_actions.perform(e, clipboardaction::OpenURL{*e.url});
        break;
    case A::clipboardDelete: {
        const int row = selectedRow();
        m_actions.perform(e, clipboardaction::Delete{});
        if (isOpen())
            select(std::min(row, m_model->rowCount() - 1));
        updateEmptyState();
        break;
    }
    default:
        break;
    }
}

std::optional<KeyboardAppAction> ClipboardHistoryWindow::bindingFor(const KeyEvent& key,
                                                                    bool inSearchField) const {
    const KeyboardShortcut pressed = chordOf(key);
    const auto& bindings = m_preferences.keyboardBindings.value();
    for (const auto& [binding, what] : panelBindings()) {
        const auto& shortcut = bindings.shortcut(binding);
        if (!shortcut || !shortcut->matches(pressed))
            continue;
        // In the search field the plain keys type; only chords and the list's movement keys act.
        if (inSearchField && !shortcut->hasModifier() && !isNavigationKey(shortcut->keyCode))
            return std::nullopt;
        return binding;
    }
    return std::nullopt;
}

bool ClipboardHistoryWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Paint && m_paintMeasure && m_list && watched == m_list->viewport()) {
        // Read once this paint is done: the time the user waited for the list. Then, while the user
        // reads or types on, the rows the next keystroke may list are read ahead.
        QTimer::singleShot(0, this, [this, measure = std::exchange(m_paintMeasure, nullptr)] {
            *measure = double(m_sincePaintWanted.nsecsElapsed()) / 1e6;
            if (m_model)
                m_model->readAhead();
        });
        return false;
    }
    if (event->type() != QEvent::KeyPress || !isOpen())
        return QObject::eventFilter(watched, event);
    auto* qkey = static_cast<QKeyEvent*>(event);
    const bool inSearchField = QApplication::focusWidget() == m_searchField;
    if (qkey->key() == Qt::Key_Escape) {
        // Step by step: the preview, then the search, then the panel.
        if (m_preview && m_preview->isVisible())
            m_preview->close();
        else if (!m_searchField->text().isEmpty()) {
            m_searchField->clear();
            m_list->setFocus(); // the history's keys act again
        } else
            close();
        return true;
    }
    const KeyEvent key = m_layout.translate(*qkey);
    if (const auto binding = bindingFor(key, inSearchField)) {
        trigger(*binding);
        return true;
    }
    // Typing anywhere in the panel searches.
    const bool printable = !qkey->text().isEmpty() && qkey->text().at(0).isPrint() &&
                           !(qkey->modifiers() & (Qt::ControlModifier | Qt::MetaModifier));
    if (printable && !inSearchField && m_searchField && !m_forwarding) {
        m_forwarding = true;
        m_searchField->setFocus();
        QApplication::sendEvent(m_searchField, qkey);
        m_forwarding = false;
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void ClipboardHistoryWindow::panelClosed() {
    if (m_preview)
        m_preview->close();
    if (!m_query.isEmpty() && m_search)
        m_search(QString()); // the search's memory goes with the panel
    m_query.clear();
    if (m_controller->window()) { // kept for the next opening, without the rows it read
        m_model->release();
        return;
    }
    m_model = nullptr;
    m_searchField = nullptr;
    m_list = nullptr;
    m_empty = nullptr;
    m_hints = nullptr;
    m_content = nullptr;
}

} // namespace velmora
