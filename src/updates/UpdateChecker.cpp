#include "updates/UpdateChecker.h"

#include "app/UserPreferences.h"
#include "updates/UpdatesLog.h"

#include <QPointer>

namespace velmora {

UpdateChecker::UpdateChecker(UpdateChannel& channel, UserPreferences& preferences, QString server,
                             UpdateAddressParts parts, std::function<double()> nowSeconds, QObject* parent)
    : QObject(parent), m_channel(channel), m_preferences(preferences), m_server(std::move(server)),
      m_parts(std::move(parts)), m_now(std::move(nowSeconds)) {}

bool UpdateChecker::tick() {
    if (m_checking || !m_preferences.basic.value().autoUpdate)
        return false;
    const double now = m_now();
    const double last = m_preferences.local.autoUpdateLastCheckTime();
    // A last check in the future was written while the clock was wrong; waiting for that time to come
    // could stop checks for years, so it counts as long ago.
    if (last <= now && now - last < kSecondsBetweenChecks)
        return false;
    begin(true);
    return true;
}

void UpdateChecker::check(std::function<void(const UpdateCheckResult&)> done) {
    if (done)
        m_waiting.push_back(std::move(done));
    if (!m_checking)
        begin(false);
}

QUrl UpdateChecker::requestUrl() const {
    UpdateAddressParts parts = m_parts;
    parts.userId = m_preferences.local.userId();
    return updateRequestUrl(m_server, parts);
}

void UpdateChecker::begin(bool fromTimer) {
    m_checking = true;
    m_fromTimer = fromTimer;
    m_startedAt = m_now();
    if (!m_preferences.local.setAutoUpdateLastCheckTime(m_startedAt))
        qCWarning(lcUpdates)
            << "The time of this update check could not be stored; the next tick may check again.";
    UpdateRequest request;
    request.url = requestUrl();
    request.timeoutMs = kTimeoutMs;
    request.maxRedirects = kMaxRedirects;
    QPointer<UpdateChecker> self(this);
    m_channel.get(request, [self](UpdateResponse response) {
        if (self)
            self->finish(std::move(response));
    });
}

void UpdateChecker::finish(UpdateResponse response) {
    UpdateCheckResult result;
    result.time = m_startedAt;
    if (!response.body) {
        result.error = response.error.isEmpty() ? QString("no answer") : response.error;
    } else if (const auto info = decodeUpdateInfo(*response.body, &result.error)) {
        result.checked = true;
        result.info = *info;
    } else {
        result.error = "unreadable answer: " + result.error;
    }
    if (!result.checked)
        qCWarning(lcUpdates).noquote() << "The update check failed:" << result.error;
    else if (result.offered())
        qCInfo(lcUpdates).noquote() << "An update is offered:" << result.info.url;
    else
        qCInfo(lcUpdates) << "No update is offered; this version is the newest.";
    m_checking = false;
    m_last = result;
    auto waiting = std::move(m_waiting);
    m_waiting.clear();
    for (auto& done : waiting)
        done(result);
    emit checkFinished(result, m_fromTimer);
}

} // namespace velmora
