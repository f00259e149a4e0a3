#include "ui/windowmanager/WindowManagerPreferencesPage.h"

#include "app/UserPreferences.h"
#include "core/DefaultValues.h"
#include "core/ShortcutUse.h"
#include "core/ZoneNumber.h"
#include "ui/HintLabel.h"
#include "ui/KeyboardShortcutField.h"
#include "ui/UndoBar.h"
#include "ui/windowmanager/WindowAreaView.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

namespace velmora {

namespace {

using Coordinate = WindowManagerPreferencesPage::Coordinate;

constexpr std::array<QString WindowArea::*, 4> kCoordinateFields = {&WindowArea::x, &WindowArea::y,
                                                                    &WindowArea::w, &WindowArea::h};
constexpr std::array<const char*, 4> kCoordinateNames = {"x", "y", "w", "h"};
constexpr std::array<const char*, 4> kCoordinateLabels = {"X:", "Y:", "Width:", "Height:"};

constexpr std::array<bool WindowArea::*, WindowManagerPreferencesPage::kScreenKindCount> kScreenKindFlags = {
    &WindowArea::availableOnMacbookScreen, &WindowArea::availableOnWideScreen,
    &WindowArea::availableOnUltrawideScreen, &WindowArea::availableOnSuperUltrawideScreen,
    &WindowArea::availableOnVerticalScreen};
constexpr std::array<const char*, WindowManagerPreferencesPage::kScreenKindCount> kScreenKindLabels = {
    "Laptop", "Wide (16/9)", "Ultrawide (21/9)", "Super ultrawide (32/9)", "Vertical"};

bool isPosition(std::size_t coordinate) {
    return coordinate == std::size_t(Coordinate::x) || coordinate == std::size_t(Coordinate::y);
}

bool reads(std::size_t coordinate, const QString& text) {
    return (isPosition(coordinate) ? parseZonePosition(text) : parseZoneSize(text)).has_value();
}

WindowArea newZone() {
    WindowArea zone;
    zone.id = QUuid::createUuid();
    zone.name = QStringLiteral("New Zone");
    zone.x = QStringLiteral("0");
    zone.y = QStringLiteral("0");
    zone.w = QStringLiteral("1/2");
    zone.h = QStringLiteral("1");
    for (bool WindowArea::*flag : kScreenKindFlags)
        zone.*flag = true;
    return zone;
}

int rowOf(const std::vector<WindowArea>& areas, const std::optional<QUuid>& id) {
    if (!id)
        return -1;
    const auto found =
        std::find_if(areas.begin(), areas.end(), [&](const WindowArea& a) { return a.id == *id; });
    return found == areas.end() ? -1 : int(found - areas.begin());
}

} // namespace

WindowManagerPreferencesPage::WindowManagerPreferencesPage(UserPreferences& preferences,
                                                           KeyboardShortcutModel& model,
                                                           const KeyboardLayout& layout,
                                                           WindowManagerPageFeatures features,
                                                           QWidget* parent)
    : QWidget(parent), m_preferences(preferences), m_templates(zoneTemplates()),
      m_windowSwitcher(new QCheckBox(QStringLiteral("Enable window switcher"))),
      m_autoLayout(new QCheckBox(QStringLiteral("Enable auto-layout"))), m_spacing(new QDoubleSpinBox),
      m_mouseSnapping(new QCheckBox(QStringLiteral("Snap windows dragged to an edge or a corner"))),
      m_shiftDisables(new QRadioButton(QStringLiteral("Shift disables mouse snapping"))),
      m_shiftEnables(new QRadioButton(QStringLiteral("Shift enables mouse snapping"))),
      m_list(new QListWidget), m_add(new QPushButton(QStringLiteral("+"))),
      m_remove(new QPushButton(QStringLiteral("−"))) {
    auto* outer = new QVBoxLayout(this);
    outer->addWidget(new QLabel(QStringLiteral("<h3>%1</h3>").arg(QString::fromUtf8(kTitle))));
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    outer->addWidget(scroll, 1);
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);

    m_windowSwitcher->setObjectName(QStringLiteral("enableWindowSwitcher"));
    m_autoLayout->setObjectName(QStringLiteral("enableAutoLayout"));
    column->addWidget(m_windowSwitcher);
    column->addWidget(m_autoLayout);

    auto* spacingRow = new QHBoxLayout;
    auto* spacingLabel = new QLabel(QStringLiteral("Spacing between windows"));
    spacingLabel->setBuddy(m_spacing);
    m_spacing->setObjectName(QStringLiteral("spacing"));
    m_spacing->setRange(0, 5);
    m_spacing->setSingleStep(0.1);
    m_spacing->setDecimals(2);
    // One record per value the user settles on, not one per keystroke.
    m_spacing->setKeyboardTracking(false);
    spacingRow->addWidget(spacingLabel);
    spacingRow->addWidget(m_spacing);
    spacingRow->addStretch(1);
    column->addLayout(spacingRow);

    auto* shiftGroup = new QButtonGroup(this);
    shiftGroup->addButton(m_shiftDisables);
    shiftGroup->addButton(m_shiftEnables);
    m_shiftDisables->setObjectName(QStringLiteral("shiftDisablesDragging"));
    m_shiftEnables->setObjectName(QStringLiteral("shiftEnablesDragging"));
    m_mouseSnapping->setObjectName(QStringLiteral("mouseSnapping"));
    column->addWidget(m_mouseSnapping);
    column->addWidget(m_shiftDisables);
    column->addWidget(m_shiftEnables);
    m_autoLayout->setVisible(features.autoLayout);
    m_mouseSnapping->setVisible(features.dragSnapping);
    m_shiftDisables->setVisible(features.dragSnapping);
    m_shiftEnables->setVisible(features.dragSnapping);

    auto* zonesHeading = new QLabel(QStringLiteral("<b>Zones</b>"));
    zonesHeading->setContentsMargins(0, 10, 0, 0);
    column->addWidget(zonesHeading);
    auto* zones = new QHBoxLayout;
    auto* listColumn = new QVBoxLayout;
    m_list->setObjectName(QStringLiteral("zones"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setMinimumWidth(150);
    m_list->setMaximumWidth(260);
    m_list->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    listColumn->addWidget(m_list, 1);
    auto* buttons = new QHBoxLayout;
    m_add->setObjectName(QStringLiteral("addZone"));
    m_remove->setObjectName(QStringLiteral("removeZone"));
    m_add->setToolTip(QStringLiteral("Add a zone"));
    m_remove->setToolTip(QStringLiteral("Remove the selected zone"));
    for (QPushButton* button : {m_add, m_remove}) {
        button->setFixedWidth(button->fontMetrics().height() * 2);
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    m_restore = new QPushButton(QStringLiteral("Restore Defaults"));
    m_restore->setObjectName(QStringLiteral("restoreZones"));
    m_restore->setToolTip(QStringLiteral("Replace the zones with the ones Velmora comes with"));
    buttons->addWidget(m_restore);
    listColumn->addLayout(buttons);
    m_undo = new UndoBar;
    listColumn->addWidget(m_undo);
    zones->addLayout(listColumn);
    zones->addWidget(makeEditor(model, layout), 1);
    column->addLayout(zones, 1);

    scroll->setWidget(content);

    connect(m_windowSwitcher, &QCheckBox::toggled, this,
            [this](bool on) { writeSettings([on](auto& p) { p.enableWindowSwitcher = on; }); });
    connect(m_autoLayout, &QCheckBox::toggled, this,
            [this](bool on) { writeSettings([on](auto& p) { p.enableAutoLayout = on; }); });
    connect(m_spacing, &QDoubleSpinBox::valueChanged, this,
            [this](double value) { writeSettings([value](auto& p) { p.spacing = value; }); });
    connect(m_mouseSnapping, &QCheckBox::toggled, this, [this](bool on) {
        if (on != m_preferences.local.mouseSnappingEnabled())
            m_preferences.local.setMouseSnappingEnabled(on);
        refresh();
    });
    connect(&preferences.local, &LocalUserPreferences::changed, this, [this](const QString& key) {
        if (key == "WindowManagerMouseSnapping")
            refresh();
    });
    connect(m_shiftEnables, &QRadioButton::toggled, this,
            [this](bool on) { writeSettings([on](auto& p) { p.shiftEnablesDragging = on; }); });
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        const auto& areas = m_preferences.windowManager.value().areas;
        if (row < 0 || row >= int(areas.size()))
            return;
        m_selected = areas[std::size_t(row)].id;
        m_selectedRow = row;
        loadEditor();
    });
    connect(m_add, &QPushButton::clicked, this, &WindowManagerPreferencesPage::addZone);
    connect(m_remove, &QPushButton::clicked, this, &WindowManagerPreferencesPage::removeSelectedZone);
    connect(m_restore, &QPushButton::clicked, this, &WindowManagerPreferencesPage::restoreDefaultZones);

    refresh();
    connect(&preferences.windowManager, &CKValueObservableBase::valueChanged, this,
            &WindowManagerPreferencesPage::refresh);
}

QWidget* WindowManagerPreferencesPage::makeEditor(KeyboardShortcutModel& model,
                                                  const KeyboardLayout& layout) {
    m_editor = new QWidget;
    m_editor->setObjectName(QStringLiteral("zoneEditor"));
    auto* form = new QVBoxLayout(m_editor);
    form->setContentsMargins(8, 0, 0, 0);

    auto* nameRow = new QHBoxLayout;
    m_name = new QLineEdit;
    m_name->setObjectName(QStringLiteral("name"));
    auto* nameLabel = new QLabel(QStringLiteral("Name:"));
    nameLabel->setBuddy(m_name);
    nameRow->addWidget(nameLabel);
    nameRow->addWidget(m_name, 1);
    form->addLayout(nameRow);
    connect(m_name, &QLineEdit::editingFinished, this, [this] {
        const QString text = m_name->text();
        editSelectedZone([&text](WindowArea& a) { a.name = text; });
    });

    // The four numbers two by two, the help under them and the preview beside.
    auto* shape = new QHBoxLayout;
    auto* numbers = new QVBoxLayout;
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(6);
    for (std::size_t i = 0; i < 4; ++i) {
        auto* field = new QLineEdit;
        field->setObjectName(QString::fromLatin1(kCoordinateNames[i]));
        field->setMaximumWidth(field->fontMetrics().horizontalAdvance(QStringLiteral("0000000000")));
        auto* label = new QLabel(QString::fromLatin1(kCoordinateLabels[i]));
        label->setBuddy(field);
        auto* mark = new QLabel(QStringLiteral("⚠"));
        mark->setObjectName(QString::fromLatin1(kCoordinateNames[i]) + QStringLiteral("Invalid"));
        mark->setToolTip(isPosition(i) ? QStringLiteral("A position must be at least 0 and less than 1.")
                                       : QStringLiteral("A size must be more than 0 and at most 1."));
        // Holds its place while hidden, so that the fields do not shift when it comes and goes.
        QSizePolicy keepPlace = mark->sizePolicy();
        keepPlace.setRetainSizeWhenHidden(true);
        mark->setSizePolicy(keepPlace);
        QPalette markColors = mark->palette();
        markColors.setColor(QPalette::WindowText, WindowAreaView::warningColor());
        mark->setPalette(markColors);
        mark->setContentsMargins(0, 0, 8, 0);
        mark->hide();
        const int row = int(i / 2);
        const int col = int(i % 2) * 3;
        grid->addWidget(label, row, col);
        grid->addWidget(field, row, col + 1);
        grid->addWidget(mark, row, col + 2);
        m_coordinates[i] = field;
        m_marks[i] = mark;
        connect(field, &QLineEdit::textChanged, this, &WindowManagerPreferencesPage::updateEditorState);
        connect(field, &QLineEdit::editingFinished, this, [this, i, field] {
            const QString text = field->text();
            editSelectedZone([&text, i](WindowArea& a) { a.*kCoordinateFields[i] = text; });
        });
    }
    numbers->addLayout(grid);
    auto* help = hintLabel(QString::fromUtf8(kCoordinateHelp));
    help->setObjectName(QStringLiteral("coordinateHelp"));
    help->setWordWrap(false);
    numbers->addWidget(help);
    numbers->addStretch(1);
    shape->addLayout(numbers);

    m_preview = new WindowAreaView;
    m_preview->setObjectName(QStringLiteral("preview"));
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        if (!screen->availableGeometry().isEmpty())
            m_preview->setScreenSize(screen->availableGeometry().size());
    }
    shape->addWidget(m_preview, 0, Qt::AlignTop);
    shape->addStretch(1);
    form->addLayout(shape);

    m_templateBox = new QComboBox;
    m_templateBox->setObjectName(QStringLiteral("template"));
    m_templateBox->setPlaceholderText(QStringLiteral("Choose a Template"));
    for (const WindowArea& zone : m_templates)
        m_templateBox->addItem(zone.name);
    m_templateBox->setCurrentIndex(-1);
    m_templateBox->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    form->addWidget(m_templateBox, 0, Qt::AlignLeft);
    connect(m_templateBox, &QComboBox::activated, this, [this](int index) {
        applyTemplate(index);
        // A menu of actions rather than a setting: it goes back to its prompt.
        m_templateBox->setCurrentIndex(-1);
    });

    form->addWidget(new QLabel(QStringLiteral("Available on screen sizes:")));
    auto* kinds = new QGridLayout;
    kinds->setContentsMargins(12, 0, 0, 0);
    for (std::size_t i = 0; i < kScreenKindFlags.size(); ++i) {
        auto* box = new QCheckBox(QString::fromUtf8(kScreenKindLabels[i]));
        box->setObjectName(QStringLiteral("screenKind%1").arg(i));
        kinds->addWidget(box, int(i / 2), int(i % 2));
        m_screenKinds[i] = box;
        connect(box, &QCheckBox::toggled, this, [this, i](bool on) {
            editSelectedZone([on, i](WindowArea& a) { a.*kScreenKindFlags[i] = on; });
        });
    }
    form->addLayout(kinds);

    auto* shortcutRow = new QHBoxLayout;
    m_shortcut = new KeyboardShortcutField(model, layout);
    m_shortcut->setObjectName(QStringLiteral("keyboardShortcut"));
    m_shortcut->setGlobal(true);
    m_shortcut->setCanDisable(true);
    m_shortcut->usesOf = [this](const KeyboardShortcut& chord) {
        return otherShortcutUses(m_preferences.keyboardBindings.value(),
                                 m_preferences.windowManager.value().areas, chord, std::nullopt, true);
    };
    m_shortcut->onChange = [this](const KeyboardShortcut& shortcut) { assignZoneShortcut(shortcut); };
    auto* shortcutLabel = new QLabel(QStringLiteral("Keyboard shortcut"));
    shortcutLabel->setBuddy(m_shortcut);
    shortcutRow->addWidget(shortcutLabel);
    shortcutRow->addWidget(m_shortcut, 1);
    form->addLayout(shortcutRow);
    form->addWidget(
        hintLabel(QStringLiteral("Zones that share a shortcut take turns: pressing it again moves the "
                                 "window to the next of them.")));
    form->addStretch(1);
    return m_editor;
}

void WindowManagerPreferencesPage::refresh() {
    const WindowManagerPreferences& record = m_preferences.windowManager.value();
    {
        const QSignalBlocker a(m_windowSwitcher), b(m_autoLayout), c(m_spacing), d(m_shiftDisables),
            e(m_shiftEnables), f(m_mouseSnapping);
        m_windowSwitcher->setChecked(record.enableWindowSwitcher);
        m_autoLayout->setChecked(record.enableAutoLayout);
        m_spacing->setValue(record.spacing);
        const bool mouse = m_preferences.local.mouseSnappingEnabled();
        m_mouseSnapping->setChecked(mouse);
        m_shiftDisables->setChecked(!record.shiftEnablesDragging);
        m_shiftEnables->setChecked(record.shiftEnablesDragging);
        m_shiftDisables->setEnabled(mouse);
        m_shiftEnables->setEnabled(mouse);
    }
    refreshList(record.areas);
    loadEditor();
}

void WindowManagerPreferencesPage::refreshList(const std::vector<WindowArea>& areas) {
    const QSignalBlocker block(m_list);
    // Rows stay the same items while the zones are the same, so that a click under way on the list
    // still lands on the row it was meant for.
    bool sameRows = m_list->count() == int(areas.size());
    for (int row = 0; sameRows && row < m_list->count(); ++row)
        sameRows = m_list->item(row)->data(Qt::UserRole).toUuid() == areas[std::size_t(row)].id;
    if (!sameRows) {
        m_list->clear();
        for (const WindowArea& zone : areas) {
            auto* item = new QListWidgetItem(m_list);
            item->setData(Qt::UserRole, zone.id);
        }
    }
    const QIcon warning = style()->standardIcon(QStyle::SP_MessageBoxWarning);
    for (std::size_t row = 0; row < areas.size(); ++row) {
        QListWidgetItem* item = m_list->item(int(row));
        item->setText(areas[row].name);
        const bool valid = parseZone(areas[row]).has_value();
        item->setIcon(valid ? QIcon() : warning);
        item->setToolTip(valid ? QString()
                               : QStringLiteral("Not used until its position and size are fixed"));
    }

    int row = rowOf(areas, m_selected);
    if (row < 0)
        row = areas.empty() ? -1 : std::clamp(m_selectedRow, 0, int(areas.size()) - 1);
    m_list->setCurrentRow(row);
    m_selected = row < 0 ? std::nullopt : std::optional(areas[std::size_t(row)].id);
    if (row >= 0)
        m_selectedRow = row;
    m_remove->setEnabled(row >= 0);
}

void WindowManagerPreferencesPage::loadEditor() {
    const auto& areas = m_preferences.windowManager.value().areas;
    const int row = rowOf(areas, m_selected);
    m_editor->setEnabled(row >= 0);
    const WindowArea zone = row >= 0 ? areas[std::size_t(row)] : WindowArea{};

    // Setting the same text again would move the cursor of a field being edited.
    auto setText = [](QLineEdit* field, const QString& text) {
        if (field->text() != text) {
            const QSignalBlocker block(field);
            field->setText(text);
        }
    };
    setText(m_name, zone.name);
    for (std::size_t i = 0; i < 4; ++i)
        setText(m_coordinates[i], zone.*kCoordinateFields[i]);
    for (std::size_t i = 0; i < kScreenKindFlags.size(); ++i) {
        const QSignalBlocker block(m_screenKinds[i]);
        m_screenKinds[i]->setChecked(zone.*kScreenKindFlags[i]);
    }
    m_shortcut->setExistingShortcut(zone.keyboardShortcut);
    updateEditorState();
}

void WindowManagerPreferencesPage::updateEditorState() {
    const bool hasZone = m_selected.has_value();
    for (std::size_t i = 0; i < 4; ++i)
        m_marks[i]->setVisible(hasZone && !reads(i, m_coordinates[i]->text()));
    const WindowArea area = editedArea();
    m_preview->setArea(area);
    m_preview->setValid(!hasZone || parseZone(area).has_value());
}

WindowArea WindowManagerPreferencesPage::editedArea() const {
    WindowArea area;
    area.name = m_name->text();
    for (std::size_t i = 0; i < 4; ++i)
        area.*kCoordinateFields[i] = m_coordinates[i]->text();
    return area;
}

void WindowManagerPreferencesPage::selectZone(const QUuid& id) {
    const int row = rowOf(m_preferences.windowManager.value().areas, id);
    if (row >= 0)
        m_list->setCurrentRow(row);
}

void WindowManagerPreferencesPage::addZone() {
    m_undo->dismiss();
    WindowManagerPreferences record = m_preferences.windowManager.value();
    const WindowArea zone = newZone();
    record.areas.push_back(zone);
    m_selected = zone.id;
    writeZones(std::move(record));
    m_name->setFocus();
    m_name->selectAll();
}

void WindowManagerPreferencesPage::removeSelectedZone() {
    WindowManagerPreferences record = m_preferences.windowManager.value();
    const int row = rowOf(record.areas, m_selected);
    if (row < 0)
        return;
    const WindowArea removed = record.areas[std::size_t(row)];
    record.areas.erase(record.areas.begin() + row);
    // The zone below takes the selection, or the one above when the last was removed.
    m_selected.reset();
    m_selectedRow = row;
    if (!writeZones(std::move(record)))
        return;
    m_undo->offer(QStringLiteral("Deleted zone “%1”.").arg(removed.name), [this, removed, row] {
        WindowManagerPreferences again = m_preferences.windowManager.value();
        // Back in its place, unless it came back some other way in the meantime.
        if (rowOf(again.areas, removed.id) >= 0)
            return;
        again.areas.insert(again.areas.begin() + std::min<std::size_t>(std::size_t(row), again.areas.size()),
                           removed);
        m_selected = removed.id;
        writeZones(std::move(again));
    });
}

// The factory zones, except for a chord the user has since given to a global action: that binding
// was chosen on purpose, so the restored zone comes without it rather than taking it away.
void WindowManagerPreferencesPage::restoreDefaultZones() {
    WindowManagerPreferences record = m_preferences.windowManager.value();
    const std::vector<WindowArea> previous = record.areas;
    record.areas = factoryZones();
    const KeyboardBindings& bindings = m_preferences.keyboardBindings.value();
    for (WindowArea& zone : record.areas)
        if (zone.keyboardShortcut &&
            !otherShortcutUses(bindings, {}, *zone.keyboardShortcut, std::nullopt, true).empty())
            zone.keyboardShortcut.reset();
    m_selected.reset();
    m_selectedRow = 0;
    if (!writeZones(std::move(record)))
        return;
    m_undo->offer(QStringLiteral("Restored the default zones."), [this, previous] {
        WindowManagerPreferences again = m_preferences.windowManager.value();
        again.areas = previous;
        m_selected.reset();
        m_selectedRow = 0;
        writeZones(std::move(again));
    });
}

void WindowManagerPreferencesPage::applyTemplate(int index) {
    if (index < 0 || index >= int(m_templates.size()))
        return;
    const WindowArea& shape = m_templates[std::size_t(index)];
    editSelectedZone([&shape](WindowArea& a) {
        a.name = shape.name;
        for (QString WindowArea::*coordinate : kCoordinateFields)
            a.*coordinate = shape.*coordinate;
        for (bool WindowArea::*flag : kScreenKindFlags)
            a.*flag = shape.*flag;
    });
}

void WindowManagerPreferencesPage::writeSettings(
    const std::function<void(WindowManagerPreferences&)>& change) {
    WindowManagerPreferences record = m_preferences.windowManager.value();
    change(record);
    if (record == m_preferences.windowManager.value())
        return;
    m_preferences.windowManager.setValue(std::move(record));
}

void WindowManagerPreferencesPage::editSelectedZone(const std::function<void(WindowArea&)>& change) {
    WindowManagerPreferences record = m_preferences.windowManager.value();
    const int row = rowOf(record.areas, m_selected);
    if (row < 0)
        return;
    WindowArea& zone = record.areas[std::size_t(row)];
    const WindowArea before = zone;
    change(zone);
    // Leaving a field untouched still ends its editing; that is no change to the zones.
    if (zone == before)
        return;
    m_undo->dismiss();
    writeZones(std::move(record));
}

// The chord is taken from the global bindings that had it first (the user agreed in the field), so
// that no record is ever stored with one chord doing two things.
void WindowManagerPreferencesPage::assignZoneShortcut(const KeyboardShortcut& shortcut) {
    auto bindings = m_preferences.keyboardBindings.value();
    auto zones = m_preferences.windowManager.value().areas;
    if (!shortcut.disabled)
        removeShortcutUses(bindings, zones, otherShortcutUses(bindings, zones, shortcut, std::nullopt, true));
    if (bindings != m_preferences.keyboardBindings.value() &&
        !m_preferences.keyboardBindings.setValue(std::move(bindings)))
        return;
    editSelectedZone([&shortcut](WindowArea& a) { a.keyboardShortcut = shortcut; });
}

bool WindowManagerPreferencesPage::writeZones(WindowManagerPreferences record) {
    record.updated = nextUpdatedStamp(m_preferences.windowManager.value().updated);
    return m_preferences.windowManager.setValue(std::move(record));
}

} // namespace velmora
