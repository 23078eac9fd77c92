#include "platform/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX declares it nowhere

namespace platform {
namespace {

/// The child's own streams, descriptors and signal settings, in place of this process's.
class SpawnSettings {
  public:
    SpawnSettings() {
        check(posix_spawn_file_actions_init(&streams));
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            check(posix_spawn_file_actions_addopen(&streams, stream, "/dev/null", O_RDWR, 0));
        }
        check(posix_spawnattr_init(&attributes));
        sigset_t signals;
        sigemptyset(&signals);
        check(posix_spawnattr_setsigmask(&attributes, &signals));
        sigfillset(&signals);
        check(posix_spawnattr_setsigdefault(&attributes, &signals));
        int flags = POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#else
        check(posix_spawn_file_actions_addclosefrom_np(&streams, STDERR_FILENO + 1));
#endif
        check(posix_spawnattr_setflags(&attributes, static_cast<short>(flags)));
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&streams);
    }

    posix_spawn_file_actions_t streams{};
    posix_spawnattr_t attributes{};
    int error = 0; // the first failure of a setting, such as ENOMEM

  private:
    void check(int result) {
        if (error == 0) {
            error = result;
        }
    }
};

std::vector<char*> environmentWithoutLinkerSettings() {
    std::vector<char*> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        if (!text.starts_with("LD_") && !text.starts_with("DYLD_")) {
            variables.push_back(*variable);
        }
    }
    variables.push_back(nullptr);
    return variables;
}

int statusOf(pid_t child) {
    int status = 0;
    pid_t ended = 0;
    do {
        ended = ::waitpid(child, &status, 0);
    } while (ended < 0 && errno == EINTR);
    return ended == child ? status : kUnknownStatus;
}

std::future<int> reap(pid_t child) {
    const auto status = std::make_shared<std::promise<int>>();
    try {
        std::thread([=] { status->set_value(statusOf(child)); }).detach();
    } catch (const std::system_error&) {
        // If a thread cannot be created, the child stays a zombie until this process exits.
        status->set_value(kUnknownStatus);
    }
    return status->get_future();
}

} // namespace

std::error_code startChildProcess(const std::vector<std::string>& arguments) {
    std::future<int> ignored;
    return startChildProcess(arguments, ignored);
}

std::error_code startChildProcess(const std::vector<std::string>& arguments,
                                  std::future<int>& status) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const auto& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str())); // never written to
    }
    pointers.push_back(nullptr);
    const SpawnSettings settings;
    pid_t child = 0;
    int error = settings.error;
    if (error == 0) {
        error = posix_spawnp(&child, pointers.front(), &settings.streams, &settings.attributes,
                             pointers.data(), environmentWithoutLinkerSettings().data());
    }
    if (error != 0) {
        return {error, std::generic_category()};
    }
    status = reap(child);
    return {};
}

} // namespace platform
