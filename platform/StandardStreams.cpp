#include "platform/StandardStreams.h"

#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace platform {

void openClosedStreams() {
    // The wrong way round, so that a use fails as on the closed stream.
    constexpr std::pair<int, int> kStreams[] = {
        {STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}};
    for (const auto& [stream, mode] : kStreams) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", mode); // gets the lowest free number
        }
    }
}

} // namespace platform
