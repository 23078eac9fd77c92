#include "base/Arena.h"

#include "tests/support/Test.h"

#include <bit>

namespace base {
namespace {

TEST(Arena, KeepsEachPieceWhileItGrowsAndAfterAnInnerArenaEnded) {
    constexpr std::string_view kContent = "content";
    const Arena outer;
    auto* text = static_cast<char*>(Arena::allocate(kContent.size()));
    EXPECT_EQ(std::bit_cast<std::uintptr_t>(text) % alignof(std::max_align_t), 0U);
    std::copy(kContent.begin(), kContent.end(), text);
    {
        const Arena inner;
        text = static_cast<char*>(Arena::reallocate(text, 100));
    }
    auto* const other = static_cast<char*>(Arena::allocate(10'000));
    std::fill_n(other, 10'000, 'x');
    EXPECT_EQ(std::string_view(text, kContent.size()), kContent);
    text = static_cast<char*>(Arena::reallocate(text, 20'000)); // exceeds the buffer
    EXPECT_EQ(std::string_view(text, kContent.size()), kContent);
    Arena::release(text);
    Arena::release(other);
}

} // namespace
} // namespace base
