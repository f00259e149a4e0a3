#include "app/LoggingManager.h"

#include "Version.h"
#include "core/MainThread.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QStandardPaths>
#include <QSysInfo>
#include <QTimeZone>
#include <cstdio>

namespace velmora {

namespace {

void printLine(const QString& text) {
    std::fputs(text.toUtf8().constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

} // namespace

LoggingManager::LoggingManager(std::function<bool()> developerLogsEnabled, QObject* parent)
    : QObject(parent), m_developerLogsEnabled(std::move(developerLogsEnabled)) {}

void LoggingManager::append(LogContext context, LogLevel level, const QString& function, int line,
                            const QString& description) {
    assertMainThread("LoggingManager::append");
    Log entry{context,
              level,
              QDateTime::currentMSecsSinceEpoch() / 1000.0,
              function,
              line,
              QString::fromLatin1(kVersion),
              QSysInfo::kernelVersion(),
              description};
    printLine(printedForm(entry));
    if (!m_developerLogsEnabled || !m_developerLogsEnabled())
        return;
    const bool full = m_entries.size() >= kTrimAt;
    m_entries.push_back(std::move(entry));
    if (full)
        m_entries.erase(m_entries.begin());
}

QByteArray LoggingManager::exportData() const {
    Json list = Json::array();
    for (const auto& entry : m_entries)
        list.push_back(entry);
    return QByteArray::fromStdString(list.dump());
}

bool LoggingManager::exportTo(const QString& path, QString* error) const {
    assertMainThread("LoggingManager::exportTo");
    QFile file(path);
    const QByteArray data = exportData();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(data) != data.size()) {
        const QString reason = file.errorString();
        printLine("Failed to save file: " + reason);
        if (error)
            *error = reason;
        return false;
    }
    printLine("File saved at: " + file.fileName());
    return true;
}

void LoggingManager::exportWithDialog(QWidget* parent) const {
    // Proposed in the user's documents, not wherever the agent happened to be started from.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString path = QFileDialog::getSaveFileName(parent, "Save Logs", QDir(folder).filePath("logs.json"),
                                                      "JSON (*.json)", nullptr);
    if (!path.isEmpty())
        exportTo(path);
}

QString LoggingManager::printedForm(const Log& log) {
    const auto when = QDateTime::fromMSecsSinceEpoch(qint64(log.timestamp * 1000), QTimeZone::utc());
    return QStringLiteral("%1 [%2] [%3] %4:%5 %6")
        .arg(when.toString(Qt::ISODateWithMs), caseName(log.level), caseName(log.context), log.function)
        .arg(log.line)
        .arg(log.description);
}

} // namespace velmora
