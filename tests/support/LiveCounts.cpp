#include "tests/support/LiveCounts.h"

#include "platform/OvSlab/Tracker.h"
#include "platform/QosOc/Naming.h"

namespace TestSupport {
namespace {

/// What was decoded from a text lives as long as the text, be that a constant.
bool isKeptWithText(const OvSlab::Tracker& tracker) {
    return tracker.typeName() == QosOc::DecodedName::kTypeName;
}

}  // namespace

Counts liveCounts() {
    Counts counts;
    for (const auto* tracker = OvSlab::Tracker::first(); tracker; tracker = tracker->next())
        if (tracker->live() != 0 && !isKeptWithText(*tracker))
            counts[std::string(tracker->typeName())] += tracker->live();
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
