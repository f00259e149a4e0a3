#include "ui/power/PowerManagementScreens.h"

#include "app/ModuleRegistry.h"
#include "app/PanelRows.h"
#include "power/PowerManagementModule.h"
#include "ui/power/PowerPreferencesPage.h"

#include <QAbstractButton>
#include <QSignalBlocker>

namespace velmora {

PowerManagementScreens::PowerManagementScreens(AppContext&, PowerManagementModule& power) : m_power(power) {}

void PowerManagementScreens::registerWith(ModuleRegistry& registry) {
    PowerManagementModel* model = m_power.model();
    if (!model)
        return;
    registry.addPanelRows([model](PanelRows& rows) {
        QAbstractButton* toggle = rows.addToggle("Prevent Sleep", model->preventSleep(),
                                                 [model](bool on) { model->setPreventSleep(on); });
        toggle->setObjectName("preventSleep");
        auto refresh = [model, toggle] {
            const QSignalBlocker quiet(toggle);
            toggle->setChecked(model->preventSleep());
            toggle->setEnabled(model->initialized() && !model->busy());
            toggle->setToolTip(model->usePMSet() ? PowerPreferencesPage::kPersistentLabel
                                                 : PowerPreferencesPage::kTemporaryLabel);
        };
        QObject::connect(model, &PowerManagementModel::changed, toggle, refresh);
        refresh();
    });
    registry.addIndicator({"preventSleep", "Prevent Sleep is on",
                           "The computer stays awake until sleep is allowed again.", "Allow Sleep",
                           [model] { model->setPreventSleep(false); }, StatusGlyph::sleepPrevented, false});
    auto followModel = [model, &registry] {
        registry.setIndicatorActive("preventSleep", model->preventSleep());
    };
    QObject::connect(model, &PowerManagementModel::changed, &registry, followModel);
    followModel();
    registry.addPreferencePage(PowerPreferencesPage::kTitle,
                               [model] { return new PowerPreferencesPage(*model); });
}

} // namespace velmora
