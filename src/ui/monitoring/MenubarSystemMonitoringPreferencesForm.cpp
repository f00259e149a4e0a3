#include "ui/monitoring/MenubarSystemMonitoringPreferencesForm.h"

#include "app/UserPreferences.h"
#include "monitoring/MBSMWidgetText.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

namespace velmora {

namespace {

QToolButton* toolButton(const QString& objectName, const QString& text, const QStringList& icons,
                        const QString& toolTip) {
    auto* button = new QToolButton();
    button->setObjectName(objectName);
    button->setText(text);
    button->setToolTip(toolTip);
    // Themed icons where the desktop has them; the text otherwise, so the button never shows blank.
    for (const QString& name : icons)
        if (QIcon::hasThemeIcon(name)) {
            button->setIcon(QIcon::fromTheme(name));
            break;
        }
    button->setToolButtonStyle(button->icon().isNull() ? Qt::ToolButtonTextOnly : Qt::ToolButtonIconOnly);
    return button;
}

QString rowText(const MonitoringWidget& widget) {
    switch (widget.resource) {
    case ResourceType::cpu:
        return "CPU — share of all cores in use";
    case ResourceType::memory:
        return "Memory — share of physical memory in use";
    case ResourceType::network:
        return "Network — bytes moved in the last 5 seconds";
    }
    return {};
}

} // namespace

MenubarSystemMonitoringPreferencesForm::MenubarSystemMonitoringPreferencesForm(UserPreferences& preferences,
                                                                               QWidget* parent)
    : QWidget(parent), m_preferences(preferences) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(QString("<b>%1</b>").arg(kTitle)));

    m_list = new QListWidget();
    m_list->setObjectName("widgets");
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setMinimumHeight(120);
    connect(m_list, &QListWidget::currentRowChanged, this,
            &MenubarSystemMonitoringPreferencesForm::updateButtons);
    layout->addWidget(m_list);

    auto* buttons = new QHBoxLayout();
    buttons->setSpacing(4);
    m_add = toolButton("add", "Add", {"list-add"}, "Add a gauge");
    auto* menu = new QMenu(m_add);
    for (ResourceType resource : {ResourceType::cpu, ResourceType::memory, ResourceType::network})
        menu->addAction(resourceTitle(resource), this, [this, resource] { add(resource); });
    m_add->setMenu(menu);
    m_add->setPopupMode(QToolButton::InstantPopup);
    m_remove = toolButton("remove", "Remove", {"list-remove"}, "Remove the selected gauge");
    m_up = toolButton("up", "Up", {"go-up"}, "Move the selected gauge left");
    m_down = toolButton("down", "Down", {"go-down"}, "Move the selected gauge right");
    m_reset = toolButton("reset", "Reset", {"view-refresh", "edit-undo"}, "Reset");
    connect(m_remove, &QToolButton::clicked, this, &MenubarSystemMonitoringPreferencesForm::removeSelected);
    connect(m_up, &QToolButton::clicked, this, [this] { moveSelected(-1); });
    connect(m_down, &QToolButton::clicked, this, [this] { moveSelected(+1); });
    connect(m_reset, &QToolButton::clicked, this, &MenubarSystemMonitoringPreferencesForm::reset);
    for (QToolButton* b : {m_add, m_remove, m_up, m_down})
        buttons->addWidget(b);
    buttons->addStretch(1);
    buttons->addWidget(m_reset);
    layout->addLayout(buttons);

    connect(&preferences.theme, &CKValueObservableBase::valueChanged, this,
            &MenubarSystemMonitoringPreferencesForm::refresh);
    refresh();
}

void MenubarSystemMonitoringPreferencesForm::refresh() {
    const auto& widgets = m_preferences.theme.value().mbsm.widgets;
    // The selection follows its gauge by id, wherever the gauge went.
    const QUuid selected =
        m_list->currentItem() ? m_list->currentItem()->data(Qt::UserRole).toUuid() : QUuid();
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    for (const MonitoringWidget& widget : widgets) {
        auto* item = new QListWidgetItem(rowText(widget), m_list);
        item->setData(Qt::UserRole, widget.id);
        if (!selected.isNull() && widget.id == selected)
            m_list->setCurrentItem(item);
    }
    updateButtons();
}

void MenubarSystemMonitoringPreferencesForm::updateButtons() {
    const int row = m_list->currentRow(), count = m_list->count();
    m_remove->setEnabled(row >= 0);
    m_up->setEnabled(row > 0);
    m_down->setEnabled(row >= 0 && row + 1 < count);
    m_reset->setEnabled(count > 0);
}

bool MenubarSystemMonitoringPreferencesForm::write(std::vector<MonitoringWidget> widgets) {
    ThemePreferences theme = m_preferences.theme.value();
    theme.mbsm.widgets = std::move(widgets);
    // A refused write leaves the value in force; valueChanged is sent either way and redraws the list.
    return m_preferences.theme.setValue(std::move(theme));
}

void MenubarSystemMonitoringPreferencesForm::add(ResourceType resource) {
    auto widgets = m_preferences.theme.value().mbsm.widgets;
    const MonitoringWidget widget{QUuid::createUuid(), resource};
    widgets.push_back(widget);
    if (write(std::move(widgets)))
        m_list->setCurrentRow(m_list->count() - 1);
}

void MenubarSystemMonitoringPreferencesForm::removeSelected() {
    const int row = m_list->currentRow();
    auto widgets = m_preferences.theme.value().mbsm.widgets;
    if (row < 0 || row >= int(widgets.size()))
        return;
    widgets.erase(widgets.begin() + row);
    if (write(std::move(widgets)) && m_list->count() > 0)
        m_list->setCurrentRow(std::min(row, m_list->count() - 1));
}

void MenubarSystemMonitoringPreferencesForm::moveSelected(int delta) {
    const int row = m_list->currentRow();
    auto widgets = m_preferences.theme.value().mbsm.widgets;
    const int to = row + delta;
    if (row < 0 || row >= int(widgets.size()) || to < 0 || to >= int(widgets.size()))
        return;
    std::swap(widgets[std::size_t(row)], widgets[std::size_t(to)]);
    write(std::move(widgets));
}

void MenubarSystemMonitoringPreferencesForm::reset() {
    write({});
}

} // namespace velmora
