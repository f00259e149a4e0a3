#pragma once

#include "app/AppContext.h"
#include "app/Module.h"
#include "core/JsonCodec.h"
#include "power/PowerManagementModel.h"

#include <QObject>
#include <memory>

namespace velmora {

// Prevent Sleep mode: the model over the platform's inhibitor and sleep setting, the
// `velmora power` command and its status section. Start-up reads the system's setting; quitting
// gives back whatever prevention holds.
class PowerManagementModule final : public QObject, public Module {
    Q_OBJECT
public:
    explicit PowerManagementModule(AppContext& context);
    ~PowerManagementModule() override;

    QString name() const override { return "powerManagement"; }
    void registerWith(ModuleRegistry& registry) override;
    void start() override;
    // Waits for the tear-down, an administrator prompt included: nothing of it may outlive the agent.
    void stop() override;

    // Absent where the platform can keep nothing awake.
    PowerManagementModel* model() { return m_model.get(); }

    // Prevention on in the given mode (switching modes if it was on in the other), or off; reply gets
    // the status once the system has answered, or why it did not take.
    void turnOn(bool persistent, std::function<void(ControlReply)> reply);
    void turnOff(std::function<void(ControlReply)> reply);
    Json status() const;

private:
    void command(const QStringList& arguments, std::function<void(ControlReply)> reply);

    AppContext& m_context;
    std::unique_ptr<PowerManagementModel> m_model;
};

} // namespace velmora
