#include <gmock/gmock.h>

#include "agent/gnmi/Difference.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kClassifier = "/qos/classifiers/classifier[name=c]";
constexpr const char* kTerm = "/qos/classifiers/classifier[name=c]/terms/term[id=t]";

Lines changes(const TreeBuilder& before, const TreeBuilder& after, const ChangeSet& set) {
    Touched touched;
    addTouched(touched, set);
    return lines(difference(*before.build(), *after.build(), touched));
}

ChangeSet updateOf(const std::string& path) {
    ChangeSet set;
    set.updates.push_back({path, nullptr, 1});
    return set;
}

ChangeSet deleteOf(const std::string& path) {
    ChangeSet set;
    set.deletes.push_back(path);
    return set;
}

TEST(DifferenceTest, tellsANewTermInOneNotice) {
    const auto before = TreeBuilder().classifier("c");
    const auto after = TreeBuilder(before).at(7).term("c", term("t", 46, "gold"));
    EXPECT_THAT(changes(before, after, updateOf("classifier/c/terms/term/t")),
                ElementsAre("@7", std::string(kTerm) + "/state/id=\"t\"",
                            std::string(kTerm) + "/conditions/ipv4/state/dscp=46",
                            std::string(kTerm) + "/actions/state/target-group=\"gold\""));
}

TEST(DifferenceTest, tellsOnlyLeavesThatChanged) {
    const auto before = TreeBuilder().classifier("c").term("c", term("t", 46, "gold"));
    const auto after = TreeBuilder(before).at(7).term("c", term("t", 46, "silver"));
    EXPECT_THAT(changes(before, after, updateOf("classifier/c/terms/term/t")),
                ElementsAre("@7", std::string(kTerm) + "/actions/state/target-group=\"silver\""));
    EXPECT_THAT(changes(after, after, updateOf("classifier/c/terms/term/t")), IsEmpty());
}

TEST(DifferenceTest, deletesALeafThatLeavesWithWhatTakesItsPlace) {
    const auto before = TreeBuilder().classifier("c").term("c", term("t", 46, "gold"));
    StateTerm set = term("t", 0);
    set.ipv4.dscp.reset();
    set.ipv4.dscpSet = {1, 2};
    const auto after = TreeBuilder(before).at(7).term("c", set);
    EXPECT_THAT(changes(before, after, updateOf("classifier/c/terms/term/t")),
                ElementsAre("@7", "-" + std::string(kTerm) + "/conditions/ipv4/state/dscp",
                            "-" + std::string(kTerm) + "/actions/state/target-group",
                            std::string(kTerm) + "/conditions/ipv4/state/dscp-set=[1,2]"));
}

TEST(DifferenceTest, deletesATermAsOne) {
    const auto before =
        TreeBuilder().classifier("c").term("c", term("t", 46)).term("c", term("u", 1));
    const auto after = TreeBuilder(before).at(7).without("classifier/c/terms/term/t");
    EXPECT_THAT(changes(before, after, deleteOf("classifier/c/terms/term/t")),
                ElementsAre("@7", "-" + std::string(kTerm)));
}

TEST(DifferenceTest, deletesTermsWithTheLastTerm) {
    const auto before = TreeBuilder().classifier("c").term("c", term("t", 46));
    const auto after = TreeBuilder(before).at(7).without("classifier/c/terms/term/t");
    EXPECT_THAT(changes(before, after, deleteOf("classifier/c/terms/term/t")),
                ElementsAre("@7", "-" + std::string(kClassifier) + "/terms"));
    EXPECT_THAT(changes(before, after, deleteOf("classifier/c/terms")),
                ElementsAre("@7", "-" + std::string(kClassifier) + "/terms"));
}

TEST(DifferenceTest, deletesAClassifierAsOne) {
    const auto before =
        TreeBuilder().classifier("c").term("c", term("t", 46)).term("c", term("u", 1));
    const auto after = TreeBuilder().at(7);
    EXPECT_THAT(changes(before, after, deleteOf("classifier/c")),
                ElementsAre("@7", "-" + std::string(kClassifier)));
}

TEST(DifferenceTest, leavesTheConfigurationOfWhatGoesFromTheState) {
    const auto before = TreeBuilder()
                            .configuration(R"({"qos": {"classifiers": {"classifier": [{"name": "c",
                                "config": {"name": "c"}, "terms": {"term": [{"id": "t",
                                "config": {"id": "t"}}]}}]}}})")
                            .classifier("c")
                            .term("c", term("t", 46, "gold"))
                            .term("c", term("u", 1));
    const auto after = TreeBuilder(before).at(7).without("classifier/c");
    EXPECT_THAT(changes(before, after, deleteOf("classifier/c")),
                testing::UnorderedElementsAre(
                    "@7", "@7", "@7", "-" + std::string(kClassifier) + "/state",
                    "-" + std::string(kTerm) + "/state", "-" + std::string(kTerm) + "/conditions",
                    "-" + std::string(kTerm) + "/actions",
                    "-" + std::string(kClassifier) + "/terms/term[id=u]"));
}

TEST(DifferenceTest, tellsWhatWasRemovedAndCreatedAgainAsItsOutcome) {
    const auto before = TreeBuilder().classifier("c").term("c", term("t", 46, "gold"));
    const auto after = TreeBuilder(before).at(7).term("c", term("t", 47));
    ChangeSet set = deleteOf("classifier/c/terms/term/t");
    set.updates.push_back({"classifier/c/terms/term/t", nullptr, 2});
    EXPECT_THAT(changes(before, after, set),
                ElementsAre("@7", "-" + std::string(kTerm) + "/actions/state/target-group",
                            std::string(kTerm) + "/conditions/ipv4/state/dscp=47"));
}

/// The lines of a difference between two configurations.
Lines configurationChanges(const std::string& before, const std::string& after) {
    const auto earlier = TreeBuilder().configuration(before);
    const auto later = TreeBuilder().at(7).configuration(after);
    ChangeSet set;
    set.before.configuration = earlier.configuration();
    set.after.configuration = later.configuration();
    return changes(earlier, later, set);
}

std::string queues(const std::string& list) {
    return R"({"openconfig-qos:qos": {"queues": {"queue": [)" + list + "]}}}";
}

TEST(DifferenceTest, tellsWhatChangesInTheConfiguration) {
    const std::string one = R"({"name": "a", "config": {"name": "a", "queue-id": 1}})";
    const std::string two = R"({"name": "a", "config": {"name": "a", "queue-id": 2}})";
    const std::string other = R"({"name": "b", "config": {"name": "b"}})";
    EXPECT_THAT(configurationChanges(queues(one), queues(two)),
                ElementsAre("@7", "/qos/queues/queue[name=a]/config/queue-id=2"));
    EXPECT_THAT(configurationChanges(queues(one), queues(one + "," + other)),
                ElementsAre("@7", "/qos/queues/queue[name=b]/config/name=\"b\""));
    EXPECT_THAT(configurationChanges(queues(one + "," + other), queues(one)),
                ElementsAre("@7", "-/qos/queues/queue[name=b]"));
    EXPECT_THAT(configurationChanges(queues(one), "{}"),
                ElementsAre("@7", "-/qos/queues/queue[name=a]"));
    EXPECT_THAT(configurationChanges(queues(one), queues(one)), IsEmpty());
    EXPECT_THAT(configurationChanges(
                    R"({"qos": {"packet-trim": {"config": {"symmetric-dscp": 1}}}})", "{}"),
                ElementsAre("@7", "-/qos/packet-trim"));
}

TEST(DifferenceTest, isFilteredByWhatAStreamAsksFor) {
    const auto before = TreeBuilder().classifier("c").term("c", term("t", 46)).build();
    const Notice notice{
        3,
        {{&termList(), {"c", "t"}}},
        {{{&schemaNode("/qos/classifiers/classifier/state/type"), {"c"}}, "\"x\"", 0}}};
    EXPECT_THAT(lines(filtered(notice, query({"/qos/classifiers/classifier/state"}), *before)),
                ElementsAre("@3", std::string(kClassifier) + "/state/type=\"x\""));
    EXPECT_THAT(lines(filtered(notice, query({"/.../term[id=t]/conditions"}), *before)),
                ElementsAre("@3", "-" + std::string(kTerm)));
    EXPECT_TRUE(filtered(notice, query({"/.../actions"}), *before).isEmpty())
        << "a delete of what never had what the stream asks for";
    EXPECT_TRUE(filtered(notice, query({"/qos/queues"}), *before).isEmpty());
}

}  // namespace
}  // namespace QosAgent::Gnmi
