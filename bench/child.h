// A helper program started by a benchmark: its standard output is read line by line with a deadline,
// and it is ended (by its own process id) when the benchmark is done with it.
#pragma once

#include "fail.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace bench {

class Child {
public:
    // With a log path, the child's standard output and error go there and nothing is read from it.
    explicit Child(std::vector<std::string> args, const char* logPath = nullptr) {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0) // the duplicate made for the child is inherited, these are not
            fail("cannot create a pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        if (logPath) {
            posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, logPath, O_WRONLY | O_CREAT | O_APPEND,
                                             0644);
            posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
        } else {
            posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
        }
        std::vector<char*> argv;
        for (auto& a : args)
            argv.push_back(a.data());
        argv.push_back(nullptr);
        const int error = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        ::close(fds[1]);
        out = fds[0];
        if (error != 0)
            fail("cannot start %s", args[0].c_str());
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (!hasExited(std::chrono::milliseconds(0))) {
            ::kill(pid, SIGTERM);
            if (!hasExited(std::chrono::seconds(3))) {
                ::kill(pid, SIGKILL);
                ::waitpid(pid, nullptr, 0);
            }
        }
        ::close(out);
    }

    pid_t id() const { return pid; }

    // Whether the child has ended (and been reaped) within the timeout.
    bool hasExited(std::chrono::milliseconds timeout) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        for (;;) {
            if (reaped || ::waitpid(pid, nullptr, WNOHANG) == pid)
                return reaped = true;
            if (std::chrono::steady_clock::now() >= deadline)
                return false;
            ::usleep(2000);
        }
    }

    // The next line the child prints, or none when it prints nothing complete in time or exits.
    std::optional<std::string> readLine(std::chrono::milliseconds timeout) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        for (;;) {
            if (const auto end = buffer.find('\n'); end != std::string::npos) {
                std::string line = buffer.substr(0, end);
                buffer.erase(0, end + 1);
                return line;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            pollfd p{out, POLLIN, 0};
            if (left.count() <= 0 || ::poll(&p, 1, int(left.count())) <= 0)
                return std::nullopt;
            char chunk[256];
            const auto n = ::read(out, chunk, sizeof chunk);
            if (n <= 0)
                return std::nullopt;
            buffer.append(chunk, std::size_t(n));
        }
    }

private:
    pid_t pid = 0;
    bool reaped = false;
    int out = -1;
    std::string buffer;
};

} // namespace bench
