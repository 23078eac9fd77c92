// Carries out one step of the removal: `removal-step launch|trash BUNDLE`, where BUNDLE takes the
// place of the program's own bundle.
#include "housekeeping/HelperUtilities.h"
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
    const bool done = step == "trash" ? housekeeping::HelperUtilities::trash(bundle)
                                      : housekeeping::HelperUtilities::launchUninstaller();
    return done ? 0 : 1;
}
