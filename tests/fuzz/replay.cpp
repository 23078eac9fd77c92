// Runs a fuzz target over the files of a folder, as a plain test: replay FOLDER
#include "tests/fuzz/Fuzz.h"
#include "tests/support/TestHome.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

int main(int argumentCount, char** arguments) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(
             argumentCount == 2 ? arguments[1] : "/no/folder/was/named")) {
        fuzz(test::readFile(entry.path()));
        ++count;
    }
    std::cout << count << " inputs\n";
    return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
