#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string_view>
#include <vector>

#include "platform/OvSlab/Tracker.h"

namespace OvSlab {
namespace {

using ::testing::Contains;
using ::testing::Not;

std::vector<std::string_view> listed() {
    std::vector<std::string_view> names;
    for (const Tracker* tracker = Tracker::first(); tracker != nullptr; tracker = tracker->next())
        names.push_back(tracker->typeName());
    return names;
}

TEST(TrackerTest, isListedWhileItExists) {
    auto tracker = std::make_unique<Tracker>("Toy::Listed");
    EXPECT_THAT(listed(), Contains("Toy::Listed"));
    tracker.reset();
    EXPECT_THAT(listed(), Not(Contains("Toy::Listed")));
}

TEST(TrackerTest, isFoundByTheNameOfItsType) {
    const Tracker tracker("Toy::Found");
    EXPECT_EQ(Tracker::find("Toy::Found"), &tracker);
    EXPECT_EQ(Tracker::find("Toy::Lost"), nullptr);
}

TEST(TrackerTest, leavesTheOthersListedWhicheverGoes) {
    for (std::size_t gone = 0; gone < 3; ++gone) {
        const std::size_t others = listed().size();
        std::unique_ptr<Tracker> trackers[] = {std::make_unique<Tracker>("Toy::A"),
                                               std::make_unique<Tracker>("Toy::B"),
                                               std::make_unique<Tracker>("Toy::C")};
        trackers[gone].reset();
        EXPECT_EQ(listed().size(), others + 2);
        for (const auto& tracker : trackers) {
            if (!tracker) continue;
            EXPECT_EQ(Tracker::find(tracker->typeName()), tracker.get());
        }
    }
}

TEST(TrackerTest, beginsWithoutObjects) {
    const Tracker tracker("Toy::Fresh");
    EXPECT_EQ(tracker.live(), 0u);
    EXPECT_EQ(tracker.total(), 0u);
}

}  // namespace
}  // namespace OvSlab
