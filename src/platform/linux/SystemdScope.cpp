#include "platform/linux/SystemdScope.h"

namespace velmora {

namespace {

// The path of the hierarchy line "<id>:<controllers>:<path>" whose controllers are `controllers`.
std::optional<std::string_view> hierarchyPath(std::string_view text, std::string_view controllers) {
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const auto first = line.find(':');
        const auto second = first == std::string_view::npos ? first : line.find(':', first + 1);
        if (second != std::string_view::npos && line.substr(first + 1, second - first - 1) == controllers)
            return line.substr(second + 1);
    }
    return std::nullopt;
}

std::optional<QString> scopeIn(std::string_view path) {
    std::optional<std::string_view> scope;
    bool underApps = false;
    while (!path.empty()) {
        const auto end = std::min(path.find('/'), path.size());
        const std::string_view part = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (part == "app.slice")
            underApps = true;
        else if (part.ends_with(".scope") && (underApps || part.starts_with("app-")))
            scope = part;
    }
    if (!scope)
        return std::nullopt;
    return QString::fromUtf8(scope->data(), qsizetype(scope->size()));
}

} // namespace

std::optional<QString> applicationScope(std::string_view cgroupText) {
    if (const auto unified = hierarchyPath(cgroupText, ""))
        if (const auto scope = scopeIn(*unified))
            return scope;
    if (const auto legacy = hierarchyPath(cgroupText, "name=systemd"))
        return scopeIn(*legacy);
    return std::nullopt;
}

} // namespace velmora
