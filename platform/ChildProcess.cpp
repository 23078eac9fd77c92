#include "platform/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX declares it nowhere

namespace platform {
namespace {

/// What a child gets: null streams, a session of its own, default signals.
class SpawnSettings {
  public:
    SpawnSettings() {
        posix_spawn_file_actions_init(&streams);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            posix_spawn_file_actions_addopen(&streams, stream, "/dev/null", O_RDWR, 0);
        }
        posix_spawnattr_init(&attributes);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&streams);
    }

    posix_spawn_file_actions_t streams{};
    posix_spawnattr_t attributes{};
};

void reap(pid_t child) {
    const auto wait = [child] {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
    };
    try {
        std::thread(wait).detach();
    } catch (const std::system_error&) {
        // Without a thread to spare the child stays a zombie until this process ends.
    }
}

} // namespace

bool startChildProcess(const std::vector<std::string>& arguments) {
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (const auto& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str())); // never written to
    }
    words.push_back(nullptr);
    const SpawnSettings settings;
    pid_t child = 0;
    if (posix_spawn(&child, words.front(), &settings.streams, &settings.attributes, words.data(),
                    environ) != 0) {
        return false;
    }
    reap(child);
    return true;
}

} // namespace platform
