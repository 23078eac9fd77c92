#pragma once

#include <memory>

namespace base {

/// Frees a pointer of a C library with that library's function.
template <auto free>
struct Free {
    template <class T>
    void operator()(T* pointer) const {
        free(pointer);
    }
};

/// A unique owner of a C library's pointer, which can be null.
/// @tparam free the library's function that frees such a pointer.
template <class T, auto free>
using Handle = std::unique_ptr<T, Free<free>>;

} // namespace base
