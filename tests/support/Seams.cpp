// The test programs' own definitions of the two functions that say where a process is and where the
// store service is.
#include "tests/support/Seams.h"

#include "platform/Bundle.h"
#include "store/ScriptURL.h"

namespace {

std::filesystem::path& testExecutable() {
    static std::filesystem::path path;
    return path;
}

std::string& testScriptURL() {
    static std::string url;
    return url;
}

} // namespace

namespace platform {
const std::filesystem::path& executablePath() {
    return testExecutable();
}
} // namespace platform

namespace store {
std::string_view scriptURL() {
    return testScriptURL();
}
} // namespace store

namespace test {

void setExecutablePath(const std::filesystem::path& path) {
    testExecutable() = path;
}

void setStorePort(int port) {
    testScriptURL() = "http://127.0.0.1:" + std::to_string(port) + "/fastspring.php";
}

} // namespace test
