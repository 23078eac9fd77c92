// Replaces arc4random_buf, which Debian's libexpat.a calls, in a self-contained package. The C
// library has this function only since 2.36, and the package runs with 2.35.
#include <cstddef>
#include <exception>

#include <sys/random.h>

extern "C" void arc4random_buf(void* bytes, std::size_t size) {
    // The kernel gives up to 256 bytes at once, and expat asks for eight.
    if (getrandom(bytes, size, 0) != static_cast<ssize_t>(size)) {
        std::terminate();
    }
}
