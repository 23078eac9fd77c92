#include "tests/support/TestBundle.h"

#include "tests/support/Seams.h"
#include "tests/support/TestHome.h"

namespace test {

TestBundle::TestBundle(std::filesystem::path path) : path_(std::move(path)) {
    writeFile(path_ / "Contents" / "Info.plist", "<plist/>");
    withScript(path_.stem(), "exit 0");
}

std::filesystem::path TestBundle::executable(const std::string& name) const {
    return path_ / "Contents" / "Linux" / name;
}

const TestBundle& TestBundle::asMainBundle() const {
    setExecutablePath(executable(path_.stem()));
    return *this;
}

const TestBundle& TestBundle::withResource(const std::string& name,
                                           std::string_view content) const {
    writeFile(path_ / "Contents" / "Resources" / name, content);
    return *this;
}

const TestBundle& TestBundle::withScript(const std::string& name, std::string_view commands) const {
    writeFile(executable(name), "#!/bin/sh\n" + std::string(commands) + "\n", true);
    return *this;
}

} // namespace test
