// Runs one step of the removal with BUNDLE as the main bundle: `removal-step launch|check|trash
// BUNDLE`. "check" checks that the bundle can be moved to the Trash.
#include "housekeeping/HelperUtilities.h"
#include "platform/Desktop.h"
#include "tests/support/TestHome.h"

#include <filesystem>
#include <string_view>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        return 2;
    }
    const std::string_view step = arguments[1];
    const std::filesystem::path bundle = arguments[2];
    test::setExecutablePath(bundle / "Contents" / "Linux" / bundle.stem());
    std::filesystem::path culprit;
    const bool done = step == "trash"   ? housekeeping::HelperUtilities::trash(bundle)
                      : step == "check" ? !platform::desktop::checkTrash(bundle, culprit)
                                        : housekeeping::HelperUtilities::launchUninstaller();
    return done ? 0 : 1;
}
