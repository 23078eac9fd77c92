#pragma once

#include <filesystem>
#include <string>

namespace test {

/// What the process's executable is taken to be, in place of the test program: makes the bundle
/// around it, as it is now, the main bundle. Set it before other threads run.
void setExecutablePath(const std::filesystem::path& path);

/// The store service that requests go to, by the port of a fixture server on loopback.
void setStorePort(int port);

} // namespace test
