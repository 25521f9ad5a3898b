#include <gtest/gtest.h>

#include "platform/QosOc/State/Terms.h"
#include "tests/support/Printers.h"

namespace QosOc {
namespace {

using Config::TermConditions;
using Config::TermConditionsIpConfig;
using Type = QosOc::Classifier::Type;

TermConditionsIpConfig conditionOf(const Orin::Vector<std::uint8_t>& values) {
    TermConditionsIpConfig made;
    made.dscpsAre(values);
    return made;
}

class StateTermsTest : public ::testing::Test {
protected:
    StateTermsTest() { terms->bareTermIs("10"); }
    State::Term& term() { return *terms->term("10"); }

    const Orin::Ptr<State::Terms> terms = State::Terms::create();
};

TEST_F(StateTermsTest, tellsWhetherConditionsAreOthers) {
    EXPECT_FALSE(terms->conditionsIs(term(), std::nullopt));
    EXPECT_TRUE(terms->conditionsIs(term(), TermConditions()));
    EXPECT_FALSE(terms->conditionsIs(term(), TermConditions()));
}

TEST_F(StateTermsTest, tellsWhetherValuesAreOthers) {
    EXPECT_TRUE(terms->dscpsAre(term(), Type::IPV6, {46}));
    EXPECT_FALSE(terms->dscpsAre(term(), Type::IPV6, {46}));
    EXPECT_TRUE(terms->dscpsAre(term(), Type::IPV4, {46}));
}

TEST_F(StateTermsTest, emptiesTheOtherFamilyThoughTheValuesAreTheSame) {
    TermConditions both;
    both.ipv4 = conditionOf({46});
    both.ipv6 = conditionOf({10});
    terms->conditionsIs(term(), std::optional(both));
    EXPECT_TRUE(terms->dscpsAre(term(), Type::IPV4, {46}));
    both.ipv6 = TermConditionsIpConfig();
    EXPECT_EQ(term().conditions, both);
}

TEST_F(StateTermsTest, tellsWhetherTheTargetGroupIsAnother) {
    EXPECT_TRUE(terms->targetGroupIs(term(), ""));
    EXPECT_FALSE(terms->targetGroupIs(term(), ""));
    EXPECT_TRUE(terms->targetGroupIs(term(), "gold"));
    EXPECT_FALSE(terms->targetGroupIs(term(), "gold"));
}

TEST(TermConditionsIpConfigTest, tellsWhetherItHasExactlyTheseValues) {
    EXPECT_TRUE(conditionOf({46}).hasDscps({46}));
    EXPECT_FALSE(conditionOf({46}).hasDscps({10}));
    EXPECT_TRUE(conditionOf({46, 10}).hasDscps({46, 10}));
    EXPECT_FALSE(conditionOf({46, 10}).hasDscps({10, 46}));
    EXPECT_FALSE(conditionOf({46}).hasDscps({}));
    TermConditionsIpConfig both(46);
    both.dscpSetPush(1);
    both.dscpSetPush(2);
    EXPECT_FALSE(both.hasDscps({46}));
    EXPECT_FALSE(both.hasDscps({1, 2}));
}

}  // namespace
}  // namespace QosOc
