#include "app/ModuleRegistry.h"

namespace velmora {

ModuleRegistry::ModuleRegistry(AppActionDispatcher& dispatcher, ActionProviders& providers, QObject* parent)
    : QObject(parent), m_dispatcher(dispatcher), m_providers(providers) {}

void ModuleRegistry::addProvider(ActionProviders::Slot slot, std::unique_ptr<ActionProvider> provider) {
    m_providers.add(slot, std::move(provider));
}

void ModuleRegistry::addCommand(ModuleCommand command) {
    Q_ASSERT_X(!this->command(command.name), "ModuleRegistry::addCommand", "a command is registered twice");
    m_commands.push_back(std::move(command));
}

const ModuleCommand* ModuleRegistry::command(const QString& name) const {
    for (const auto& c : m_commands)
        if (c.name == name)
            return &c;
    return nullptr;
}

void ModuleRegistry::addStatus(const QString& key, StatusSection section) {
    m_status.emplace_back(key, std::move(section));
}

void ModuleRegistry::addPreferencePage(const QString& title, PageFactory factory) {
    m_pages.emplace_back(title, std::move(factory));
}

void ModuleRegistry::addPanelRows(PanelRowsFactory factory) {
    m_panelRows.push_back(std::move(factory));
}

void ModuleRegistry::addShortcutRows(std::initializer_list<KeyboardAppAction> actions) {
    m_shortcutRows.insert(actions.begin(), actions.end());
}

void ModuleRegistry::addIndicator(StatusIndicator indicator) {
    m_indicators.emplace_back(std::move(indicator), false);
}

void ModuleRegistry::setIndicatorActive(const QString& id, bool active) {
    for (auto& [indicator, isActive] : m_indicators)
        if (indicator.id == id && isActive != active) {
            isActive = active;
            emit indicatorsChanged();
        }
}

std::vector<StatusIndicator> ModuleRegistry::activeIndicators() const {
    std::vector<StatusIndicator> active;
    for (const auto& [indicator, isActive] : m_indicators)
        if (isActive)
            active.push_back(indicator);
    return active;
}

} // namespace velmora
