#pragma once

#include <cstdlib>
#include <string_view>

/// Takes one input; defined once in each fuzz target. A fault is an abort, a sanitizer's report or
/// an exception that leaves it.
void fuzz(std::string_view input);

inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}
