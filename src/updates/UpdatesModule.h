#pragma once

#include "app/AppContext.h"
#include "app/ControlReply.h"
#include "app/Module.h"
#include "updates/UpdateChecker.h"

#include <QObject>
#include <QTimer>
#include <memory>

namespace velmora {

// Update checks: the ten-minute timer (a check at most once an hour while automatic updates are on),
// the hand-over of an offered build to the updater program, `velmora update` and its status section.
// A failed check is logged and otherwise silent; the next eligible tick tries again.
class UpdatesModule final : public QObject, public Module {
    Q_OBJECT
public:
    // serverFromEnvironment: VELMORA_UPDATE_URL as the agent's environment has it, maybe empty.
    UpdatesModule(AppContext& context, const QString& serverFromEnvironment);
    ~UpdatesModule() override;

    QString name() const override { return "updates"; }
    void registerWith(ModuleRegistry& registry) override;
    void start() override;
    void stop() override;

    // Absent where the platform has no update channel.
    UpdateChecker* checker() { return m_checker.get(); }
    const QTimer& timer() const { return m_timer; }
    Json status() const;

private:
    void command(const QStringList& arguments, std::function<void(ControlReply)> reply);
    void checkFinished(const UpdateCheckResult& result, bool fromTimer);
    // Starts the updater for the offered build; false, with the reason, when it cannot.
    bool install(const UpdateCheckResult& result, QString* error);

    AppContext& m_context;
    std::unique_ptr<UpdateChecker> m_checker;
    QTimer m_timer;
    // The check whose build went to the updater, so that one offer starts one updater.
    double m_handedOverFor = -1;
    QString m_lastInstallError;
};

} // namespace velmora
