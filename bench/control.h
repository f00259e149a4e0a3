// Questions to the running agent through its control socket, as `velmora COMMAND` asks them, without
// starting a process per question: start-up can then be watched closely.
#pragma once

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace bench {

inline std::string controlSocketPath() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    return std::string(runtime && *runtime ? runtime : "/tmp") + "/velmora.sock";
}

// The command's result, or none when the agent does not listen yet, does not answer in time or
// answers with an error.
inline std::optional<nlohmann::json> askAgent(const std::vector<std::string>& args,
                                              std::chrono::milliseconds timeout) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return std::nullopt;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = controlSocketPath();
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    std::optional<nlohmann::json> result;
    std::string reply;
    const std::string request = nlohmann::json{{"args", args}}.dump() + "\n";
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        ::write(fd, request.data(), request.size()) == ssize_t(request.size())) {
        while (reply.find('\n') == std::string::npos) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            pollfd p{fd, POLLIN, 0};
            if (left.count() <= 0 || ::poll(&p, 1, int(left.count())) <= 0)
                break;
            char chunk[4096];
            const auto n = ::read(fd, chunk, sizeof chunk);
            if (n <= 0)
                break;
            reply.append(chunk, std::size_t(n));
        }
    }
    ::close(fd);
    if (const auto end = reply.find('\n'); end != std::string::npos) {
        const auto answer = nlohmann::json::parse(reply.substr(0, end), nullptr, false);
        if (!answer.is_discarded() && answer.value("ok", false))
            result = answer.value("result", nlohmann::json());
    }
    return result;
}

} // namespace bench
