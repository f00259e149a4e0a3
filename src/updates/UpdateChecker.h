#pragma once

#include "platform/UpdateChannel.h"
#include "updates/UpdateAddress.h"
#include "updates/UpdateInfo.h"

#include <QObject>

#include <functional>
#include <optional>
#include <vector>

namespace velmora {

class UserPreferences;

// What one check found.
struct UpdateCheckResult {
    double time = 0;      // when it was asked, seconds since 1970
    bool checked = false; // the server answered and the answer was read
    UpdateInfo info;      // with checked: what the server offers
    QString error;        // without checked: why not

    bool offered() const { return checked && info.offersUpdate(); }
};

// Asks the update server whether a newer build exists: on every tick of the agent's timer when
// automatic updates are on and the last check is an hour old or more, or at once when asked. The time
// of each check is remembered (also when it fails), so a failing server is asked again an hour later
// at the earliest.
class UpdateChecker : public QObject {
    Q_OBJECT
public:
    static constexpr int kTickSeconds = 600;
    static constexpr double kSecondsBetweenChecks = 3600;
    static constexpr int kTimeoutMs = 30'000;
    static constexpr int kMaxRedirects = 5;

    // parts gives the OS and program versions; the user id is read from the preferences at each check.
    UpdateChecker(UpdateChannel& channel, UserPreferences& preferences, QString server,
                  UpdateAddressParts parts, std::function<double()> nowSeconds, QObject* parent = nullptr);

    // One tick: true when it began a check, whose result comes through checkFinished.
    bool tick();
    // Checks now, whatever the hour rule says; done gets the result (a check already under way is
    // joined, not repeated).
    void check(std::function<void(const UpdateCheckResult&)> done = nullptr);

    QUrl requestUrl() const;
    const QString& server() const { return m_server; }
    bool isChecking() const { return m_checking; }
    const std::optional<UpdateCheckResult>& lastResult() const { return m_last; }

signals:
    // Every check's result, the timer's and the asked-for ones alike.
    void checkFinished(const UpdateCheckResult& result, bool fromTimer);

private:
    void begin(bool fromTimer);
    void finish(UpdateResponse response);

    UpdateChannel& m_channel;
    UserPreferences& m_preferences;
    QString m_server;
    UpdateAddressParts m_parts;
    std::function<double()> m_now;
    bool m_checking = false;
    bool m_fromTimer = false;
    double m_startedAt = 0;
    std::vector<std::function<void(const UpdateCheckResult&)>> m_waiting;
    std::optional<UpdateCheckResult> m_last;
};

} // namespace velmora
