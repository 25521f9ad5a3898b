#include "tests/support/LiveCounts.h"

#include "platform/OvSlab/Tracker.h"

namespace TestSupport {

Counts liveCounts() {
    Counts counts;
    for (const auto* tracker = OvSlab::Tracker::first(); tracker; tracker = tracker->next())
        if (tracker->live() != 0) counts[std::string(tracker->typeName())] += tracker->live();
    return counts;
}

std::size_t liveCount(std::string_view typeName) {
    const auto counts = liveCounts();
    const auto at = counts.find(std::string(typeName));
    return at == counts.end() ? 0 : at->second;
}

void LiveCountsListener::OnTestStart(const ::testing::TestInfo&) {
    before_ = liveCounts();
}

void LiveCountsListener::OnTestEnd(const ::testing::TestInfo&) {
    EXPECT_EQ(liveCounts(), before_) << "objects alive at the end of the test, then at its start";
}

}  // namespace TestSupport
