#include "ui/KeyboardShortcutsPreferencesPage.h"

#include "app/EventTap.h"
#include "app/UserPreferences.h"
#include "ui/KeyboardShortcutField.h"

#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

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

KeyboardShortcutsPreferencesPage::KeyboardShortcutsPreferencesPage(UserPreferences& preferences,
                                                                   KeyboardShortcutModel& model,
                                                                   const KeyboardLayout& layout,
                                                                   EventTap& tap, QWidget* parent)
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
        auto* heading = new QLabel(QStringLiteral("<b>%1</b>").arg(groupTitle(group).toHtmlEscaped()));
        heading->setObjectName(QStringLiteral("heading"));
        if (row > 0)
            heading->setContentsMargins(0, 10, 0, 0);
        grid->addWidget(heading, row++, 0, 1, 2);
        for (const KeyboardAppAction action : allKeyboardAppActions()) {
            if (velmora::group(action) != group)
                continue;
            auto* field = new KeyboardShortcutField(model, layout);
            field->setObjectName(rawName(action));
            field->setRequireModifier(shortcutRequiresModifier(action));
            field->setCanDisable(true);
            field->onChange = [&preferences, action](const KeyboardShortcut& shortcut) {
                auto bindings = preferences.keyboardBindings.value();
                bindings.shortcut(action) = shortcut;
                preferences.keyboardBindings.setValue(bindings);
            };
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

    refresh();
    connect(&preferences.keyboardBindings, &CKValueObservableBase::valueChanged, this,
            &KeyboardShortcutsPreferencesPage::refresh);
    connect(&tap, &EventTap::refusedChordsChanged, this, &KeyboardShortcutsPreferencesPage::refresh);
}

void KeyboardShortcutsPreferencesPage::refresh() {
    const KeyboardBindings& bindings = m_preferences.keyboardBindings.value();
    for (const KeyboardAppAction action : allKeyboardAppActions()) {
        KeyboardShortcutField* row = field(action);
        row->setExistingShortcut(bindings.shortcut(action));
        row->setRefusedReason(refusalOf(bindings.shortcut(action), m_tap.refusedChords()));
    }
}

} // namespace velmora
