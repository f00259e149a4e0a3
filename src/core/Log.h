#pragma once

#include "core/JsonCodec.h"

#include <QString>

namespace velmora {

enum class LogLevel { Info, Error };
enum class LogContext { Default, WindowManager, ClipboardHistory, KeyboardCleaning, Wallpapers };

const char* caseName(LogLevel level);
const char* caseName(LogContext context);

// One entry of the in-process support log.
struct Log {
    LogContext context = LogContext::Default;
    LogLevel level = LogLevel::Info;
    double timestamp = 0; // seconds since 1970-01-01 UTC
    QString function;     // the writer's name with "()"
    int line = 0;
    QString version;
    QString osVersion;
    QString description;

    bool operator==(const Log&) const = default;
};

void to_json(Json& j, LogLevel level);
void from_json(const Json& j, LogLevel& level);
void to_json(Json& j, LogContext context);
void from_json(const Json& j, LogContext& context);
void to_json(Json& j, const Log& log);
void from_json(const Json& j, Log& log);

} // namespace velmora
