#pragma once

#include "core/Log.h"

#include <QObject>
#include <functional>
#include <vector>

class QWidget;

namespace velmora {

// The support log: every entry is printed to standard output; while developer logs are allowed the
// newest entries are also kept in memory (at most 99) so the user can export them.
class LoggingManager : public QObject {
    Q_OBJECT
public:
    static constexpr std::size_t kTrimAt = 99;

    explicit LoggingManager(std::function<bool()> developerLogsEnabled, QObject* parent = nullptr);

    void append(LogContext context, LogLevel level, const QString& function, int line,
                const QString& description);
    const std::vector<Log>& entries() const { return m_entries; }

    QByteArray exportData() const;
    // Writes the list to path and prints the outcome; the list is kept either way.
    bool exportTo(const QString& path, QString* error = nullptr) const;
    // Asks for a place with the save dialog, then exports there.
    void exportWithDialog(QWidget* parent) const;

    static QString printedForm(const Log& log);

private:
    std::function<bool()> m_developerLogsEnabled;
    std::vector<Log> m_entries;
};

} // namespace velmora

// Appends an entry naming the calling function and line, as support expects to find them.
#define VELMORA_LOG(manager, context, level, description)                                                    \
    (manager).append((context), (level), QStringLiteral("%1()").arg(__func__), __LINE__, (description))
