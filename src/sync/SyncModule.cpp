#include "sync/SyncModule.h"

#include "app/ModuleRegistry.h"
#include "app/UserPreferences.h"
#include "platform/Platform.h"
#include "sync/SyncLog.h"

#include <algorithm>

namespace velmora {

namespace {

constexpr auto kUsage = "sync takes setup URL --user NAME, status, now or off";
// Setting up tests the server and then synchronises every record: a few round trips, each with its
// own time-out.
constexpr int kCommandWaitMs = 120'000;

const char* statusText(CKValueObservableBase::Status status) {
    switch (status) {
    case CKValueObservableBase::Status::syncing:
        return "syncing";
    case CKValueObservableBase::Status::error:
        return "error";
    case CKValueObservableBase::Status::ok:
        return "ok";
    }
    return "ok";
}

Json optionalText(const QString& text) {
    return text.isEmpty() ? Json(nullptr) : Json(text);
}

} // namespace

int SyncModule::checkSecondsFrom(const QString& variable) {
    if (variable.isEmpty())
        return kCheckSeconds;
    bool ok = false;
    const int seconds = variable.trimmed().toInt(&ok);
    if (ok && seconds > 0)
        return seconds;
    qCWarning(lcSync).noquote() << QStringLiteral(
                                       "VELMORA_SYNC_CHECK_SECONDS is \"%1\", not a number of seconds; "
                                       "changes elsewhere are looked for every %2 s")
                                       .arg(variable)
                                       .arg(kCheckSeconds);
    return kCheckSeconds;
}

SyncModule::SyncModule(AppContext& context, QString passwordFromEnvironment, int checkSeconds)
    : m_context(context), m_accounts(*context.platform.defaults, context.platform.secretStore.get(),
                                     std::move(passwordFromEnvironment)) {
    if (!context.platform.cloudDatabase)
        return;
    auto now = context.nowMs;
    m_mirror =
        std::make_unique<PreferencesMirror>(context.preferences.records(), *context.platform.cloudDatabase,
                                            *context.platform.defaults, [now] { return now() / 1000.0; });
    connect(m_mirror.get(), &PreferencesMirror::changed, this, &SyncModule::changed);
    m_timer.setInterval(std::max(1, checkSeconds) * 1000);
    connect(&m_timer, &QTimer::timeout, this, [this] { m_mirror->lookForChanges(); });
    connect(context.platform.cloudDatabase.get(), &CloudDatabase::networkRegained, this, [this] {
        qCInfo(lcSync) << "The network is back; looking for settings changed elsewhere.";
        m_mirror->lookForChanges();
    });
}

SyncModule::~SyncModule() = default;

void SyncModule::registerWith(ModuleRegistry& registry) {
    registry.addCommand({"sync", "setup URL --user NAME | status | now | off",
                         "Mirror the settings to your WebDAV folder at URL (the app password is read from "
                         "standard input), show how it goes, synchronise now, or stop and forget the account",
                         1, 6, nullptr,
                         [this](const QStringList& arguments, std::function<void(ControlReply)> reply) {
                             command(arguments, std::move(reply));
                         },
                         kCommandWaitMs});
    registry.addStatus("sync", [this] { return status(); });
}

void SyncModule::start() {
    if (!m_mirror) {
        qCInfo(lcSync) << "This build has no cloud database; settings stay on this machine.";
        return;
    }
    m_timer.start();
    useStoredAccount();
}

void SyncModule::stop() {
    m_timer.stop();
}

void SyncModule::useStoredAccount() {
    if (!m_accounts.configured())
        return;
    m_accounts.load([this](std::optional<CloudAccount> account, QString problem) {
        if (!account) {
            m_accountProblem = problem;
            qCWarning(lcSync).noquote() << "Settings are not synchronised:" << problem;
            emit changed();
            return;
        }
        m_accountProblem.clear();
        m_context.platform.cloudDatabase->setAccount(*account);
        m_mirror->setEnabled(true);
        m_mirror->syncAll();
    });
}

std::optional<QString> SyncModule::problemWith(const CloudAccount& account) const {
    const QString scheme = account.address.scheme();
    if (!account.address.isValid() || (scheme != "http" && scheme != "https") ||
        account.address.host().isEmpty())
        return QString("%1 is not an http or https address").arg(account.address.toString());
    if (account.user.isEmpty())
        return QString("a user name is needed");
    if (account.password.isEmpty())
        return QString("an app password is needed");
    return std::nullopt;
}

void SyncModule::testConnection(const CloudAccount& account, std::function<void(QString)> done) {
    if (!m_mirror)
        return done("this build cannot synchronise settings");
    if (const auto problem = problemWith(account))
        return done(*problem);
    m_context.platform.cloudDatabase->check(account, std::move(done));
}

void SyncModule::setUp(const CloudAccount& account, std::function<void(QString, QString)> done) {
    testConnection(account, [this, account, done](QString error) {
        if (!error.isEmpty())
            return done(error, {});
        const auto previous = m_accounts.configured();
        m_accounts.save(account, [this, account, previous, done](QString error, QString warning) {
            if (!error.isEmpty())
                return done(error, {});
            if (!previous || previous->address != account.address || previous->user != account.user)
                m_mirror->forgetAgreements(); // a new account: this machine adopts what it holds
            m_accountProblem.clear();
            m_context.platform.cloudDatabase->setAccount(account);
            m_mirror->setEnabled(true);
            qCInfo(lcSync).noquote() << "Settings are mirrored to"
                                     << account.address.toString(QUrl::RemoveUserInfo) << "as"
                                     << account.user;
            m_mirror->syncAll([done, warning](bool) { done({}, warning); });
        });
    });
}

void SyncModule::syncNow(std::function<void(bool)> done) {
    if (!m_mirror || !m_mirror->isEnabled())
        return done(false);
    m_mirror->syncAll(std::move(done));
}

void SyncModule::turnOff() {
    if (!m_mirror)
        return;
    m_mirror->setEnabled(false);
    m_context.platform.cloudDatabase->setAccount(std::nullopt);
    m_mirror->forgetAgreements();
    m_accounts.forget();
    m_accountProblem.clear();
    m_context.platform.defaults->remove(PreferencesMirror::kLastSyncKey);
    qCInfo(lcSync) << "Sync is off; the settings stay as they are on this machine.";
    emit changed();
}

QString SyncModule::statusName() const {
    if (!m_mirror)
        return "off";
    if (const auto status = m_mirror->status())
        return statusText(*status);
    return m_accountProblem.isEmpty() ? "off" : "error";
}

QString SyncModule::problem() const {
    if (!m_accountProblem.isEmpty())
        return m_accountProblem;
    return m_mirror ? m_mirror->lastError() : QString();
}

std::optional<double> SyncModule::lastSyncTime() const {
    return m_mirror ? m_mirror->lastSyncTime() : std::nullopt;
}

Json SyncModule::status() const {
    const auto account = m_accounts.configured();
    Json records = Json::array();
    if (m_mirror && m_mirror->isEnabled())
        for (const auto* record : m_mirror->records())
            records.push_back({{"key", record->key().toStdString()},
                               {"status", statusText(record->status())},
                               {"cloudTag", optionalText(record->cloudTag())}});
    const auto last = lastSyncTime();
    return {{"available", m_mirror != nullptr},
            {"server", account ? Json(account->address.toString(QUrl::RemoveUserInfo)) : Json(nullptr)},
            {"user", account ? Json(account->user) : Json(nullptr)},
            {"status", statusName()},
            {"lastSyncTime", last ? Json(*last) : Json(nullptr)},
            {"error", optionalText(problem())},
            {"records", records}};
}

void SyncModule::command(const QStringList& arguments, std::function<void(ControlReply)> reply) {
    const QString what = arguments.value(0);
    if (what == "setup")
        return setUpFromCommand(arguments, std::move(reply));
    if (arguments.size() != 1)
        return reply(ControlReply::failure(kUsage));
    if (what == "status")
        return reply(ControlReply::success(status()));
    if (what == "off") {
        turnOff();
        return reply(ControlReply::success(status()));
    }
    if (what != "now")
        return reply(ControlReply::failure(kUsage));
    if (!m_mirror || !m_mirror->isEnabled())
        return reply(ControlReply::failure(problem().isEmpty() ? QString("sync is not set up") : problem()));
    syncNow([this, reply](bool ok) {
        if (ok)
            reply(ControlReply::success(status()));
        else
            reply(ControlReply::failure(QString("not every setting was synchronised: %1").arg(problem())));
    });
}

// setup URL --user NAME --password SECRET (the command line reads the secret from standard input).
void SyncModule::setUpFromCommand(const QStringList& arguments, std::function<void(ControlReply)> reply) {
    CloudAccount account{QUrl(arguments.value(1)), {}, {}};
    for (int i = 2; i + 1 < arguments.size(); i += 2) {
        if (arguments[i] == "--user")
            account.user = arguments[i + 1];
        else if (arguments[i] == "--password")
            account.password = arguments[i + 1];
        else
            return reply(ControlReply::failure(kUsage));
    }
    if (arguments.size() % 2 != 0 || account.user.isEmpty())
        return reply(ControlReply::failure(kUsage));
    setUp(account, [this, reply](QString error, QString warning) {
        if (!error.isEmpty())
            return reply(ControlReply::failure(QString("sync was not set up: %1").arg(error)));
        Json answer = status();
        answer["warning"] = optionalText(warning);
        reply(ControlReply::success(answer));
    });
}

} // namespace velmora
