#pragma once

#include <memory>

namespace base {

/// Frees a pointer of a C library by the function that the library has for it.
template <auto free>
struct Free {
    template <class T>
    void operator()(T* pointer) const {
        free(pointer);
    }
};

/// Owns a pointer of a C library, or null.
/// @tparam free the function of that library which takes such a pointer back.
template <class T, auto free>
using Handle = std::unique_ptr<T, Free<free>>;

} // namespace base
