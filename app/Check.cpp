#include "app/Check.h"

#include "app/RunThrottle.h"
#include "app/SubscriptionReference.h"
#include "base/Format.h"
#include "Brand.h"
#include "housekeeping/HelperUtilities.h"
#include "platform/Bundle.h"
#include "platform/Desktop.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "store/FastSpringSubscriptionParser.h"
#include "store/Request.h"
#include "store/ScriptURL.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <unistd.h>

#include <QGuiApplication>
#include <QString>

namespace app {
namespace {

namespace fs = std::filesystem;

using base::formatted;
using housekeeping::HelperUtilities;
using platform::Bundle;

CheckResult passed(std::string name, std::string detail) {
    return {std::move(name), true, std::move(detail)};
}

CheckResult notTested(std::string name, std::string detail) {
    return {std::move(name), std::nullopt, std::move(detail)};
}

CheckResult failed(std::string name, std::string_view reason, std::string_view nextStep) {
    return {std::move(name), false, formatted("%@. Next step: %@", {reason, nextStep})};
}

/// Returns a path as one word of a shell command.
std::string quoted(const std::string& path) {
    std::string word = "'";
    for (const char character : path) {
        word += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return word + "'";
}

/// Returns the step that removes the cause of an error of the file at `path`.
std::string nextStepAfter(const std::error_code& error, const std::string& path) {
    constexpr std::pair<std::errc, const char*> kSteps[] = {
        {std::errc::no_such_file_or_directory, "set HOME, or make the directories of %@"},
        {std::errc::permission_denied, "give the user all rights on %@ and on its directory"},
        {std::errc::read_only_file_system, "make the file system of %@ writable"},
        {std::errc::no_space_on_device, "free space on the file system of %@"},
        {std::errc::file_too_large, "shorten %@"},
        {std::errc::not_a_directory, "move away the file that is in the way of %@"},
        {std::errc::operation_would_block,
         "repeat the check, and end the other start if it stays: fuser %@"},
    };
    for (const auto& [code, step] : kSteps) {
        if (error == code) {
            return formatted(step, {quoted(path)});
        }
    }
    return formatted("look at %@ with ls -ld", {quoted(path)});
}

CheckResult bundleOf(const Bundle& bundle) {
    const std::string path = bundle.bundlePath().native();
    if (QString::fromStdString(path).toStdString() != path) {
        return failed("bundle", path + " is invalid UTF-8, so Qt finds no plugins there",
                      "rename its directories");
    }
    return passed("bundle", path);
}

CheckResult libraries(const std::string& missing) {
    return missing.empty()
               ? passed("application libraries", "all load")
               : failed("application libraries", missing,
                        "install the library that is named, or unpack the package again");
}

/// Checks the settings file: takes the lock, reads it, and writes it without changes.
CheckResult settings() {
    const platform::UserDefaults defaults(HELPER_IDENTIFIER);
    const auto lock = defaults.lock();
    const auto error = lock.error() ? lock.error() : defaults.checkStoring();
    if (error) {
        const fs::path file = defaults.location();
        const auto culprit = lock.error() ? fs::path(file).replace_extension(".lock") : file;
        return failed("last run", culprit.native() + ": " + error.message(),
                      nextStepAfter(error, culprit));
    }
    const auto lastRun = lastRunIn(defaults);
    return passed("last run", formatted("%@, %@, kept in %@",
                                        {lastRun ? base::timestampText(*lastRun) : "none stored",
                                         isRecentRun(lastRun, currentTime)
                                             ? "the next start runs at " +
                                                   base::timestampText(*lastRun + kRunInterval)
                                             : "a start runs now",
                                         defaults.location()}));
}

base::Fetched sendNothing(const base::URL& /*url*/, const base::FetchLimits& /*limits*/) {
    return {};
}

CheckResult reference(const std::optional<std::string>& text, const std::error_code& error) {
    constexpr const char* kName = "subscription reference";
    const std::string file = subscriptionReferenceFile();
    if (error) {
        return failed(kName, file + ": " + error.message(), nextStepAfter(error, file));
    }
    if (!text) {
        return failed(kName, "no subscriptionReference in " + file,
                      "have the product store the customer's reference there");
    }
    const auto request = store::ask(store::Request::GetSubscription, *text, {}, sendNothing);
    return request.isSent ? passed(kName, *text + ", from " + file)
                          : failed(kName, "makes no valid URL: " + request.address,
                                   "correct the reference in " + quoted(file));
}

/// The result of the lookup, and its record for further checks.
struct Lookup {
    CheckResult result;
    std::shared_ptr<store::FastSpringSubscription> record;
};

Lookup lookUp(const std::string& reference) {
    constexpr const char* kName = "store service";
    const auto answer = store::ask(store::Request::GetSubscription, reference);
    if (!answer.data) {
        return {failed(kName, "unreachable: " + answer.address + ": " + answer.failure,
                       "look at the network, the proxy variables and the store service"),
                nullptr};
    }
    store::FastSpringSubscriptionParser parser(*answer.data);
    try {
        if (auto record = parser.parseSubscription()) {
            return {passed(kName, "knows the subscription: " + answer.address), record};
        }
    } catch (const std::out_of_range& failure) {
        return {failed(kName, failure.what(), "have the store service send dates with a Z"),
                nullptr};
    }
    const char* const kind = parser.isHTMLServerError ? "an HTML page"
                             : parser.isParsingError  ? "malformed XML"
                                                      : "no subscription";
    return {failed(kName,
                   formatted("answered with HTTP status %@ and %@: %@",
                             {std::to_string(answer.status), kind, answer.address}),
                   "compare the reference with the store's, and open the address in a browser"),
            nullptr};
}

/// Checks for a program that opens the account page. Names the page if a lookup has found it.
CheckResult accountPage(const std::shared_ptr<store::FastSpringSubscription>& record) {
    constexpr const char* kName = "account page";
    const std::string opener = platform::desktop::opener();
    if (opener.empty()) {
        return failed(kName, "found neither xdg-open nor gio in PATH", "install xdg-utils");
    }
    if (!record) {
        return passed(kName, opener + " opens it. Not tested: its address");
    }
    const std::string page = HelperUtilities::accountPage(record->customerURL);
    if (page.empty()) {
        return failed(kName, "the subscription's record has no address of it",
                      "have the store service send a customerUrl, or set HELPER_ACCOUNT_PAGE");
    }
    return platform::workspace::isOpenable(page)
               ? passed(kName, opener + " opens " + page)
               : failed(kName, "not a web address: " + page,
                        "have the store service send another customerUrl");
}

CheckResult uninstaller(const Bundle& bundle, const std::string& name) {
    const auto path = bundle.pathForAuxiliaryExecutable(name);
    std::error_code error;
    if (!path || !fs::exists(*path, error)) {
        return failed("uninstaller", "not in the bundle: " + name, "unpack the package again");
    }
    const auto program = path->extension() == ".app" ? Bundle::executableOf(*path) : *path;
    if (!fs::is_regular_file(program, error)) {
        return failed("uninstaller", "not a program: " + program.native(),
                      "unpack the package again");
    }
    return access(program.c_str(), R_OK | X_OK) == 0
               ? passed("uninstaller", program.native() + ". Not tested: that it runs")
               : failed("uninstaller", "not executable: " + program.native(),
                        "chmod +rx " + quoted(program));
}

CheckResult uninstallerCopy() {
    const auto path = HelperUtilities::uninstallerCopyPath();
    return path ? passed("uninstaller's copy", path->native())
                : failed("uninstaller's copy",
                         "no directory is private, allows programs and has the space",
                         "set TMPDIR to a directory of the user's own that is not mounted noexec");
}

CheckResult trash(const Bundle& bundle) {
    const std::string path = bundle.bundlePath().native();
    fs::path culprit;
    const auto error = platform::desktop::checkTrash(path, culprit);
    if (!error) {
        return passed("Trash", "can take " + path);
    }
    return failed("Trash", culprit.native() + ": " + error.message(),
                  error == std::errc::not_supported
                      ? "move the bundle to the file system of the user's home"
                      : nextStepAfter(error, culprit));
}

void checkUninstaller(const Bundle& bundle, std::vector<CheckResult>& results) {
    const auto name = HelperUtilities::uninstallerName();
    results.push_back(name.empty() ? passed("uninstaller", "not configured")
                                   : uninstaller(bundle, name));
    if (!name.empty() && results.back().passed == true) {
        results.push_back(uninstallerCopy());
    }
}

} // namespace

std::vector<CheckResult> runChecks(const std::string& missing, bool sendsLookup) {
    std::vector<CheckResult> results;
    const auto bundle = Bundle::mainBundle();
    if (bundle) {
        results.push_back(bundleOf(*bundle));
    }
    results.push_back(libraries(missing));
    results.push_back(settings());
    std::error_code error;
    const auto text = userSubscriptionReference(error);
    results.push_back(reference(text, error));
    std::shared_ptr<store::FastSpringSubscription> record;
    if (sendsLookup && results.back().passed == true) {
        auto lookup = lookUp(*text);
        results.push_back(lookup.result);
        record = lookup.record;
    } else {
        results.push_back(notTested(
            "store service", formatted("%@ with the store identifier %@. --ask sends the lookup",
                                       {store::scriptURL(), HelperUtilities::storeID()})));
    }
    results.push_back(accountPage(record));
    if (bundle) {
        checkUninstaller(*bundle, results);
        results.push_back(missing.empty() ? trash(*bundle)
                                          : notTested("Trash", "needs the application libraries"));
    }
    return results;
}

CheckResult displayResult(const std::string& reasons) {
    return reasons.empty()
               ? passed("display", "connected by " + QGuiApplication::platformName().toStdString())
               : failed("display", reasons, "repeat the check in the customer's desktop session");
}

} // namespace app
