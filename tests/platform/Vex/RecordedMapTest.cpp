#include <gtest/gtest.h>

#include <string>

#include "platform/OvSlab/Tracker.h"
#include "platform/Vex/RecordedMap.h"

namespace Vex {
namespace {

struct Line {
    Orin::String name;
    int depth;
};
using Lines = RecordedMap<Line, &Line::name>;

Orin::String named(int number) {
    return Orin::String("line " + std::to_string(number));
}

TEST(RecordedMapTest, isEmptyAtFirst) {
    const Lines lines;
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(lines.find("a"), nullptr);
}

TEST(RecordedMapTest, findsWhatWasAdded) {
    Lines lines;
    EXPECT_EQ(lines.is({"a", 1}).depth, 1);
    lines.is({"", 2});
    EXPECT_FALSE(lines.empty());
    ASSERT_NE(lines.find("a"), nullptr);
    EXPECT_EQ(lines.find("a")->depth, 1);
    ASSERT_NE(lines.find(""), nullptr);
    EXPECT_EQ(lines.find("")->depth, 2);
    EXPECT_EQ(lines.find("b"), nullptr);
}

TEST(RecordedMapTest, replacesTheEntryWithTheSameKey) {
    Lines lines;
    lines.is({"a", 1});
    lines.is({"b", 2});
    EXPECT_EQ(lines.is({"a", 3}).depth, 3);
    EXPECT_EQ(lines.find("a")->depth, 3);
    EXPECT_EQ(lines.find("b")->depth, 2);
}

TEST(RecordedMapTest, findsEachOfManyEntries) {
    constexpr int kMany = 1'000;
    Lines lines;
    for (int i = 0; i != kMany; ++i)
        lines.is({named(i), i});
    for (int i = 0; i != kMany; ++i)
        EXPECT_EQ(lines.find(named(i))->depth, i);
    EXPECT_EQ(lines.find(named(kMany)), nullptr);
}

TEST(RecordedMapTest, takesItsMemoryFromTheSlabAndGivesItBack) {
    const OvSlab::Tracker& memory = OvSlab::TrackerOf<OvSlab::ContainerMemory>::tracker;
    const std::size_t before = memory.live();
    {
        Lines lines;
        EXPECT_EQ(memory.live(), before);
        lines.is({"a", 1});
        EXPECT_EQ(memory.live(), before + 2);
    }
    EXPECT_EQ(memory.live(), before);
}

}  // namespace
}  // namespace Vex
