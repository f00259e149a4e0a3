#include "power/PowerManagementModule.h"

#include "app/ModuleRegistry.h"
#include "platform/Platform.h"
#include "power/PowerLog.h"

#include <QEventLoop>
#include <QTimer>

namespace velmora {

namespace {

constexpr auto kUsage = "power takes status, on [--persistent] or off";
// The command line waits this long for on and off, which may wait for the administrator prompt.
constexpr int kCommandWaitMs = 180'000;
// Quitting waits this long at most for the administrator prompt that gives sleep back.
constexpr int kTearDownWaitMs = 120'000;

QString modeName(bool persistent) {
    return persistent ? "persistent" : "temporary";
}

} // namespace

PowerManagementModule::PowerManagementModule(AppContext& context) : m_context(context) {
    if (context.platform.sleepInhibitor && context.platform.sleepSettings)
        m_model = std::make_unique<PowerManagementModel>(*context.platform.sleepInhibitor,
                                                         *context.platform.sleepSettings);
}

PowerManagementModule::~PowerManagementModule() = default;

void PowerManagementModule::registerWith(ModuleRegistry& registry) {
    registry.addCommand({"power", "status | on [--persistent] | off",
                         "Prevent Sleep mode: keep the computer awake while Velmora runs, or system-wide "
                         "with --persistent (asks for an administrator)",
                         1, 2, nullptr,
                         [this](const QStringList& arguments, std::function<void(ControlReply)> reply) {
                             command(arguments, std::move(reply));
                         },
                         kCommandWaitMs});
    registry.addStatus("powerManagement", [this] { return status(); });
}

void PowerManagementModule::start() {
    if (!m_model) {
        qCWarning(lcPower)
            << "Prevent Sleep mode is unavailable: this system offers no way to keep it awake.";
        return;
    }
    m_model->startUp([this] {
        qCInfo(lcPower).noquote() << QString("Prevent Sleep mode is %1 (%2 mode) at start.")
                                         .arg(m_model->preventSleep() ? "on" : "off",
                                              modeName(m_model->usePMSet()));
    });
}

void PowerManagementModule::stop() {
    if (!m_model)
        return;
    bool done = false;
    QEventLoop loop;
    m_model->tearDown([&done, &loop] {
        done = true;
        loop.quit();
    });
    if (done)
        return;
    QTimer::singleShot(kTearDownWaitMs, &loop, &QEventLoop::quit);
    loop.exec();
    if (!done)
        qCWarning(lcPower) << "Quitting before the system answered: Prevent Sleep mode may still be on.";
}

void PowerManagementModule::command(const QStringList& arguments, std::function<void(ControlReply)> reply) {
    const QString what = arguments.value(0);
    if (!m_model && what != "status") {
        reply(ControlReply::failure("Prevent Sleep mode is unavailable on this system"));
        return;
    }
    if (what == "status" && arguments.size() == 1)
        reply(ControlReply::success(status()));
    else if (what == "on" && (arguments.size() == 1 || arguments.value(1) == "--persistent"))
        turnOn(arguments.size() == 2, std::move(reply));
    else if (what == "off" && arguments.size() == 1)
        turnOff(std::move(reply));
    else
        reply(ControlReply::failure(kUsage));
}

void PowerManagementModule::turnOn(bool persistent, std::function<void(ControlReply)> reply) {
    PowerManagementModel& model = *m_model;
    auto answer = [this, reply] {
        if (m_model->preventSleep())
            reply(ControlReply::success(status()));
        else
            reply(ControlReply::failure("sleep is not prevented: " + (m_model->lastError().isEmpty()
                                                                          ? QString("the system refused")
                                                                          : m_model->lastError())));
    };
    const auto refused = [this, reply] {
        reply(ControlReply::failure(
            "Prevent Sleep mode cannot change now: " +
            QString(m_model->initialized() ? "an earlier change still waits" : "it is still being set up")));
    };
    // Already on: a different mode takes over from the old one (the mode's change handler).
    if (model.preventSleep()) {
        if (!model.setUsePMSet(persistent, answer))
            refused();
        return;
    }
    if (!model.setUsePMSet(persistent) || !model.setPreventSleep(true, answer))
        refused();
}

void PowerManagementModule::turnOff(std::function<void(ControlReply)> reply) {
    const bool accepted = m_model->setPreventSleep(false, [this, reply] {
        if (!m_model->preventSleep())
            reply(ControlReply::success(status()));
        else
            reply(ControlReply::failure("sleep is still prevented: " + m_model->lastError()));
    });
    if (!accepted)
        reply(ControlReply::failure("Prevent Sleep mode cannot change now: an earlier change still waits"));
}

Json PowerManagementModule::status() const {
    if (!m_model)
        return {{"available", false}};
    const SleepInhibitor& inhibitor = *m_context.platform.sleepInhibitor;
    Json held = Json::array();
    for (const QString& line : inhibitor.heldMechanisms())
        held.push_back(line);
    return {{"available", true},
            {"initialized", m_model->initialized()},
            {"usePMSet", m_model->usePMSet()},
            {"preventSleep", m_model->preventSleep()},
            {"mode", modeName(m_model->usePMSet())},
            {"busy", m_model->busy()},
            {"held", held},
            {"lastError", m_model->lastError()}};
}

} // namespace velmora
