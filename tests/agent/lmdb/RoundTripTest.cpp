#include <gtest/gtest.h>

#include <optional>

#include "tests/agent/lmdb/RandomLines.h"
#include "tests/agent/lmdb/StoredState.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

class RoundTripTest : public ::testing::TestWithParam<unsigned> {
protected:
    std::string folder() const { return folder_ / "store"; }

    TemporaryFolder folder_;
};

constexpr unsigned kLines = 60;
constexpr unsigned kLinesOfARun = 6;

TEST_P(RoundTripTest, findsAllAgainAndGoesOnAsIfNothingHadHappened) {
    RandomLines lines(GetParam());
    TextDatabase uninterrupted;
    std::optional<StoredState> stored(std::in_place, folder());
    for (unsigned i = 0; i < kLines; ++i) {
        const std::string line = lines.next();
        EXPECT_EQ(stored->apply(line), uninterrupted.apply(line));
        ASSERT_EQ(inputsOf(*stored), inputsOf(uninterrupted)) << line;
        if (i % kLinesOfARun != 0) continue;
        const std::string before = stored->contents();
        stored.reset();
        ASSERT_EQ(StoredDatabase(folder()).contents(), before) << line;
        stored.emplace(folder());
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RoundTripTest, ::testing::Range(0U, 12U));

}  // namespace
}  // namespace QosAgent
