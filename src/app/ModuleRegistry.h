#pragma once

#include "app/ActionProviders.h"
#include "app/AppActionDispatcher.h"
#include "app/Module.h"
#include "app/PanelRows.h"
#include "app/StatusIndicator.h"
#include "core/KeyboardAppAction.h"

#include <QObject>
#include <initializer_list>
#include <map>
#include <set>

namespace velmora {

// What the modules registered: the agent reads it to build matching and grabbing, the command line,
// the status, the preferences window and the drop-down panel.
class ModuleRegistry : public QObject {
    Q_OBJECT
public:
    using PageFactory = std::function<QWidget*()>;
    using PanelRowsFactory = std::function<void(PanelRows&)>;
    using StatusSection = std::function<Json()>;

    ModuleRegistry(AppActionDispatcher& dispatcher, ActionProviders& providers, QObject* parent = nullptr);

    AppActionDispatcher& actions() { return m_dispatcher; }
    void addProvider(ActionProviders::Slot slot, std::unique_ptr<ActionProvider> provider);
    void addCommand(ModuleCommand command);
    void addStatus(const QString& key, StatusSection section);
    void addPreferencePage(const QString& title, PageFactory factory);
    void addPanelRows(PanelRowsFactory factory);
    // The bindings whose shortcuts this module answers, shown on the shortcuts page; the others
    // belong to subsystems this build does not have.
    void addShortcutRows(std::initializer_list<KeyboardAppAction> actions);
    // A state the module shows while it lasts; it is shown from setIndicatorActive(id, true) on.
    void addIndicator(StatusIndicator indicator);
    void setIndicatorActive(const QString& id, bool active);
    // The indicators in force now, in the order they were added.
    std::vector<StatusIndicator> activeIndicators() const;
    // A module's chords depend on more than the preferences (a window appeared): grab them anew.
    void chordsChanged() { emit chordsMayHaveChanged(); }

    const std::vector<ModuleCommand>& commands() const { return m_commands; }
    const ModuleCommand* command(const QString& name) const;
    const std::vector<std::pair<QString, StatusSection>>& statusSections() const { return m_status; }
    const std::vector<std::pair<QString, PageFactory>>& preferencePages() const { return m_pages; }
    const std::vector<PanelRowsFactory>& panelRows() const { return m_panelRows; }
    bool offersShortcut(KeyboardAppAction action) const { return m_shortcutRows.contains(action); }

signals:
    void chordsMayHaveChanged();
    void indicatorsChanged();

private:
    AppActionDispatcher& m_dispatcher;
    ActionProviders& m_providers;
    std::vector<ModuleCommand> m_commands;
    std::vector<std::pair<QString, StatusSection>> m_status;
    std::vector<std::pair<QString, PageFactory>> m_pages;
    std::vector<PanelRowsFactory> m_panelRows;
    std::set<KeyboardAppAction> m_shortcutRows;
    std::vector<std::pair<StatusIndicator, bool>> m_indicators;
};

} // namespace velmora
