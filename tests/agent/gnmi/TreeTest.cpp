#include <gmock/gmock.h>

#include "agent/gnmi/Tree.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kConfigured = R"({"openconfig-qos:qos": {
    "queues": {"queue": [
        {"name": "b", "config": {"name": "b", "queue-id": 2}},
        {"name": "a", "config": {"name": "a"}}]},
    "classifiers": {"classifier": [{"name": "edge",
        "config": {"name": "edge", "type": "IPV4"},
        "terms": {"term": [{"id": "voice", "config": {"id": "voice"},
            "conditions": {"ipv4": {"config": {"dscp": 46}}}}]}}]}}})";

TEST(TreeTest, holdsTheStateAsLeavesOfTheModel) {
    StateTerm both = term("both", 0, "gold");
    both.ipv4.dscp.reset();
    both.ipv4.dscpSet = {10, 12};
    both.ipv6.dscp = 8;
    const auto tree = TreeBuilder().classifier("c", "IPV6").term("c", both).build();
    EXPECT_THAT(
        values(*tree, query({"/qos"})),
        ElementsAre(
            "/qos/classifiers/classifier[name=c]/state/name=\"c\"",
            "/qos/classifiers/classifier[name=c]/state/type=\"IPV6\"",
            "/qos/classifiers/classifier[name=c]/terms/term[id=both]/state/id=\"both\"",
            "/qos/classifiers/classifier[name=c]/terms/term[id=both]/conditions/ipv4/state/"
            "dscp-set=[10,12]",
            "/qos/classifiers/classifier[name=c]/terms/term[id=both]/conditions/ipv6/state/dscp=8",
            "/qos/classifiers/classifier[name=c]/terms/term[id=both]/actions/state/"
            "target-group=\"gold\""));
}

TEST(TreeTest, leavesOutAnEmptyTargetGroup) {
    StateTerm groupless = term("t", 1);
    groupless.targetGroup = "";
    const auto tree = TreeBuilder().classifier("c").term("c", groupless).build();
    EXPECT_THAT(values(*tree, query({"/.../target-group"})), IsEmpty());
}

TEST(TreeTest, joinsConfigurationAndStateEntryByEntry) {
    const auto tree = TreeBuilder()
                          .configuration(kConfigured)
                          .classifier("edge")
                          .term("edge", term("voice", 46))
                          .term("edge", term("extra", 1))
                          .build();
    EXPECT_THAT(
        values(*tree, query({"/qos/classifiers"})),
        ElementsAre(
            "/qos/classifiers/classifier[name=edge]/config/name=\"edge\"",
            "/qos/classifiers/classifier[name=edge]/config/type=\"IPV4\"",
            "/qos/classifiers/classifier[name=edge]/state/name=\"edge\"",
            "/qos/classifiers/classifier[name=edge]/state/type=\"IPV4\"",
            "/qos/classifiers/classifier[name=edge]/terms/term[id=voice]/config/id=\"voice\"",
            "/qos/classifiers/classifier[name=edge]/terms/term[id=voice]/state/id=\"voice\"",
            "/qos/classifiers/classifier[name=edge]/terms/term[id=voice]/conditions/ipv4/config/"
            "dscp=46",
            "/qos/classifiers/classifier[name=edge]/terms/term[id=voice]/conditions/ipv4/state/"
            "dscp=46",
            "/qos/classifiers/classifier[name=edge]/terms/term[id=extra]/state/id=\"extra\"",
            "/qos/classifiers/classifier[name=edge]/terms/term[id=extra]/conditions/ipv4/state/"
            "dscp=1"));
}

TEST(TreeTest, keepsTheOrderOfConfiguredEntries) {
    const auto tree = TreeBuilder().configuration(kConfigured).build();
    EXPECT_THAT(values(*tree, query({"/qos/queues/queue/config/name"})),
                ElementsAre("/qos/queues/queue[name=b]/config/name=\"b\"",
                            "/qos/queues/queue[name=a]/config/name=\"a\""));
}

TEST(TreeTest, showsAttachedClassifiersAsStateWhileTheirPolicyMapExists) {
    TreeBuilder builder;
    builder.configuration(R"({"qos": {"interfaces": {"interface": [{
        "interface-id": "e1", "config": {"interface-id": "e1"}, "input": {"classifiers": {
        "classifier": [{"type": "IPV4", "config": {"type": "IPV4", "name": "edge"}},
                       {"type": "MPLS", "config": {"type": "MPLS", "name": "core"}}]}}}]}}})");
    Query state = query({"/qos/interfaces"});
    state.wantsConfig = false;
    EXPECT_THAT(values(*builder.build(), state), IsEmpty());
    EXPECT_THAT(values(*builder.policyMap("openconfig:edge:other").build(), state), IsEmpty());
    EXPECT_THAT(values(*builder.policyMap("openconfig:edge:").build(), state),
                ElementsAre("/qos/interfaces/interface[interface-id=e1]/input/classifiers/"
                            "classifier[type=IPV4]/state/name=\"edge\"",
                            "/qos/interfaces/interface[interface-id=e1]/input/classifiers/"
                            "classifier[type=IPV4]/state/type=\"IPV4\""));
}

TEST(TreeTest, findsEntriesByTheirKeys) {
    const auto tree = TreeBuilder().classifier("a").classifier("a-b").classifier("a/b").build();
    EXPECT_THAT(values(*tree, query({"/qos/classifiers/classifier[name=a-b]/state/name",
                                     "/qos/classifiers/classifier[name=a]/state/name"})),
                ElementsAre("/qos/classifiers/classifier[name=a]/state/name=\"a\"",
                            "/qos/classifiers/classifier[name=a-b]/state/name=\"a-b\""));
    EXPECT_THAT(values(*tree, query({"/qos/classifiers/classifier[name=no]"})), IsEmpty());
}

TEST(TreeTest, goesThroughClassifiersWhoseNamesBeginAlike) {
    const auto tree = TreeBuilder()
                          .classifier("a")
                          .term("a", term("t", 1))
                          .term("a", term("t-1", 2))
                          .classifier("a-b")
                          .term("a-b", term("t", 3))
                          .build();
    EXPECT_EQ(values(*tree, query({"/.../terms/term/state/id"})).size(), 3u);
    EXPECT_EQ(values(*tree, query({"/qos/classifiers/classifier/state/name"})).size(), 2u);
}

TEST(TreeTest, readsEscapedKeys) {
    StateMap map;
    auto value = std::make_shared<StateValue>();
    value->term = term("x~y/z", 1);
    value->term->stateId = "x~y/z";
    const Tree tree{0, {}, StateSource(map.with("classifier/a~1b/terms/term/x~0y~1z", value))};
    EXPECT_THAT(values(tree, query({"/qos/classifiers/classifier/terms/term/state"})),
                ElementsAre("/qos/classifiers/classifier[name=a/b]/terms/term[id=x~y/z]/state/"
                            "id=\"x~y/z\""));
    const DataPath entry = entryOfStatePath("classifier/a~1b/terms/term/x~0y~1z");
    EXPECT_EQ(entry, (DataPath{&termList(), {"a/b", "x~y/z"}}));
    EXPECT_EQ(statePath(entry), "classifier/a~1b/terms/term/x~0y~1z");
}

TEST(TreeTest, sendsALeafOnceThatSeveralPathsMean) {
    const auto tree = TreeBuilder().classifier("c").build();
    EXPECT_THAT(values(*tree, query({"/qos", "/qos/classifiers/classifier/state/name", "/..."})),
                ElementsAre("/qos/classifiers/classifier[name=c]/state/name=\"c\"",
                            "/qos/classifiers/classifier[name=c]/state/type=\"IPV4\""));
}

TEST(TreeTest, showsKeysWhenTheyAreWanted) {
    Query keys = query({"/qos/classifiers/classifier"});
    keys.wantsKeys = true;
    keys.wantsState = false;
    const auto tree = TreeBuilder().configuration(kConfigured).build();
    EXPECT_THAT(values(*tree, keys),
                testing::Contains("/qos/classifiers/classifier[name=edge]/name=\"edge\""));
}

TEST(TreeTest, knowsWhereSomethingIsLeft) {
    const auto tree =
        TreeBuilder().configuration(kConfigured).classifier("c").term("c", term("t", 1)).build();
    const auto holds = [&](std::string_view node, std::vector<std::string> keys) {
        return tree->holds({&schemaNode(node), std::move(keys)});
    };
    EXPECT_TRUE(holds("/qos/classifiers/classifier/terms", {"c"}));
    EXPECT_TRUE(holds("/qos/classifiers/classifier/terms", {"edge"}));
    EXPECT_TRUE(holds("/qos/classifiers/classifier/terms/term/conditions/ipv4/state", {"c", "t"}));
    EXPECT_FALSE(holds("/qos/classifiers/classifier/terms/term/conditions/ipv6", {"c", "t"}));
    EXPECT_FALSE(holds("/qos/classifiers/classifier/terms/term/actions", {"c", "t"}));
    EXPECT_FALSE(holds("/qos/classifiers/classifier/state", {"edge"}));
    EXPECT_FALSE(holds("/qos/classifiers/classifier", {"none"}));
    EXPECT_FALSE(holds("/qos/interfaces", {}));
    EXPECT_TRUE(holds("/qos", {}));
}

TEST(TreeTest, canBeWalkedFromANode) {
    const auto tree =
        TreeBuilder().classifier("c").term("c", term("t", 1)).term("c", term("u", 2)).build();
    const Query all = query({"/qos"});
    TreeCursor cursor(*tree, all, {&termList(), {"c", "u"}});
    Lines found;
    for (auto event = cursor.next(); event != TreeCursor::Event::end; event = cursor.next())
        if (event == TreeCursor::Event::leaf) found.push_back(toText(cursor.path()));
    EXPECT_THAT(found, ElementsAre("/qos/classifiers/classifier[name=c]/terms/term[id=u]/state/id",
                                   "/qos/classifiers/classifier[name=c]/terms/term[id=u]/"
                                   "conditions/ipv4/state/dscp"));
}

}  // namespace
}  // namespace QosAgent::Gnmi
