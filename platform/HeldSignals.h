#pragma once

namespace platform {

/// Holds back the signals that end a program with its session or terminal (`SIGTERM`, `SIGHUP`,
/// `SIGINT`) for as long as an object of this class lives. The last object to be destroyed raises
/// the latest held signal again, which then has its previous action: usually it ends the process.
/// Ignored signals stay ignored. Construct and destroy on any thread.
class HeldSignals {
  public:
    HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals();
};

} // namespace platform
