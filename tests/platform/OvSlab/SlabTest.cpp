#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <random>
#include <set>
#include <stdexcept>
#include <vector>

#include "platform/Orin/ThreadControl.h"
#include "platform/OvSlab/Slab.h"

namespace OvSlab {
namespace {

class SlabTest : public ::testing::Test {
protected:
    ~SlabTest() override { EXPECT_EQ(tracker.live(), 0u); }
    void* allocated(std::size_t size) { return slabAlloc(size, tracker); }
    void free(void* memory, std::size_t size) { slabFree(memory, size, tracker); }

    Tracker tracker{"OvSlab::SlabTest"};
};

TEST_F(SlabTest, countsWhatIsAliveAndWhatEverWas) {
    void* first = allocated(40);
    void* second = allocated(40);
    EXPECT_EQ(tracker.live(), 2u);
    EXPECT_EQ(tracker.total(), 2u);
    EXPECT_EQ(tracker.objectSize(), 40u);
    free(first, 40);
    EXPECT_EQ(tracker.live(), 1u);
    EXPECT_EQ(tracker.total(), 2u);
    free(second, 40);
}

TEST_F(SlabTest, givesOutAgainWhatWasTakenBack) {
    if (Impl::passesThrough()) GTEST_SKIP() << "sanitizers see every request";
    void* first = allocated(48);
    free(first, 48);
    void* second = allocated(41);
    EXPECT_EQ(second, first) << "the same cells serve 33 to 48 bytes";
    free(second, 41);
}

#if defined(__SANITIZE_ADDRESS__)
TEST_F(SlabTest, letsTheSanitizerSeeAUseAfterFree) {
    auto* memory = static_cast<volatile char*>(allocated(48));
    free(const_cast<char*>(memory), 48);
    EXPECT_DEATH(memory[40] = 1, "AddressSanitizer: (use-after-poison|heap-use-after-free)");
}
#endif

TEST_F(SlabTest, givesOutPlacesForNothingToo) {
    void* first = allocated(0);
    void* second = allocated(0);
    EXPECT_NE(first, second);
    free(first, 0);
    free(second, 0);
}

TEST_F(SlabTest, keepsSizesApart) {
    if (Impl::passesThrough()) GTEST_SKIP() << "sanitizers see every request";
    void* first = allocated(48);
    free(first, 48);
    void* second = allocated(49);
    EXPECT_NE(second, first);
    free(second, 49);
}

TEST_F(SlabTest, alignsEverySizeForAnyObject) {
    for (std::size_t size = 1; size <= 600; ++size) {
        void* memory = allocated(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignof(std::max_align_t), 0u) << size;
        free(memory, size);
    }
}

/// Fills every piece with a byte of its own: a piece that lay over another would change it.
TEST_F(SlabTest, letsNoTwoPiecesOverlap) {
    struct Piece {
        unsigned char* memory;
        std::size_t size;
        unsigned char filling;
    };
    std::mt19937 random(3);
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < 6'000; ++i) {
        const std::size_t size = 1 + random() % 700;
        const auto filling = static_cast<unsigned char>(i);
        auto* memory = static_cast<unsigned char*>(allocated(size));
        std::memset(memory, filling, size);
        pieces.push_back({memory, size, filling});
        if (random() % 3 == 0) {
            std::swap(pieces[random() % pieces.size()], pieces.back());
            free(pieces.back().memory, pieces.back().size);
            pieces.pop_back();
        }
    }
    for (const Piece& piece : pieces) {
        EXPECT_TRUE(std::all_of(piece.memory, piece.memory + piece.size,
                                [&](unsigned char byte) { return byte == piece.filling; }));
        free(piece.memory, piece.size);
    }
}

TEST_F(SlabTest, countsNothingWhenTheAllocationFails) {
    allocationHookIs([](std::size_t) { throw std::bad_alloc(); });
    EXPECT_THROW(allocated(40), std::bad_alloc);
    allocationHookIs(nullptr);
    EXPECT_EQ(tracker.live(), 0u);
    EXPECT_EQ(tracker.total(), 0u);
}

TEST_F(SlabTest, tellsItsHookTheSize) {
    static std::vector<std::size_t> sizes;
    sizes.clear();
    allocationHookIs([](std::size_t size) { sizes.push_back(size); });
    void* small = allocated(40);
    void* large = allocated(4'000);
    allocationHookIs(nullptr);
    EXPECT_EQ(sizes, (std::vector<std::size_t>{40, 4'000}));
    free(small, 40);
    free(large, 4'000);
}

TEST_F(SlabTest, servesAsWellWhileSeveralThreadsAreActive) {
    Orin::ThreadControl::severalThreadsActiveIs(true);
    void* memory = allocated(40);
    EXPECT_EQ(tracker.live(), 1u);
    free(memory, 40);
    Orin::ThreadControl::severalThreadsActiveIs(false);
}

class Dinghy : public Slabbed<Dinghy> {
public:
    static constexpr std::string_view kTypeName = "OvSlab::Dinghy";
    explicit Dinghy(bool leaks) {
        if (leaks) throw std::runtime_error("leaks");
    }

private:
    [[maybe_unused]] std::uint64_t room_[5] = {};
};

TEST(SlabbedTest, countsItsObjectsUnderTheNameOfTheirType) {
    const Tracker* tracker = Tracker::find("OvSlab::Dinghy");
    ASSERT_NE(tracker, nullptr);
    auto* dinghy = new Dinghy(false);
    EXPECT_EQ(tracker->live(), 1u);
    EXPECT_EQ(tracker->objectSize(), sizeof(Dinghy));
    delete dinghy;
    EXPECT_EQ(tracker->live(), 0u);
}

TEST(SlabbedTest, givesTheMemoryBackWhenAConstructorThrows) {
    const Tracker* tracker = Tracker::find("OvSlab::Dinghy");
    const std::size_t before = tracker->total();
    EXPECT_THROW(new Dinghy(true), std::runtime_error);
    EXPECT_EQ(tracker->live(), 0u);
    EXPECT_EQ(tracker->total(), before + 1);
}

}  // namespace
}  // namespace OvSlab
