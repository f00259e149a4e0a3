#include "core/Log.h"

#include <array>

namespace velmora {

namespace {

constexpr std::array<const char*, 2> kLevels{"Info", "Error"};
constexpr std::array<const char*, 5> kContexts{"Default", "WindowManager", "ClipboardHistory",
                                               "KeyboardCleaning", "Wallpapers"};

template <class E, std::size_t N> E caseFromName(const std::array<const char*, N>& names, const Json& j) {
    const std::string name = decodeCase(j);
    for (std::size_t i = 0; i < N; ++i)
        if (name == names[i])
            return static_cast<E>(i);
    throw DecodeError("unknown case \"" + name + "\"");
}

} // namespace

const char* caseName(LogLevel level) {
    return kLevels[static_cast<std::size_t>(level)];
}
const char* caseName(LogContext context) {
    return kContexts[static_cast<std::size_t>(context)];
}

void to_json(Json& j, LogLevel level) {
    j = encodeCase(caseName(level));
}
void from_json(const Json& j, LogLevel& level) {
    level = caseFromName<LogLevel>(kLevels, j);
}
void to_json(Json& j, LogContext context) {
    j = encodeCase(caseName(context));
}
void from_json(const Json& j, LogContext& context) {
    context = caseFromName<LogContext>(kContexts, j);
}

void to_json(Json& j, const Log& log) {
    j = Json::object();
    j["context"] = log.context;
    j["level"] = log.level;
    j["timestamp"] = log.timestamp;
    j["function"] = log.function;
    j["line"] = log.line;
    j["version"] = log.version;
    j["osVersion"] = log.osVersion;
    j["description"] = log.description;
}

void from_json(const Json& j, Log& log) {
    log.context = requiredField<LogContext>(j, "context");
    log.level = requiredField<LogLevel>(j, "level");
    log.timestamp = requiredField<double>(j, "timestamp");
    log.function = requiredField<QString>(j, "function");
    log.line = requiredField<int>(j, "line");
    log.version = requiredField<QString>(j, "version");
    log.osVersion = requiredField<QString>(j, "osVersion");
    log.description = requiredField<QString>(j, "description");
}

} // namespace velmora
