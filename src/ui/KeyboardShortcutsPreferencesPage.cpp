#include "ui/KeyboardShortcutsPreferencesPage.h"

#include "app/EventTap.h"
#include "app/UserPreferences.h"
#include "core/ShortcutUse.h"
#include "ui/KeyboardShortcutField.h"
#include "ui/UndoBar.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

namespace velmora {

namespace {

constexpr ShortcutGroup kGroups[] = {ShortcutGroup::WindowManager, ShortcutGroup::WindowSwitcher,
                                     ShortcutGroup::ClipboardHistory, ShortcutGroup::Dashboards};

// Refusals name the chord that was asked for, which is never disabled; a binding switched off is not
// reserved at all, so a refusal left over from before does not apply to it.
QString refusalOf(const KeyboardBindings::Binding& binding, const std::vector<RefusedChord>& refused) {
    if (!binding || binding->disabled)
        return {};
    for (const RefusedChord& chord : refused) {
        KeyboardShortcut asked = chord.shortcut;
        asked.disabled = false;
        if (asked == *binding)
            return chord.reason;
    }
    return {};
}

} // namespace

bool shortcutRequiresModifier(KeyboardAppAction action) {
    // The dashboard has no factory shortcut, but whatever the user gives it is global.
    if (action == KeyboardAppAction::openSystemMonitoringDashboard)
        return true;
    const auto& factory = KeyboardBindings{}.shortcut(action);
    return factory && factory->hasModifier();
}

KeyboardShortcutsPreferencesPage::KeyboardShortcutsPreferencesPage(
    UserPreferences& preferences, KeyboardShortcutModel& model, const KeyboardLayout& layout, EventTap& tap,
    std::function<bool(KeyboardAppAction)> offered, QWidget* parent)
    : QWidget(parent), m_preferences(preferences), m_tap(tap) {
    auto* layoutBox = new QVBoxLayout(this);
    layoutBox->addWidget(new QLabel(QStringLiteral("<h3>%1</h3>").arg(QString::fromUtf8(kTitle))));

    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("shortcuts"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    // One grid for all groups, so that the fields line up from the first heading to the last.
    auto* content = new QWidget;
    auto* grid = new QGridLayout(content);
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(12);
    int row = 0;
    for (const ShortcutGroup group : kGroups) {
        const auto inGroup = [&](KeyboardAppAction action) {
            return velmora::group(action) == group && (!offered || offered(action));
        };
        if (std::none_of(allKeyboardAppActions().begin(), allKeyboardAppActions().end(), inGroup))
            continue;
        auto* heading = new QLabel(QStringLiteral("<b>%1</b>").arg(groupTitle(group).toHtmlEscaped()));
        heading->setObjectName(QStringLiteral("heading"));
        if (row > 0)
            heading->setContentsMargins(0, 10, 0, 0);
        grid->addWidget(heading, row++, 0, 1, 2);
        for (const KeyboardAppAction action : allKeyboardAppActions()) {
            if (!inGroup(action))
                continue;
            auto* field = new KeyboardShortcutField(model, layout);
            field->setObjectName(rawName(action));
            field->setRequireModifier(shortcutRequiresModifier(action));
            field->setGlobal(isGlobalAction(action));
            field->setCanDisable(true);
            if (isGlobalAction(action))
                field->usesOf = [&preferences, action](const KeyboardShortcut& chord) {
                    return otherShortcutUses(preferences.keyboardBindings.value(),
                                             preferences.windowManager.value().areas, chord, action, false);
                };
            field->onChange = [this, action](const KeyboardShortcut& shortcut) { assign(action, shortcut); };
            auto* label = new QLabel(title(action));
            label->setBuddy(field);
            grid->addWidget(label, row, 0, Qt::AlignVCenter);
            grid->addWidget(field, row++, 1);
            m_fields[std::size_t(action)] = field;
        }
    }
    grid->setRowStretch(row, 1);
    scroll->setWidget(content);
    layoutBox->addWidget(scroll, 1);

    m_undo = new UndoBar;
    layoutBox->addWidget(m_undo);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    m_restore = new QPushButton(QStringLiteral("Restore Defaults"));
    m_restore->setObjectName(QStringLiteral("restoreShortcuts"));
    m_restore->setToolTip(QStringLiteral("Give every action the shortcut Velmora comes with"));
    buttons->addWidget(m_restore);
    layoutBox->addLayout(buttons);
    connect(m_restore, &QPushButton::clicked, this, &KeyboardShortcutsPreferencesPage::restoreDefaults);

    refresh();
    connect(&preferences.keyboardBindings, &CKValueObservableBase::valueChanged, this,
            &KeyboardShortcutsPreferencesPage::refresh);
    connect(&tap, &EventTap::refusedChordsChanged, this, &KeyboardShortcutsPreferencesPage::refresh);
}

// The chord is taken from whatever else had it first (the user agreed in the field), zones before
// bindings, so that no record is ever stored with one chord doing two things.
void KeyboardShortcutsPreferencesPage::assign(KeyboardAppAction action, const KeyboardShortcut& shortcut) {
    m_undo->dismiss();
    auto bindings = m_preferences.keyboardBindings.value();
    auto zones = m_preferences.windowManager.value().areas;
    if (isGlobalAction(action) && !shortcut.disabled)
        removeShortcutUses(bindings, zones, otherShortcutUses(bindings, zones, shortcut, action, false));
    bindings.shortcut(action) = shortcut;
    write(bindings, zones);
}

// Zones that took a factory chord meanwhile give it back, as when the user replaces a zone's chord.
void KeyboardShortcutsPreferencesPage::restoreDefaults() {
    const KeyboardBindings previousBindings = m_preferences.keyboardBindings.value();
    const std::vector<WindowArea> previousZones = m_preferences.windowManager.value().areas;
    const KeyboardBindings factory;
    std::vector<WindowArea> zones = previousZones;
    for (const KeyboardAppAction action : allKeyboardAppActions()) {
        const auto& chord = factory.shortcut(action);
        if (!isGlobalAction(action) || !chord || chord->disabled)
            continue;
        auto uses = shortcutUses(factory, zones, *chord);
        std::erase_if(uses, [](const ShortcutUse& use) { return !use.zone; });
        KeyboardBindings unused = factory;
        removeShortcutUses(unused, zones, uses);
    }
    if (!write(factory, zones))
        return;
    m_undo->offer(QStringLiteral("Restored the default shortcuts."),
                  [this, previousBindings, previousZones] { write(previousBindings, previousZones); });
}

// Both records, zones first; false (and the rest left alone) when one cannot be stored.
bool KeyboardShortcutsPreferencesPage::write(const KeyboardBindings& bindings,
                                             const std::vector<WindowArea>& zones) {
    if (zones != m_preferences.windowManager.value().areas) {
        auto windowManager = m_preferences.windowManager.value();
        windowManager.areas = zones;
        windowManager.updated = nextUpdatedStamp(windowManager.updated);
        if (!m_preferences.windowManager.setValue(std::move(windowManager)))
            return false;
    }
    return bindings == m_preferences.keyboardBindings.value() ||
           m_preferences.keyboardBindings.setValue(bindings);
}

void KeyboardShortcutsPreferencesPage::refresh() {
    const KeyboardBindings& bindings = m_preferences.keyboardBindings.value();
    for (const KeyboardAppAction action : allKeyboardAppActions()) {
        KeyboardShortcutField* row = field(action);
        if (!row)
            continue;
        row->setExistingShortcut(bindings.shortcut(action));
        row->setRefusedReason(refusalOf(bindings.shortcut(action), m_tap.refusedChords()));
    }
}

} // namespace velmora
