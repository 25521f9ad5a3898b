#include "tests/support/LiveCounts.h"

#include "platform/OvSlab/Tracker.h"

namespace TestSupport {

std::map<std::string, std::size_t> liveCounts() {
    std::map<std::string, std::size_t> counts;
    for (const auto* tracker = OvSlab::Tracker::first(); tracker; tracker = tracker->next())
        if (tracker->live() != 0) counts[std::string(tracker->typeName())] += tracker->live();
    return counts;
}

std::size_t liveCount(std::string_view typeName) {
    const auto counts = liveCounts();
    const auto at = counts.find(std::string(typeName));
    return at == counts.end() ? 0 : at->second;
}

LiveCounts::LiveCounts() : before_(liveCounts()) {}

LiveCounts::~LiveCounts() {
    EXPECT_EQ(liveCounts(), before_) << "objects alive at the end of the test, then at its start";
}

}  // namespace TestSupport
