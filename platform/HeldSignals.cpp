#include "platform/HeldSignals.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <mutex>

namespace platform {
namespace {

constexpr std::array kSignals = {SIGTERM, SIGHUP, SIGINT};

std::mutex mutex;
int holders = 0;
std::array<struct sigaction, kSignals.size()> previous{};
std::atomic<int> heldSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may not wait for a lock");

void hold(int number) {
    heldSignal = number;
}

void holdUnlessIgnored(std::size_t index) {
    struct sigaction action {};
    action.sa_handler = hold;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(kSignals[index], nullptr, &previous[index]);
    if (previous[index].sa_handler != SIG_IGN) {
        sigaction(kSignals[index], &action, nullptr);
    }
}

} // namespace

HeldSignals::HeldSignals() {
    const std::lock_guard lock(mutex);
    if (holders++ > 0) {
        return;
    }
    for (std::size_t index = 0; index < kSignals.size(); ++index) {
        holdUnlessIgnored(index);
    }
}

HeldSignals::~HeldSignals() {
    const std::lock_guard lock(mutex);
    if (--holders > 0) {
        return;
    }
    for (std::size_t index = 0; index < kSignals.size(); ++index) {
        sigaction(kSignals[index], &previous[index], nullptr);
    }
    if (const int number = heldSignal.exchange(0); number != 0) {
        std::raise(number);
    }
}

} // namespace platform
