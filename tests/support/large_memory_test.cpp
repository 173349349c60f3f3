#include "support/large_memory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morquill {
namespace {

TEST(ReserveLarge, MakesRoomAndKeepsWhatIsThere) {
    for (const std::size_t count : {std::size_t{10}, std::size_t{3} << 20}) {
        std::vector<int> list{1, 2, 3};
        reserveLarge(list, count);
        EXPECT_GE(list.capacity(), count);
        EXPECT_EQ(list, (std::vector<int>{1, 2, 3}));
        const int* place = list.data();
        list.resize(count, 7);
        EXPECT_EQ(list.data(), place) << "nothing moves any more";
        EXPECT_EQ(list.back(), 7);
    }
}

TEST(ReserveLarge, NeverShrinks) {
    std::string text(100, 'a');
    reserveLarge(text, 10);
    EXPECT_EQ(text, std::string(100, 'a'));
}

TEST(PreferHugePages, TakesBlocksThatBeginAnywhere) {
    std::vector<char> block(std::size_t{9} << 20);
    preferHugePages(block.data() + 5, block.size() - 5);
    preferHugePages(block.data(), 0);
    block.back() = 'x';
    EXPECT_EQ(block.front(), '\0');
    EXPECT_EQ(block.back(), 'x');
}

TEST(ReserveHeap, LeavesTheHeapUsable) {
    reserveHeap(10);
    reserveHeap(std::size_t{64} << 20);
    std::vector<std::string> texts(100'000, std::string(100, 'a'));
    EXPECT_EQ(texts.back(), std::string(100, 'a'));
}

TEST(KeepUntilExit, KeepsEachValueWhereItIs) {
    struct Counted {
        explicit Counted(int& destroyed) : count(&destroyed) {}
        Counted(Counted&& other) noexcept : count(std::exchange(other.count, nullptr)) {}
        ~Counted() {
            if (count != nullptr) {
                ++*count;
            }
        }
        int* count;
    };
    static int destroyed = 0;
    Counted& first = keepUntilExit(Counted(destroyed));
    Counted& second = keepUntilExit(Counted(destroyed));
    EXPECT_NE(&first, &second);
    EXPECT_EQ(destroyed, 0);
}

} // namespace
} // namespace morquill
