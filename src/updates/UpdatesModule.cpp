#include "updates/UpdatesModule.h"

#include "Version.h"
#include "app/ModuleRegistry.h"
#include "app/UserPreferences.h"
#include "platform/Platform.h"
#include "updates/UpdatesLog.h"

#include <QSysInfo>

namespace velmora {

namespace {

constexpr auto kUsage = "update takes check [--install] or status";
// The command line waits for the whole request (its time-out and a margin).
constexpr int kCommandWaitMs = UpdateChecker::kTimeoutMs + 10'000;

Json resultJson(const UpdateCheckResult& result) {
    return {{"checked", result.checked},
            {"offered", result.offered()},
            {"url", result.offered() ? Json(result.info.url) : Json(nullptr)},
            {"error", result.checked ? Json(nullptr) : Json(result.error)}};
}

} // namespace

UpdatesModule::UpdatesModule(AppContext& context, const QString& serverFromEnvironment) : m_context(context) {
    if (!context.platform.updateChannel)
        return;
    const auto fromSettings = context.platform.defaults->value(kUpdateServerKey);
    QString rejected;
    const QString server = chooseUpdateServer(serverFromEnvironment,
                                              fromSettings ? fromSettings->toString() : QString(), &rejected);
    if (!rejected.isEmpty())
        qCWarning(lcUpdates).noquote()
            << QString("%1 is not an http or https address; it is ignored.").arg(rejected);
    auto now = context.nowMs;
    m_checker = std::make_unique<UpdateChecker>(
        *context.platform.updateChannel, context.preferences, server,
        UpdateAddressParts{QSysInfo::kernelVersion(), QString::fromLatin1(kVersion), {}},
        [now] { return now() / 1000.0; });
    connect(m_checker.get(), &UpdateChecker::checkFinished, this, &UpdatesModule::checkFinished);
    m_timer.setInterval(UpdateChecker::kTickSeconds * 1000);
    connect(&m_timer, &QTimer::timeout, m_checker.get(), &UpdateChecker::tick);
}

UpdatesModule::~UpdatesModule() = default;

void UpdatesModule::registerWith(ModuleRegistry& registry) {
    registry.addCommand({"update", "check [--install] | status",
                         "Ask the update server now whether a newer build exists; with --install, hand an "
                         "offered build to the updater (Velmora restarts when it is in place)",
                         1, 2, nullptr,
                         [this](const QStringList& arguments, std::function<void(ControlReply)> reply) {
                             command(arguments, std::move(reply));
                         },
                         kCommandWaitMs});
    registry.addStatus("updates", [this] { return status(); });
}

void UpdatesModule::start() {
    if (!m_checker) {
        qCInfo(lcUpdates) << "This build cannot update itself; no update checks.";
        return;
    }
    m_timer.start();
}

void UpdatesModule::stop() {
    m_timer.stop();
}

void UpdatesModule::command(const QStringList& arguments, std::function<void(ControlReply)> reply) {
    const QString what = arguments.value(0);
    const bool installing = arguments.value(1) == "--install";
    if (what == "status" && arguments.size() == 1) {
        reply(ControlReply::success(status()));
        return;
    }
    if (what != "check" || (arguments.size() == 2 && !installing)) {
        reply(ControlReply::failure(kUsage));
        return;
    }
    if (!m_checker) {
        reply(ControlReply::failure("this build cannot update itself"));
        return;
    }
    m_checker->check([this, installing, reply](const UpdateCheckResult& result) {
        Json answer = resultJson(result);
        if (installing && result.offered()) {
            QString error;
            answer["handedOver"] = install(result, &error);
            answer["installError"] = error.isEmpty() ? Json(nullptr) : Json(error);
        }
        reply(ControlReply::success(answer));
    });
}

void UpdatesModule::checkFinished(const UpdateCheckResult& result, bool fromTimer) {
    if (!fromTimer || !result.offered())
        return;
    QString error;
    if (!install(result, &error))
        qCWarning(lcUpdates).noquote() << "The offered update is not installed:" << error;
}

bool UpdatesModule::install(const UpdateCheckResult& result, QString* error) {
    if (m_handedOverFor == result.time)
        return true;
    UpdateChannel& channel = *m_context.platform.updateChannel;
    const auto folder = channel.installationFolder();
    if (!folder) {
        *error = "this copy of Velmora is not an installation of its own (the system's packages or a build "
                 "folder hold it); update it where it came from";
    } else if (channel.handOver({QUrl(result.info.url), result.info.sha256, *folder}, error)) {
        qCInfo(lcUpdates).noquote()
            << QString("The updater is fetching %1 for %2; Velmora restarts once it is in "
                       "place.")
                   .arg(result.info.url, *folder);
        m_handedOverFor = result.time;
        m_lastInstallError.clear();
        return true;
    }
    m_lastInstallError = *error;
    return false;
}

Json UpdatesModule::status() const {
    if (!m_checker)
        return {{"available", false}};
    const auto folder = m_context.platform.updateChannel->installationFolder();
    return {{"available", true},
            {"autoUpdate", m_context.preferences.basic.value().autoUpdate},
            {"server", m_checker->server()},
            {"lastCheckTime", m_context.preferences.local.autoUpdateLastCheckTime()},
            {"checking", m_checker->isChecking()},
            {"installationFolder", folder ? Json(*folder) : Json(nullptr)},
            {"last", m_checker->lastResult() ? resultJson(*m_checker->lastResult()) : Json(nullptr)},
            {"handedOver", m_handedOverFor >= 0},
            {"installError", m_lastInstallError.isEmpty() ? Json(nullptr) : Json(m_lastInstallError)}};
}

} // namespace velmora
