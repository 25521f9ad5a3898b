#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "agent/openconfig/Configuration.h"
#include "tests/agent/support/ConfigurationChance.h"
#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/ConfiguredState.h"

namespace QosAgent {
namespace {

using Terms = std::map<std::string, std::string>;

/// A configured term as its state reads.
std::string stateOf(const TermPlan& term, bool isIpv6) {
    std::string text = term.id;
    if (!term.dscp.empty()) text += isIpv6 ? " when ipv6 " : " when ipv4 ";
    if (term.dscp.size() == 1) text += std::to_string(term.dscp.front());
    if (term.dscp.size() > 1) {
        std::string values;
        for (const unsigned value : term.dscp)
            values.append(values.empty() ? "[" : ", ").append(std::to_string(value));
        text += values + "]";
    }
    return term.group.empty() ? text : text + " to " + term.group;
}

Terms stateOf(const ConfigurationPlan& plan) {
    Terms terms;
    for (const ClassifierPlan& classifier : plan.classifiers)
        for (const TermPlan& term : classifier.terms)
            terms[ConfiguredState::keyOf(classifier.name, term.id)] =
                stateOf(term, classifier.isIpv6());
    return terms;
}

/// The terms that both configure alike, as they read.
Terms alike(const ConfigurationPlan& earlier, const ConfigurationPlan& later) {
    Terms both;
    const Terms before = stateOf(earlier);
    for (const auto& [key, text] : stateOf(later)) {
        const auto at = before.find(key);
        if (at != before.end() && at->second == text) both[key] = text;
    }
    return both;
}

class ConfigurationTest : public ::testing::Test {
protected:
    void given(const ConfigurationPlan& plan) {
        ASSERT_EQ(db.configure(documentOf(plan)), "");
        ASSERT_EQ(db.terms(), stateOf(plan));
    }
    /// Goes on to another configuration, and looks at what the state shows on the way there.
    void expectSteady(const ConfigurationPlan& earlier, const ConfigurationPlan& later) {
        const Terms steady = alike(earlier, later);
        TestSupport::StateRecorder recorder(db.state());
        ASSERT_EQ(db.configure(documentOf(later)), "");
        for (const std::string& change : recorder.take()) {
            const std::string key = change.substr(0, change.find(' '));
            const std::size_t slash = key.find('/');
            if (slash == std::string::npos || key.substr(slash) == "/terms") {
                EXPECT_FALSE(change.ends_with(" gone") && holdsSome(steady, key)) << change;
                continue;
            }
            const auto at = steady.find(key);
            if (at == steady.end()) continue;
            EXPECT_EQ(ConfiguredState::shownOf(change.substr(slash + 1)), at->second);
        }
        EXPECT_EQ(db.terms(), stateOf(later));
    }
    void expectNothingPublishedBy(const ConfigurationPlan& plan) {
        ChangeRecorder recorder(db.database);
        ASSERT_EQ(db.configure(documentOf(plan)), "");
        EXPECT_EQ(recorder.take(), Changes{});
    }

    ConfiguredState db;

private:
    static bool holdsSome(const Terms& terms, const std::string& key) {
        const std::string prefix = key.substr(0, key.find('/') + 1);
        return std::any_of(terms.begin(), terms.end(),
                           [&](const auto& term) { return term.first.starts_with(prefix); });
    }
};

ConfigurationPlan attachedPair() {
    return {{"gold", "lead"},
            {{"four", "", {{"v", {46}, "gold"}, {"d", {10, 12}, "lead"}, {"rest", {}}}},
             {"six", "IPV6", {{"v", {46, 8}, "gold"}}}},
            {{"four", "six"}}};
}

TEST_F(ConfigurationTest, showsEachTermAsItIsConfigured) {
    given(attachedPair());
    EXPECT_EQ(TestSupport::textOf(*db.state()),
              "four IPV4 {d when ipv4 [10, 12] to lead, rest to '', v when ipv4 46 to gold}; "
              "six IPV6 {v when ipv6 [46, 8] to gold}");
}

TEST_F(ConfigurationTest, showsASetOfOneAsASingleDscp) {
    given({{}, {{"C", "IPV6", {{"T", {46}, "", true}}}}, {{"", "C"}}});
    EXPECT_EQ(db.terms(), (Terms{{"C/T", "T when ipv6 46"}}));
}

TEST_F(ConfigurationTest, changesOnlyTheStateOfTheTermThatChanged) {
    given(attachedPair());
    ConfigurationPlan later = attachedPair();
    later.classifiers[0].terms[1].dscp = {10, 13};
    TestSupport::StateRecorder recorder(db.state());
    given(later);
    EXPECT_EQ(recorder.take(), Changes{"four/d when ipv4 [10, 13] to lead"});
}

TEST_F(ConfigurationTest, changesATargetGroupAtOnce) {
    given(attachedPair());
    ConfigurationPlan later = attachedPair();
    later.groups = {"tin", "gold"};
    later.classifiers[0].terms[1].group = "tin";
    later.classifiers[0].terms[2].group = "gold";
    expectSteady(attachedPair(), later);
}

TEST_F(ConfigurationTest, holdsATermThroughTheChangeOfItsPair) {
    given(attachedPair());
    ConfigurationPlan later = attachedPair();
    later.interfaces = {{"four", ""}};
    expectSteady(attachedPair(), later);
    expectSteady(later, attachedPair());
    later.interfaces.clear();
    expectSteady(attachedPair(), later);
    expectSteady(later, attachedPair());
}

TEST_F(ConfigurationTest, clearsATargetGroupThatIsLostAsTheClassifierIsDetached) {
    given(attachedPair());
    ConfigurationPlan later = attachedPair();
    later.interfaces.clear();
    later.classifiers[0].terms[0].group.clear();
    expectSteady(attachedPair(), later);
    EXPECT_EQ(db.terms()["four/v"], "v when ipv4 46");
}

TEST_F(ConfigurationTest, removesTermsWithTheirClassifierWhichStaysInTheState) {
    given(attachedPair());
    expectSteady(attachedPair(), {});
    EXPECT_EQ(TestSupport::textOf(*db.state()), "four IPV4; six IPV6");
}

TEST_F(ConfigurationTest, keepsTheFirstTypeOfAClassifierAndShowsItsTermsInTheNewFamily) {
    const ConfigurationPlan earlier{{"g"}, {{"C", "IPV4", {{"T", {1}, "g"}}}}, {{"C", ""}}};
    const ConfigurationPlan later{{"g"}, {{"C", "IPV6", {{"T", {1, 2}, "g"}}}}, {{"", "C"}}};
    given(earlier);
    expectSteady(earlier, later);
    EXPECT_EQ(TestSupport::textOf(*db.state()), "C IPV4 {T when ipv6 [1, 2] to g}");
}

TEST_F(ConfigurationTest, holdsATermWithoutConditionsThroughTheChangeOfItsClassifiersType) {
    const ConfigurationPlan earlier{{"g"}, {{"C", "IPV4", {{"T", {}, "g"}}}}, {{"C", ""}}};
    const ConfigurationPlan later{{"g"}, {{"C", "IPV6", {{"T", {}, "g"}}}}, {{"", "C"}}};
    ConfigurationPlan detached = later;
    detached.interfaces.clear();
    given(earlier);
    expectSteady(earlier, later);
    expectSteady(later, earlier);
    expectSteady(earlier, detached);
    expectSteady(detached, earlier);
}

TEST_F(ConfigurationTest, followsTheConfigurationOfAClassifierThatChangedItsType) {
    given({{"g"}, {{"C", "IPV4", {{"T", {}, "g"}}}}, {{"C", ""}}});
    given({{"g"}, {{"C", "IPV6", {{"T", {}, "g"}}}}, {{"", "C"}}});
    // The policy map has the classifier: what the configuration says alone changes nothing.
    ASSERT_EQ(db.update("qos/openconfig/config/classifiers/classifier/C/terms/term/T/actions",
                        R"({"targetGroup":"other"})"),
              "");
    EXPECT_EQ(db.terms()["C/T"], "T to g");
}

TEST_F(ConfigurationTest, takesTheGroupOfATrafficClassOverFromTheOneThatGoes) {
    ConfigurationPlan later = attachedPair();
    later.groups = {"lead", "zinc"};
    for (ClassifierPlan& classifier : later.classifiers)
        classifier.terms[0].group = "zinc";
    given(attachedPair());
    expectSteady(attachedPair(), later);
}

TEST_F(ConfigurationTest, isTheSameInWhateverOrderThePluginStarts) {
    TextDatabase early;
    ASSERT_EQ(early.apply(R"({"openconfig":)" + documentOf(attachedPair()) + "}"), "");
    given(attachedPair());
    for (const char* mount : {"qos/status", "acl/config/cli", "qos/input/config/cli",
                              "qos/openconfig/config/classifiers"})
        EXPECT_EQ(early.at(mount), db.at(mount));
}

class ConfigurationChanceTest : public ConfigurationTest,
                                public ::testing::WithParamInterface<unsigned> {};

TEST_P(ConfigurationChanceTest, holdsEachTermThatTwoConfigurationsHaveAlike) {
    for (unsigned round = 0; round < 50; ++round) {
        Chance chance(1000 * GetParam() + round);
        ConfigurationPlan earlier;
        for (unsigned step = 0; step < 6; ++step) {
            const ConfigurationPlan later = chance.configuration();
            SCOPED_TRACE(documentOf(earlier) + "\nthen\n" + documentOf(later));
            expectSteady(earlier, later);
            expectNothingPublishedBy(later);
            if (HasFailure()) return;
            earlier = later;
        }
        expectSteady(earlier, {});
        ASSERT_EQ(db.terms(), Terms{});
    }
    EXPECT_EQ(db.at("qos/openconfig/config/classifiers"), "{}");
    EXPECT_EQ(db.at("qos/input/config/cli"), "{}");
    EXPECT_EQ(db.at("qos/status"),
              R"({"pmapTypeStatus":{"mapQos":{}},"cmapTypeStatus":{"mapQos":{}}})");
    EXPECT_EQ(db.at("acl/config/cli"), R"({"aclTypeConfig":{"ipv4":{},"ipv6":{}}})");
}

INSTANTIATE_TEST_SUITE_P(Seeds, ConfigurationChanceTest, ::testing::Range(0u, 8u));

struct Size {
    unsigned classifiers, terms, values;
    friend std::ostream& operator<<(std::ostream& out, const Size& size) {
        return out << size.classifiers << 'x' << size.terms << 'x' << size.values;
    }
};

class BigConfigurationTest : public ConfigurationTest,
                             public ::testing::WithParamInterface<Size> {};

TEST_P(BigConfigurationTest, isShownWholeChangedInOnePlaceAndRemoved) {
    const auto [classifiers, terms, values] = GetParam();
    const ConfigurationPlan plan = bigConfiguration(classifiers, terms, values);
    given(plan);
    expectNothingPublishedBy(plan);
    ConfigurationPlan later = plan;
    later.classifiers.back().terms.back().dscp.front() = 0;
    const std::string changed =
        later.classifiers.back().name + '/' + stateOf(later.classifiers.back().terms.back(), true);
    TestSupport::StateRecorder recorder(db.state());
    given(later);
    EXPECT_EQ(recorder.take(), Changes{changed});
    given({});
}

INSTANTIATE_TEST_SUITE_P(Sizes, BigConfigurationTest,
                         ::testing::Values(Size{500, 8, 8}, Size{64, 64, 1}),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace QosAgent
