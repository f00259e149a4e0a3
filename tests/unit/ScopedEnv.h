#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>
#include <utility>
#include <vector>

// Sets environment variables for one test and puts back what was there.
struct ScopedEnv {
    std::vector<std::pair<const char*, std::optional<QByteArray>>> saved;
    void set(const char* name, const QByteArray& value) {
        saved.emplace_back(name,
                           qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
        qputenv(name, value);
    }
    ~ScopedEnv() {
        for (auto it = saved.rbegin(); it != saved.rend(); ++it)
            it->second ? qputenv(it->first, *it->second) : qunsetenv(it->first);
    }
};
