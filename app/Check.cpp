#include "app/Check.h"

#include "app/RunThrottle.h"
#include "app/SubscriptionReference.h"
#include "base/Timestamp.h"
#include "housekeeping/HelperUtilities.h"
#include "platform/Bundle.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "store/ScriptURL.h"

#include <filesystem>
#include <system_error>

#include <unistd.h>

#include <QString>

namespace app {
namespace {

Finding reference() {
    std::error_code error;
    const bool isPresent = userSubscriptionReference(error).has_value();
    return {"subscription reference", isPresent,
            subscriptionReferencePlace() + (error ? ": " + error.message() : "")};
}

Finding uninstaller(const platform::Bundle& bundle) {
    const auto name = housekeeping::HelperUtilities::uninstallerName();
    if (name.empty()) {
        return {"uninstaller", true, "none is configured"};
    }
    const auto path = bundle.pathForAuxiliaryExecutable(name);
    const auto program = path && path->extension() == ".app" ? platform::Bundle::executableOf(*path)
                                                             : path.value_or("");
    std::error_code error;
    return {"uninstaller",
            std::filesystem::is_regular_file(program, error) && access(program.c_str(), X_OK) == 0,
            path ? program.native() : "there is no \"" + name + "\" in the bundle"};
}

Finding trash(const platform::Bundle& bundle) {
    const auto error = platform::workspace::checkTrash(bundle.bundlePath());
    return {"Trash", !error,
            error ? error.message()
                  : "the bundle can be moved there from " + bundle.bundlePath().native()};
}

Finding copy() {
    const auto directory = housekeeping::HelperUtilities::uninstallerCopyDirectory();
    return {"place for the uninstaller's copy", directory.has_value(),
            directory ? directory->native() : "none of the user's own from which programs start"};
}

Finding lastRun() {
    const platform::UserDefaults defaults(HELPER_IDENTIFIER);
    const auto moment = lastRunIn(defaults);
    const auto next = [&] {
        return isRecentRun(moment, presentMoment)
                   ? "the next start works at " + base::timestampText(*moment + kRunInterval)
                   : std::string("a start works now");
    };
    return {"last run", true,
            (moment ? base::timestampText(*moment) : "none") + "; " + next() + "; kept in " +
                defaults.place()};
}

} // namespace

std::vector<Finding> findings(const std::string& missing) {
    std::vector<Finding> all;
    const auto bundle = platform::Bundle::mainBundle();
    const std::string path = bundle ? bundle->bundlePath().native() : "the program lies in none";
    const bool isText = QString::fromStdString(path).toStdString() == path;
    all.push_back({"bundle", bundle && isText,
                   path + (isText ? "" : ", a path that is no UTF-8, where Qt finds no plugins")});
    all.push_back(
        {"application library", missing.empty(), missing.empty() ? "can be loaded" : missing});
    all.push_back({"identifier", true, HELPER_IDENTIFIER});
    all.push_back({"store", true, std::string(store::scriptURL())});
    all.push_back(reference());
    if (bundle) {
        all.push_back(uninstaller(*bundle));
        all.push_back(trash(*bundle));
    }
    all.push_back(copy());
    all.push_back(lastRun());
    return all;
}

} // namespace app
