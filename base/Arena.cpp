#include "base/Arena.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>

namespace base {

/// The header before each piece of the buffer.
struct alignas(std::max_align_t) Arena::Piece {
    std::size_t size;
};

thread_local Arena* Arena::current_ = nullptr;

Arena::Arena() {
    if (current_ == nullptr) {
        current_ = this;
    }
}

Arena::~Arena() {
    if (current_ == this) {
        current_ = nullptr;
    }
}

void* Arena::allocate(std::size_t size) noexcept {
    if (size > kBytes - std::min(current_->used_ + sizeof(Piece), kBytes)) {
        return std::malloc(size);
    }
    auto* const piece = new (current_->bytes_ + current_->used_) Piece{size};
    current_->used_ += sizeof(Piece) + (size + sizeof(Piece) - 1) / sizeof(Piece) * sizeof(Piece);
    return piece + 1;
}

void* Arena::reallocate(void* old, std::size_t size) noexcept {
    if (old == nullptr || !current_->holds(old)) {
        return old == nullptr ? allocate(size) : std::realloc(old, size);
    }
    void* const memory = allocate(size);
    if (memory != nullptr) {
        std::memcpy(memory, old, std::min(size, (static_cast<Piece*>(old) - 1)->size));
    }
    return memory;
}

void Arena::release(void* memory) noexcept {
    if (!current_->holds(memory)) {
        std::free(memory);
    }
}

bool Arena::holds(const void* memory) const {
    return !std::less<>()(memory, static_cast<const void*>(bytes_)) &&
           std::less<>()(memory, static_cast<const void*>(bytes_ + kBytes));
}

} // namespace base
