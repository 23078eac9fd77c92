#pragma once

namespace platform {

/// Opens the null device in place of each closed standard stream. The next file or connection would
/// take its number otherwise, and output would go into that. Reading and writing still fail. Call
/// at the start of main().
void openClosedStreams();

} // namespace platform
