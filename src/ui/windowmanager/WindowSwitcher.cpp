#include "ui/windowmanager/WindowSwitcher.h"

#include "app/KeyboardShortcutModel.h"
#include "app/StandardWindowController.h"
#include "core/MainThread.h"
#include "platform/Accessibility.h"
#include "platform/Screens.h"
#include "platform/Workspace.h"
#include "ui/PanelPlacement.h"
#include "ui/windowmanager/WindowRowDelegate.h"
#include "windowmanager/LowLevelHelpers.h"
#include "windowmanager/WindowsCache.h"

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

using Row = WindowRowDelegate;
constexpr int kMargin = 8;
constexpr int kSpacing = 6;
// The list grows with the number of windows up to this share of the screen, then scrolls.
constexpr double kMaxHeightShare = 0.6;

QString searchText(const WindowInfo& w) {
    return w.appName.value_or(QString()) + " - " + w.title.value_or(QString());
}

QString rowText(const WindowInfo& w) {
    return w.appName.value_or(QString()) + QString::fromUtf8(" — ") + w.title.value_or(QString());
}

} // namespace

WindowSwitcher::WindowSwitcher(WindowsCache& cache, Accessibility& access, const Screens& screens,
                               Workspace* workspace, KeyboardShortcutModel& keys,
                               const KeyboardLayout& layout, std::function<double()> panelWidth,
                               QObject* parent)
    : QObject(parent), m_cache(cache), m_access(access), m_screens(screens), m_workspace(workspace),
      m_keys(keys), m_panelWidth(std::move(panelWidth)) {
    // The content is built before the panel so that its height is known when the panel is placed.
    m_controller = new StandardWindowController(
        layout, QStringLiteral("Window Switcher"), StandardWindowPreset::dropDownPanel(),
        [this]() -> QWidget* { return m_content ? m_content.data() : new QWidget(); }, this);
    m_controller->onClose = [this] { panelClosed(); };
    connect(&m_keys, &KeyboardShortcutModel::changed, this, &WindowSwitcher::modifiersChanged);
    connect(&m_cache, &WindowsCache::windowsChanged, this, [this] {
        if (!isOpen())
            return;
        // Keep the user's place when a window opens or closes under the panel.
        const int previous = m_selected;
        const auto keep = previous >= 0 ? std::optional<quint32>(m_rows[previous].id) : std::nullopt;
        reloadRows();
        int index = m_rows.empty() ? -1 : std::clamp(previous, 0, int(m_rows.size()) - 1);
        for (std::size_t i = 0; keep && i < m_rows.size(); ++i)
            if (m_rows[i].id == *keep)
                index = int(i);
        select(index);
    });
}

WindowSwitcher::~WindowSwitcher() {
    // The panel is a top-level widget of its own and would outlive the switcher.
    m_controller->onClose = nullptr;
    m_controller->close();
}

bool WindowSwitcher::isOpen() const {
    return m_controller->isShown();
}

QWidget* WindowSwitcher::panel() const {
    return m_controller->window();
}

void WindowSwitcher::open(bool previous) {
    assertMainThread("WindowSwitcher::open");
    if (isOpen()) {
        step(previous ? -1 : 1);
        // The chord pressed again while the panel was open from elsewhere: its release now chooses.
        if (!m_userTookOver && anyModifierHeld())
            m_chooseOnRelease = true;
        return;
    }

    m_cache.refresh();
    m_filter.clear();
    m_userTookOver = false;
    reloadRows();
    const int n = int(m_rows.size());
    // Forward starts on the window used before the current one, which is what a quick tap switches to.
    if (n == 0)
        m_selected = -1;
    else if (previous)
        m_selected = n - 1;
    else
        m_selected = n >= 2 ? 1 : 0;
    // Only a modifier held now can be let go to choose; a release before this moment does not count.
    m_chooseOnRelease = anyModifierHeld();

    m_content = buildContent();
    fillList();

    std::optional<Rect> frame;
    if (const auto usable = PanelPlacement::mainUsableArea(m_screens)) {
        m_content->ensurePolished();
        const int rowHeight = m_list->count() > 0 ? m_list->sizeHintForRow(0)
                                                  : QFontMetrics(m_list->font()).height() + Row::kRowPadding;
        const double natural = 2 * kMargin + m_search->sizeHint().height() + kSpacing +
                               std::max(1, n) * rowHeight + 2 * m_list->frameWidth();
        frame = PanelPlacement::centredIn(*usable, m_panelWidth(),
                                          std::min(natural, std::floor(usable->height * kMaxHeightShare)));
    }
    m_controller->show(frame);
    m_controller->window()->installEventFilter(this);
    m_search->setFocus();
    if (m_selected >= 0)
        m_list->scrollToItem(m_list->item(m_selected));
}

void WindowSwitcher::search() {
    assertMainThread("WindowSwitcher::search");
    if (!isOpen())
        open(false);
    m_userTookOver = true;
    m_chooseOnRelease = false;
    if (m_search) {
        m_search->setFocus();
        m_search->selectAll();
    }
}

void WindowSwitcher::choose() {
    assertMainThread("WindowSwitcher::choose");
    m_chooseOnRelease = false;
    if (m_selected >= 0 && m_selected < int(m_rows.size())) {
        const WindowInfo chosen = m_rows[m_selected];
        m_access.focus(chosen.id, true);
        m_access.raise(chosen.id);
        // Recorded at once so that the next opening puts this window first without waiting for a tick.
        m_cache.recordFocus(chosen.id);
    }
    close();
}

void WindowSwitcher::close() {
    m_controller->close();
}

QWidget* WindowSwitcher::buildContent() {
    auto* content = new QWidget();
    content->setObjectName("WindowSwitcher");
    content->setAttribute(Qt::WA_StyledBackground);
    content->setStyleSheet(
        "#WindowSwitcher { background: palette(window); border: 1px solid palette(mid); }");
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kSpacing);

    m_search = new QLineEdit();
    m_search->setObjectName("windowSwitcherSearch");
    m_search->setPlaceholderText("Search windows");
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    layout->addWidget(m_search);

    m_list = new QListWidget();
    m_list->setObjectName("windowSwitcherList");
    // The search field keeps the keyboard so that typing always filters.
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setItemDelegate(new WindowRowDelegate(m_list));
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setUniformItemSizes(true);
    PanelPlacement::keepSelectionColourWhenInactive(*m_list);
    m_list->installEventFilter(this);
    layout->addWidget(m_list, 1);
    m_empty = new QLabel();
    m_empty->setObjectName("windowSwitcherEmpty");
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setForegroundRole(QPalette::PlaceholderText);
    m_empty->hide();
    layout->addWidget(m_empty, 1);

    // Typing while the modifier is held narrows the list; letting go still chooses the selected row,
    // the first match.
    connect(m_search, &QLineEdit::textChanged, this, &WindowSwitcher::applyFilter);
    connect(m_list, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { chooseRow(m_list->row(item)); });
    return content;
}

void WindowSwitcher::reloadRows() {
    m_all.clear();
    const auto& visible = m_cache.windowsByID();
    for (const auto& w : m_cache.windows())
        if (visible.contains(w.id))
            m_all.push_back(w);
    const QString filter = m_filter.trimmed();
    m_rows.clear();
    for (const auto& w : m_all)
        if (filter.isEmpty() || searchText(w).contains(filter, Qt::CaseInsensitive))
            m_rows.push_back(w);
    fillList();
}

void WindowSwitcher::applyFilter(const QString& text) {
    if (text == m_filter)
        return;
    m_filter = text;
    reloadRows();
    select(m_rows.empty() ? -1 : 0);
}

void WindowSwitcher::fillList() {
    if (!m_list)
        return;
    m_list->clear();
    for (const auto& w : m_rows) {
        auto* item = new QListWidgetItem(rowText(w), m_list);
        item->setData(Row::AppNameRole, w.appName.value_or(QString()));
        item->setData(Row::TitleRole, w.title.value_or(QString()));
        if (m_workspace)
            item->setData(Row::IconRole,
                          m_workspace->applicationIcon(w.id, w.appName.value_or(QString()),
                                                       Row::kIconSize * m_list->devicePixelRatio()));
    }
    select(m_selected < int(m_rows.size()) ? m_selected : -1);
    // An empty list says why, so the panel never looks broken.
    const bool empty = m_rows.empty();
    m_list->setVisible(!empty);
    m_empty->setVisible(empty);
    m_empty->setText(m_filter.trimmed().isEmpty()
                         ? QString("No windows on this desktop")
                         : QString("No window matches “%1”").arg(m_filter.trimmed()));
}

void WindowSwitcher::select(int index) {
    m_selected = index;
    if (!m_list)
        return;
    m_list->setCurrentRow(index);
    if (index >= 0)
        m_list->scrollToItem(m_list->item(index));
}

void WindowSwitcher::step(int delta) {
    const int n = int(m_rows.size());
    if (n == 0)
        return;
    select(((std::max(m_selected, 0) + delta) % n + n) % n);
}

void WindowSwitcher::chooseRow(int index) {
    if (index < 0 || index >= int(m_rows.size()))
        return;
    select(index);
    choose();
}

bool WindowSwitcher::anyModifierHeld() const {
    return m_keys.alt() || m_keys.control() || m_keys.command() || m_keys.shift();
}

void WindowSwitcher::modifiersChanged() {
    if (m_chooseOnRelease && isOpen() && !anyModifierHeld())
        choose();
}

bool WindowSwitcher::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !isOpen())
        return QObject::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Up:
    case Qt::Key_Backtab:
        step(-1);
        return true;
    case Qt::Key_Down:
        step(1);
        return true;
    case Qt::Key_Tab:
        step(key->modifiers() & Qt::ShiftModifier ? -1 : 1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose();
        return true;
    case Qt::Key_Escape:
        close();
        return true;
    default:
        break;
    }
    // A printable key that reached the panel while the search field lacked the keyboard belongs in the
    // field. With the field focused, keys it passes on travel up to the panel and are left alone there.
    const bool printable = !key->text().isEmpty() && key->text().at(0).isPrint() &&
                           !(key->modifiers() & (Qt::ControlModifier | Qt::MetaModifier));
    if (printable && m_search && watched != m_search && QApplication::focusWidget() != m_search &&
        !m_forwarding) {
        m_forwarding = true;
        m_search->setFocus();
        QApplication::sendEvent(m_search, key);
        m_forwarding = false;
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void WindowSwitcher::panelClosed() {
    m_chooseOnRelease = false;
    m_userTookOver = false;
    m_filter.clear();
    m_all.clear();
    m_rows.clear();
    m_selected = -1;
    m_search = nullptr;
    m_list = nullptr;
    m_content = nullptr;
}

} // namespace velmora
