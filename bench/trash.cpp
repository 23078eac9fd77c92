// Moves bundles to the Trash of a temporary home, in turn with the helper's function and with
// GIO's alone. `trash ROUNDS` prints both medians in microseconds.
#include "housekeeping/HelperUtilities.h"
#include "tests/support/TestHome.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <vector>

#include <gio/gio.h>

namespace {

bool trashByGIO(const std::filesystem::path& path) {
    GFile* const file = g_file_new_for_path(path.c_str());
    const bool done = g_file_trash(file, nullptr, nullptr) != FALSE;
    g_object_unref(file);
    return done;
}

template <class Trash>
double microsecondsOf(Trash trash) {
    const test::TestBundle bundle(test::TestHome::path() / "Applications" / "Helper.app");
    const auto start = std::chrono::steady_clock::now();
    const bool done = trash(bundle.path());
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
    if (!done) {
        std::cerr << "trash: cannot move the bundle to the Trash\n";
        std::exit(EXIT_FAILURE);
    }
    return time.count();
}

double medianOf(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argumentCount, char** arguments) {
    const test::TestHome home;
    std::vector<double> ours;
    std::vector<double> peers;
    for (int round = argumentCount > 1 ? std::atoi(arguments[1]) : 1; round > 0; --round) {
        ours.push_back(microsecondsOf(housekeeping::HelperUtilities::trash));
        peers.push_back(microsecondsOf(trashByGIO));
    }
    std::cout << medianOf(ours) << " " << medianOf(peers) << "\n";
}
