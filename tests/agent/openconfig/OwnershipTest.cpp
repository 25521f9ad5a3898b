#include <gtest/gtest.h>

#include <set>

#include "agent/openconfig/Ownership.h"
#include "tests/agent/support/ConfigurationChance.h"
#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/MemberPaths.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

const std::string kGroupMap = "qos/input/config/cli/forwardingGroupNameToTcMap";
const std::string kCmap = "qos/status/cmapTypeStatus/mapQos/cmapStatus/openconfig:C:T";
const std::string kPmap = "qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:C:";
const std::string kClass = kPmap + "/classes/openconfig:C:T";
const std::string kAcl = "acl/config/cli/aclTypeConfig/ipv4/aclConfig/openconfig:C:T";
const std::string kRules = kAcl + "/aclSubConfig";
const std::string kClassifier = "qos/openconfig/config/classifiers/classifier/C";
const std::string kTerm = kClassifier + "/terms/term/T";

class OwnershipTest : public ::testing::Test {
protected:
    void configure(const ConfigurationPlan& plan) {
        ASSERT_EQ(db.apply(R"({"openconfig":)" + documentOf(plan) + "}"), "");
    }
    void configured() { configure({{"g"}, {{"C", "IPV4", {{"T", {1, 2}, "g"}}}}, {{"C", ""}}}); }
    void line(const std::string& path, const std::string& value) {
        ASSERT_EQ(db.update(path, value), "");
    }
    void removed(const std::string& path) { ASSERT_EQ(db.remove(path), ""); }
    /// What stays of the members below a path when nothing is configured any more.
    std::set<std::string> left(const std::string& path) {
        configure({});
        std::set<std::string> below;
        for (const std::string& member : memberPaths(db.database))
            if (member.starts_with(path)) below.insert(member.substr(path.size()));
        return below;
    }

    using Left = std::set<std::string>;
    TextDatabase db;
};

TEST_F(OwnershipTest, takesBackWhatItMadeWhereOthersRemovedTheirs) {
    line(kCmap + "/match/matchIpAccessGroup", R"("x")");
    configured();
    removed(kCmap);
    configured();
    EXPECT_EQ(left(kCmap), Left{});
}

TEST_F(OwnershipTest, leavesWhatOthersMadeInThePlaceOfItsOwn) {
    configured();
    removed(kCmap);
    line(kCmap + "/match/matchIpAccessGroup", R"("x")");
    configured();
    EXPECT_EQ(left(kCmap), (Left{"", "/match/matchIpAccessGroup"}));
}

TEST_F(OwnershipTest, takesWhatOthersReplacedForTheirs) {
    configured();
    ASSERT_EQ(db.replace(kRules + "/ipRuleById/10", R"({"filter":{"dscpValue":9}})"), "");
    EXPECT_EQ(left(kAcl), (Left{"", "/aclSubConfig", "/aclSubConfig/ipRuleById/10"}));
}

TEST_F(OwnershipTest, leavesTheGroupMapToTheGroupsOfOthers) {
    configured();
    line(kGroupMap + "/tc/h", "9");
    EXPECT_EQ(left(kGroupMap), (Left{"", "/tc/h"}));
}

TEST_F(OwnershipTest, leavesAClassMapToTheMatchOfOthers) {
    configured();
    line(kCmap + "/match/matchCos", R"("5")");
    EXPECT_EQ(left(kCmap), (Left{"", "/match/matchCos"}));
}

TEST_F(OwnershipTest, leavesAnAccessListToTheRulesOfOthers) {
    configured();
    line(kRules + "/ruleIdBySequence/15", "15");
    line(kRules + "/ipRuleById/15", "{}");
    EXPECT_EQ(left(kAcl), (Left{"", "/aclSubConfig", "/aclSubConfig/ruleIdBySequence/15",
                                "/aclSubConfig/ipRuleById/15"}));
}

TEST_F(OwnershipTest, tracksRulesByIdApartFromTheirSequenceNumbers) {
    line(kRules + "/ipRuleById/10", "{}");
    configured();
    EXPECT_EQ(left(kAcl), (Left{"", "/aclSubConfig", "/aclSubConfig/ipRuleById/10"}));
}

TEST_F(OwnershipTest, makesANullEntryOfOthersNullAgain) {
    ASSERT_EQ(db.update(kAcl, "null"), "");
    configured();
    configured();
    EXPECT_EQ(left(kAcl), Left{""});
    EXPECT_NE(db.all().find(R"("openconfig:C:T":null)"), std::string::npos);
}

TEST_F(OwnershipTest, leavesAPolicyMapToTheClassesAndActionsOfOthers) {
    configured();
    line(kPmap + "/classes/mine", "{}");
    line(kClass + "/action/7", "1");
    EXPECT_EQ(left(kPmap), (Left{"", "/classes/mine", "/classes/openconfig:C:T",
                                 "/classes/openconfig:C:T/action/7"}));
}

TEST_F(OwnershipTest, leavesTheTrafficClassOfTheClassesOfOthers) {
    line(kClass + "/action/4", "9");
    configured();
    EXPECT_EQ(left(kPmap),
              (Left{"", "/classes/openconfig:C:T", "/classes/openconfig:C:T/action/4"}));
}

TEST_F(OwnershipTest, leavesATrafficClassThatOthersSetForATermWithoutAGroup) {
    const ConfigurationPlan plan{{}, {{"C", "", {{"T", {}}}}}, {{"C", ""}}};
    configure(plan);
    line(kClass + "/action/4", "9");
    configure(plan);
    EXPECT_NE(db.all().find(R"("action":{"4":9})"), std::string::npos);
    EXPECT_EQ(left(kClass), (Left{"", "/action/4"}));
}

TEST_F(OwnershipTest, leavesAClassifierToTheTermsOfOthers) {
    configured();
    line(kClassifier + "/terms/term/mine", "{}");
    EXPECT_EQ(left(kClassifier), (Left{"", "/terms", "/terms/term/mine"}));
}

TEST_F(OwnershipTest, unsetsTheOptionalPartsThatItSetOfWhatOthersMade) {
    line(kTerm, "{}");
    configured();
    EXPECT_EQ(left(kClassifier), (Left{"", "/terms", "/terms/term/T"}));
}

TEST_F(OwnershipTest, leavesTheOptionalPartsOfOthersAsTheConfigurationLeftThem) {
    line(kClassifier + "/config/type", R"("IPV6")");
    line(kTerm, R"({"conditions":{"ipv4":{"dscp":9}},"actions":{"targetGroup":"x"}})");
    configure({{"g"}, {{"C", "IPV4", {{"T", {1}, "g"}}}}, {}});
    EXPECT_EQ(left(kClassifier),
              (Left{"", "/config/type", "/terms", "/terms/term/T", "/terms/term/T/conditions",
                    "/terms/term/T/conditions/ipv4/dscp", "/terms/term/T/actions"}));
    EXPECT_NE(db.all().find(R"("actions":{"targetGroup":"g"})"), std::string::npos);
}

TEST_F(OwnershipTest, removesWhatItLeftBehindOnceItHoldsNothingOfOthers) {
    configured();
    line(kCmap + "/match/matchCos", R"("5")");
    line(kClassifier + "/terms/term/mine", "{}");
    configure({});
    removed(kCmap + "/match/matchCos");
    removed(kClassifier + "/terms/term/mine");
    EXPECT_EQ(left(kCmap), Left{});
    EXPECT_EQ(left(kClassifier), Left{});
}

TEST_F(OwnershipTest, takesUpAgainWhatItLeftBehind) {
    configured();
    line(kCmap + "/match/matchCos", R"("5")");
    configure({});
    configured();
    removed(kCmap + "/match/matchCos");
    EXPECT_EQ(left(kCmap), Left{});
}

/// Lines of others over the names that the made-up configurations use.
class ChanceLines {
public:
    explicit ChanceLines(Chance& chance) : chance_(chance) {}

    struct Line {
        std::string operation, path, value;

        std::string text() const {
            std::string text = "{\"" + operation + "\":\"" + path + '"';
            if (operation != "delete") text += ",\"value\":" + value;
            return text + '}';
        }
    };

    Line next() {
        const std::string term = chance_.of(kTerms);
        const std::string classifier = chance_.of(kNames);
        const std::string name = "openconfig:" + classifier + ':' + term;
        const std::string pair =
            "openconfig:" + std::string(chance_.of(kFours)) + ':' + std::string(chance_.of(kSixes));
        switch (chance_.below(5)) {
            case 0:
                return line(kGroupMap,
                            {{"", R"({"tc":{"g1":7}})"}, {"/tc/g0", "3"}, {"/tc/g2", "0"}});
            case 1:
                return line("qos/status/cmapTypeStatus/mapQos/cmapStatus/" + name,
                            {{"", R"({"match":{"matchIpAccessGroup":"x"}})"},
                             {"/match/matchIpAccessGroup", R"("y")"},
                             {"/match/matchIpv6AccessGroup", R"("y")"},
                             {"/match/matchCos", R"("5")"}});
            case 2:
                return line("qos/status/pmapTypeStatus/mapQos/pmapStatus/" + pair,
                            {{"", R"({"version":3,"classes":{"mine":{}}})"},
                             {"/classes/" + name, "{}"},
                             {"/classes/" + name + "/action/4", "2"},
                             {"/classes/" + name + "/action/7", "2"}});
            case 3:
                return accessListLine(name);
            default:
                return classifierLine(classifier, term);
        }
    }

private:
    static constexpr std::array kNames{"a", "b", "c", "d"};
    static constexpr std::array kFours{"a", "b", ""};
    static constexpr std::array kSixes{"c", "d"};
    static constexpr std::array kTerms{"1", "2", "3"};
    static constexpr std::array kOperations{"update", "update", "replace", "delete"};
    using Parts = std::vector<std::pair<std::string, std::string>>;

    Line line(const std::string& place, const Parts& parts) {
        const auto& [part, value] = chance_.of(parts);
        return {chance_.of(kOperations), place + part, value};
    }
    Line accessListLine(const std::string& name) {
        const bool isIpv6 = chance_.below(2) == 0;
        const std::string rules = isIpv6 ? "ip6RuleById" : "ipRuleById";
        return line(std::string("acl/config/cli/aclTypeConfig/") + (isIpv6 ? "ipv6" : "ipv4") +
                        "/aclConfig/" + name,
                    {{"", "null"},
                     {"", "{}"},
                     {"", R"({"aclSubConfig":{"ruleIdBySequence":{"10":10}}})"},
                     {"/aclSubConfig", R"({"ruleIdBySequence":{"20":10}})"},
                     {"/aclSubConfig/ruleIdBySequence/10", "10"},
                     {"/aclSubConfig/ruleIdBySequence/15", "15"},
                     {"/aclSubConfig/" + rules + "/10", "{}"},
                     {"/aclSubConfig/" + rules + "/20", "{}"}});
    }
    Line classifierLine(const std::string& classifier, const std::string& term) {
        const std::string place = "/terms/term/" + term;
        return line("qos/openconfig/config/classifiers/classifier/" + classifier,
                    {{"", R"({"config":{"type":"IPV6"}})"},
                     {"/config/type", R"("IPV4")"},
                     {"/terms", "{}"},
                     {"/terms", R"({"term":{"1":{},"mine":{}}})"},
                     {place, R"({"conditions":{"ipv4":{"dscp":9}}})"},
                     {place + "/conditions", R"({"ipv6":{"dscp":9}})"},
                     {place + "/conditions/ipv4/dscp", "8"},
                     {place + "/actions", R"({"targetGroup":"g0"})"}});
    }

    Chance& chance_;
};

/// Knows who made which member, from what is there before and after each operation.
class OwnersByComparison {
public:
    explicit OwnersByComparison(TextDatabase& db) : db_(db) {}

    void apply(const ChanceLines::Line& line) {
        const Paths before = memberPaths(db_.database);
        ASSERT_EQ(db_.apply(line.text()), "");
        const Paths after = memberPaths(db_.database);
        forgetGone(after);
        for (const std::string& path : after) {
            const bool isReplaced = line.operation == "replace" &&
                                    (path == line.path || path.starts_with(line.path + '/'));
            if (isReplaced || !before.contains(path)) others_.insert(path);
        }
    }
    void configure(const std::string& document) {
        ASSERT_EQ(db_.apply(R"({"openconfig":)" + document + "}"), "");
        const Paths after = memberPaths(db_.database);
        for (const std::string& path : others_)
            EXPECT_TRUE(after.contains(path) || isSetAsAWhole(path)) << path;
        forgetGone(after);
    }
    /// Nothing is configured: what is there is what others made, and what that needs.
    void expectNothingElse() const {
        for (const std::string& path : memberPaths(db_.database)) {
            const bool isOthers = others_.contains(path) || holdsOthers(path);
            EXPECT_TRUE(isOthers || isOfAType(path)) << path;
        }
    }

private:
    using Paths = std::set<std::string>;

    bool holdsOthers(const std::string& path) const {
        return others_.lower_bound(path + '/') != others_.lower_bound(path + '0');
    }
    /// A configured term and type are set whole, whatever optional parts others gave them.
    static bool isSetAsAWhole(const std::string& path) {
        return path.ends_with("/config/type") || path.ends_with("/actions") ||
               path.ends_with("/conditions") || path.ends_with("/dscp");
    }
    static bool isOfAType(const std::string& path) {
        for (const char* collection :
             {"TypeStatus/mapQos", "aclTypeConfig/ipv4", "aclTypeConfig/ipv6"})
            if (path.ends_with(collection)) return true;
        return false;
    }
    void forgetGone(const Paths& after) {
        std::erase_if(others_, [&](const std::string& path) { return !after.contains(path); });
    }

    TextDatabase& db_;
    Paths others_;
};

class OwnershipChanceTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(OwnershipChanceTest, leavesExactlyWhatOthersMadeAndDidNotRemove) {
    for (unsigned round = 0; round < 10; ++round) {
        Chance chance(1000 * GetParam() + round);
        ChanceLines lines(chance);
        TextDatabase db;
        OwnersByComparison owners(db);
        std::string story;
        for (unsigned step = 0; step < 40; ++step) {
            if (chance.below(4) == 0) {
                const std::string document =
                    chance.below(5) == 0 ? "{}" : documentOf(chance.configuration());
                story += document + '\n';
                owners.configure(document);
            } else {
                const auto line = lines.next();
                story += line.text() + '\n';
                owners.apply(line);
            }
        }
        owners.configure("{}");
        owners.expectNothingElse();
        ASSERT_FALSE(HasFailure()) << story << db.all();
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, OwnershipChanceTest, ::testing::Range(0u, 6u));

}  // namespace
}  // namespace QosAgent
