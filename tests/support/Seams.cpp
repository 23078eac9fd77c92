// The test programs' own definitions of the two functions that say which bundle a process belongs
// to and where the store service is.
#include "tests/support/Seams.h"

#include "platform/Bundle.h"
#include "store/ScriptURL.h"

namespace {

std::optional<platform::Bundle>& testBundle() {
    static std::optional<platform::Bundle> bundle;
    return bundle;
}

std::string& testScriptURL() {
    static std::string url;
    return url;
}

} // namespace

namespace platform {
std::optional<Bundle> Bundle::mainBundle() {
    return testBundle();
}
} // namespace platform

namespace store {
std::string_view scriptURL() {
    return testScriptURL();
}
} // namespace store

namespace test {

void setExecutablePath(const std::filesystem::path& path) {
    testBundle() = platform::Bundle::around(path);
}

void setStorePort(int port) {
    testScriptURL() = "http://127.0.0.1:" + std::to_string(port) + "/fastspring.php";
}

} // namespace test
