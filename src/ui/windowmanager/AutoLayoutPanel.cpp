#include "ui/windowmanager/AutoLayoutPanel.h"

#include "app/StandardWindowController.h"
#include "app/UserPreferences.h"
#include "core/KeyEvent.h"
#include "core/MainThread.h"
#include "platform/KeyboardLayout.h"
#include "platform/Workspace.h"
#include "ui/PanelBindings.h"
#include "ui/PanelPlacement.h"
#include "ui/windowmanager/WindowRowDelegate.h"
#include "windowmanager/AutoLayout.h"
#include "windowmanager/WindowManagerModel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {

using A = KeyboardAppAction;
using Row = WindowRowDelegate;
constexpr int kMargin = 8;
constexpr int kSpacing = 6;
constexpr double kPreferredWidth = 520;
constexpr int kMostRowsShown = 8;

// The panel's bindings, in the order their hints are shown.
const PanelBindings& panelBindings() {
    static const PanelBindings bindings = {
        {A::autoLayoutChooseCandidate, "place here"},
        {A::autoLayoutExpandTabs, "show tabs"},
        {A::autoLayoutCollapseTabs, "hide tabs"},
        {A::autoLayoutPrevious, nullptr},
        {A::autoLayoutNext, nullptr},
    };
    return bindings;
}

bool contains(const QString& text, const QString& filter) {
    return text.contains(filter, Qt::CaseInsensitive);
}

QString windowSearchText(const WindowInfo& w) {
    return w.appName.value_or(QString()) + " - " + w.title.value_or(QString());
}

} // namespace

AutoLayoutPanel::AutoLayoutPanel(AutoLayout& autoLayout, WindowManagerModel& model, WindowTabs& tabs,
                                 const UserPreferences& preferences, const KeyboardLayout& layout,
                                 Workspace* workspace, QObject* parent)
    : QObject(parent), m_autoLayout(autoLayout), m_model(model), m_tabsReader(tabs),
      m_preferences(preferences), m_layout(layout), m_workspace(workspace) {
    m_controller = new StandardWindowController(
        layout, QStringLiteral("Auto-Layout Windows"), StandardWindowPreset::dropDownPanel(),
        [this]() -> QWidget* { return m_content ? m_content.data() : new QWidget(); }, this);
    m_controller->onClose = [this] { panelClosed(); };
    // The proposal can end elsewhere (a command, the window manager switched off): the panel goes with it.
    connect(&m_model, &WindowManagerModel::changed, this, [this] {
        if (isOpen() && !m_model.autoLayoutProposal())
            close();
    });
}

AutoLayoutPanel::~AutoLayoutPanel() {
    m_controller->onClose = nullptr;
    m_controller->close();
}

bool AutoLayoutPanel::isOpen() const {
    return m_controller->isShown();
}

QWidget* AutoLayoutPanel::panel() const {
    return m_controller->window();
}

void AutoLayoutPanel::propose() {
    assertMainThread("AutoLayoutPanel::propose");
    // Asked again while open: a fresh proposal for whatever has the focus now.
    if (isOpen())
        m_controller->close();
    if (!m_autoLayout.propose()) {
        close(); // nothing to fill, or nothing to fill it with: no message, as users expect
        return;
    }
    const AutoLayoutProposal proposal = *m_model.autoLayoutProposal();
    ++m_opening;
    m_candidates = m_autoLayout.candidates();
    m_tabs.clear();
    m_expanded.clear();
    m_filter.clear();
    m_selected = 0;
    m_content = buildContent();
    reloadRows();

    // The panel sits in the middle of the space it proposes, so the eye is already where the window
    // will go.
    const Rect& free = proposal.targetFrames.front();
    m_content->ensurePolished();
    const int rowHeight = m_list->count() > 0 ? m_list->sizeHintForRow(0)
                                              : QFontMetrics(m_list->font()).height() + Row::kRowPadding;
    const int rows = std::clamp(int(m_candidates.size()), 1, kMostRowsShown);
    const double natural = 2 * kMargin + m_heading->sizeHint().height() + m_search->sizeHint().height() +
                           rows * rowHeight + 2 * m_list->frameWidth() + 3 * kSpacing + 40;
    const double width = std::min(kPreferredWidth, std::max(280.0, free.width - 2 * kMargin));
    m_controller->show(PanelPlacement::centredIn(free, width, std::min(natural, std::floor(free.height))));
    m_controller->window()->installEventFilter(this);
    m_search->setFocus();
    emit placed(m_controller->window()->geometry());
    readTabs();
}

void AutoLayoutPanel::readTabs() {
    for (const auto& w : m_candidates)
        m_tabsReader.request(w, [this, opening = m_opening](quint32 window, std::vector<TabInfo> tabs) {
            if (opening == m_opening && isOpen())
                tabsArrived(window, std::move(tabs));
        });
}

void AutoLayoutPanel::tabsArrived(quint32 window, std::vector<TabInfo> tabs) {
    m_tabs[window] = std::move(tabs);
    // Keep the selection on the same row while rows appear above or below it.
    const auto keep =
        m_selected >= 0 && m_selected < int(m_rows.size())
            ? std::optional(std::pair(m_rows[m_selected].window.id, m_rows[m_selected].tabIndex))
            : std::nullopt;
    reloadRows();
    for (std::size_t i = 0; keep && i < m_rows.size(); ++i)
        if (m_rows[i].window.id == keep->first && m_rows[i].tabIndex == keep->second)
            select(int(i));
}

void AutoLayoutPanel::reloadRows() {
    const QString filter = m_filter.trimmed();
    m_rows.clear();
    for (const auto& w : m_candidates) {
        const auto known = m_tabs.find(w.id);
        const bool showTabs = filter.isEmpty() ? m_expanded.contains(w.id) : true;
        if (filter.isEmpty() || contains(windowSearchText(w), filter))
            m_rows.push_back({w, std::nullopt, -1});
        if (!showTabs || known == m_tabs.end())
            continue;
        for (std::size_t i = 0; i < known->second.size(); ++i)
            if (filter.isEmpty() || contains(known->second[i].title, filter))
                m_rows.push_back({w, known->second[i], int(i)});
    }
    fillList();
}

void AutoLayoutPanel::fillList() {
    if (!m_list)
        return;
    m_list->clear();
    for (const auto& row : m_rows) {
        auto* item = new QListWidgetItem(m_list);
        item->setData(Row::AppNameRole, row.window.appName.value_or(QString()));
        if (row.tab) {
            item->setData(Row::IsTabRole, true);
            item->setData(Row::TitleRole, row.tab->title);
            item->setText(row.tab->title);
            continue;
        }
        item->setText(windowSearchText(row.window));
        item->setData(Row::TitleRole, row.window.title.value_or(QString()));
        if (m_workspace)
            item->setData(Row::IconRole,
                          m_workspace->applicationIcon(row.window.id, row.window.appName.value_or(QString()),
                                                       Row::kIconSize * m_list->devicePixelRatio()));
        if (const auto known = m_tabs.find(row.window.id); known != m_tabs.end() && !known->second.empty())
            item->setData(Row::NoteRole, QString("%1 %2 %3")
                                             .arg(known->second.size())
                                             .arg(known->second.size() == 1 ? "tab" : "tabs")
                                             .arg(m_expanded.contains(row.window.id) ? "▾" : "▸"));
    }
    select(m_rows.empty() ? -1 : std::clamp(m_selected, 0, int(m_rows.size()) - 1));
    const bool empty = m_rows.empty();
    m_list->setVisible(!empty);
    m_empty->setVisible(empty);
    m_empty->setText(QString("No window or tab matches “%1”").arg(m_filter.trimmed()));
}

void AutoLayoutPanel::select(int index) {
    m_selected = index;
    if (m_list) {
        m_list->setCurrentRow(index);
        if (index >= 0)
            m_list->scrollToItem(m_list->item(index));
    }
    // The model knows which row has the keyboard, for whoever draws from it.
    auto proposal = m_model.autoLayoutProposal();
    if (!proposal)
        return;
    if (index < 0 || index >= int(m_rows.size()))
        proposal->focus = {AutoLayoutFocus::Kind::search, 0, std::nullopt};
    else
        proposal->focus = {index == 0 ? AutoLayoutFocus::Kind::candidate : AutoLayoutFocus::Kind::window,
                           m_rows[index].window.id,
                           m_rows[index].tab ? std::optional(m_rows[index].tabIndex) : std::nullopt};
    m_model.setAutoLayoutProposal(std::move(proposal));
}

void AutoLayoutPanel::step(int delta) {
    const int n = int(m_rows.size());
    if (n > 0)
        select(((std::max(m_selected, 0) + delta) % n + n) % n);
}

void AutoLayoutPanel::expandTabs(bool expand) {
    if (m_selected < 0 || m_selected >= int(m_rows.size()))
        return;
    const quint32 window = m_rows[m_selected].window.id;
    if (expand)
        m_expanded.insert(window);
    else
        m_expanded.remove(window);
    reloadRows();
    // Collapsing from a tab lands on its window.
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].window.id == window && !m_rows[i].tab) {
            select(int(i));
            break;
        }
}

void AutoLayoutPanel::choose() {
    assertMainThread("AutoLayoutPanel::choose");
    if (m_selected < 0 || m_selected >= int(m_rows.size()))
        return;
    const AutoLayoutSearchResult chosen = m_rows[m_selected];
    if (!m_autoLayout.fill(chosen.window.id)) {
        // The window went away while the panel was open: list what is left.
        m_candidates = m_autoLayout.candidates();
        reloadRows();
        return;
    }
    if (chosen.tab)
        m_tabsReader.select(*chosen.tab);
    close();
}

void AutoLayoutPanel::close() {
    m_controller->close();
}

void AutoLayoutPanel::applyFilter(const QString& text) {
    if (text == m_filter)
        return;
    m_filter = text;
    m_selected = 0;
    reloadRows();
}

QWidget* AutoLayoutPanel::buildContent() {
    auto* content = new QWidget();
    content->setObjectName("AutoLayoutPanel");
    content->setAttribute(Qt::WA_StyledBackground);
    content->setStyleSheet(
        "#AutoLayoutPanel { background: palette(window); border: 1px solid palette(mid); }");
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kSpacing);

    const auto& snapped = m_model.autoLayoutProposal()->snappedWindow;
    m_heading =
        new QLabel(QString("Fill the space beside <b>%1</b>")
                       .arg(snapped.appName.value_or(snapped.title.value_or("this window")).toHtmlEscaped()));
    m_heading->setObjectName("autoLayoutHeading");
    layout->addWidget(m_heading);

    m_search = new QLineEdit();
    m_search->setObjectName("autoLayoutSearch");
    m_search->setPlaceholderText("Search windows and tabs");
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    layout->addWidget(m_search);

    m_list = new QListWidget();
    m_list->setObjectName("autoLayoutList");
    m_list->setFocusPolicy(Qt::NoFocus); // the search field keeps the keyboard, so typing always searches
    m_list->setItemDelegate(new WindowRowDelegate(m_list));
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    PanelPlacement::keepSelectionColourWhenInactive(*m_list);
    layout->addWidget(m_list, 1);
    m_empty = new QLabel();
    m_empty->setObjectName("autoLayoutEmpty");
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setForegroundRole(QPalette::PlaceholderText);
    m_empty->hide();
    layout->addWidget(m_empty, 1);

    auto* hints = new QLabel(hintsText());
    hints->setObjectName("autoLayoutHints");
    hints->setWordWrap(true);
    hints->setForegroundRole(QPalette::PlaceholderText);
    QFont small = hints->font();
    small.setPointSizeF(small.pointSizeF() * 0.9);
    hints->setFont(small);
    layout->addWidget(hints);

    connect(m_search, &QLineEdit::textChanged, this, &AutoLayoutPanel::applyFilter);
    connect(m_list, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        select(m_list->row(item));
        choose();
    });
    return content;
}

QString AutoLayoutPanel::hintsText() const {
    return panelHintsText(panelBindings(), m_preferences.keyboardBindings.value(), m_layout) +
           " &nbsp; <b>Esc</b>&nbsp;close";
}

std::optional<KeyboardAppAction> AutoLayoutPanel::bindingFor(const KeyEvent& key) const {
    const KeyboardShortcut pressed = chordOf(key);
    const auto& bindings = m_preferences.keyboardBindings.value();
    for (const auto& [binding, what] : panelBindings()) {
        const auto& shortcut = bindings.shortcut(binding);
        if (!shortcut || shortcut->disabled || !shortcut->matches(pressed))
            continue;
        // A binding to a bare letter would steal it from the search.
        if (!shortcut->hasModifier() && !key.characters.isEmpty() && key.characters.at(0).isPrint())
            return std::nullopt;
        return binding;
    }
    return std::nullopt;
}

bool AutoLayoutPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !isOpen())
        return QObject::eventFilter(watched, event);
    auto* qkey = static_cast<QKeyEvent*>(event);
    if (qkey->key() == Qt::Key_Escape) {
        if (m_search && !m_search->text().isEmpty())
            m_search->clear();
        else
            close();
        return true;
    }
    if (const auto binding = bindingFor(m_layout.translate(*qkey))) {
        switch (*binding) {
        case A::autoLayoutPrevious:
            step(-1);
            break;
        case A::autoLayoutNext:
            step(1);
            break;
        case A::autoLayoutChooseCandidate:
            choose();
            break;
        case A::autoLayoutExpandTabs:
            expandTabs(true);
            break;
        case A::autoLayoutCollapseTabs:
            expandTabs(false);
            break;
        default:
            break;
        }
        return true;
    }
    const bool printable = !qkey->text().isEmpty() && qkey->text().at(0).isPrint() &&
                           !(qkey->modifiers() & (Qt::ControlModifier | Qt::MetaModifier));
    if (printable && m_search && watched != m_search && QApplication::focusWidget() != m_search &&
        !m_forwarding) {
        m_forwarding = true;
        m_search->setFocus();
        QApplication::sendEvent(m_search, qkey);
        m_forwarding = false;
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void AutoLayoutPanel::panelClosed() {
    ++m_opening;
    m_candidates.clear();
    m_rows.clear();
    m_tabs.clear();
    m_expanded.clear();
    m_filter.clear();
    m_selected = -1;
    m_heading = nullptr;
    m_search = nullptr;
    m_list = nullptr;
    m_empty = nullptr;
    m_content = nullptr;
    emit placed(QRect());
    m_autoLayout.end();
}

} // namespace velmora
