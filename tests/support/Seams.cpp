// The test programs' definitions of two functions: the main bundle and the store service's URL.
#include "platform/Bundle.h"
#include "store/ScriptURL.h"
#include "tests/support/TestHome.h"

namespace {

std::optional<platform::Bundle> testBundle;
std::string testScriptURL; // NOLINT(cert-err58-cpp): an empty one allocates nothing

} // namespace

std::optional<platform::Bundle> platform::Bundle::mainBundle() {
    return testBundle;
}

void platform::Bundle::findMainBundle() {}

std::string_view store::scriptURL() {
    return testScriptURL;
}

void test::setExecutablePath(const std::filesystem::path& path) {
    testBundle = platform::Bundle::containing(path);
}

void test::setStorePort(int port) {
    testScriptURL = "http://127.0.0.1:" + std::to_string(port) + "/fastspring.php";
}
