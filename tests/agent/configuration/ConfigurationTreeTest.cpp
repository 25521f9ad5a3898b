#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "agent/configuration/ConfigurationEdit.h"
#include "agent/configuration/ConfigurationTree.h"

namespace QosAgent {
namespace {

const std::string kEdge =
    R"({"openconfig-qos:qos":{"forwarding-groups":{"forwarding-group":[{"name":"gold"}]},)"
    R"("classifiers":{"classifier":[{"name":"edge","config":{"name":"edge","type":"IPV4"},)"
    R"("terms":{"term":[{"id":"b","config":{"id":"b"}},{"id":"a"}]}},{"name":"core"}]},)"
    R"("scheduler-policies":{"scheduler-policy":[{"name":"s"}]}},"x:y":[1.50,null]})";

Json parsed(const std::string& text) {
    return std::get<Json>(parseJson(text));
}

ConfigurationTree treeOf(const std::string& text, std::uint64_t change = 1) {
    const auto json = std::make_shared<const Json>(parsed(text));
    return ConfigurationTree::of(json, json->root(), change);
}

ConfigurationTree edited(ConfigurationTree tree, const std::string& edits,
                         std::uint64_t change = 2) {
    const Json json = parsed('[' + edits + ']');
    const auto read = readEdits(json.root());
    for (const ConfigurationEdit& edit : std::get<std::vector<ConfigurationEdit>>(read))
        tree = std::get<ConfigurationTree>(edited(tree, edit, change));
    return tree;
}

std::string textOf(const ConfigurationTree& tree) {
    std::string text;
    JsonWriter writer(text);
    tree.write(writer);
    return text;
}

std::string textOf(const std::optional<ConfigurationView>& view) {
    if (!view) return "-";
    std::string text;
    JsonWriter writer(text);
    view->write(writer);
    return text;
}

std::string textAt(const ConfigurationTree& tree, const std::string& path) {
    return textOf(tree.at(std::get<ModelPath>(parseModelPath(path))));
}

/// `PATH: EARLIER LATER` of each difference.
std::vector<std::string> differences(const ConfigurationTree& before,
                                     const ConfigurationTree& after) {
    std::vector<std::string> found;
    eachDifference(before, after,
                   [&](const ModelPath& path, const auto& earlier, const auto& later) {
                       found.push_back(textOf(path) + ": " + textOf(earlier) + ' ' + textOf(later));
                   });
    return found;
}

using Texts = std::vector<std::string>;

TEST(ConfigurationTreeTest, configuresNothingAtFirst) {
    EXPECT_EQ(textOf(ConfigurationTree()), "{}");
    EXPECT_FALSE(ConfigurationTree().view());
    EXPECT_EQ(textAt(ConfigurationTree(), "/qos"), "-");
}

TEST(ConfigurationTreeTest, givesBackWhatItWasGiven) {
    EXPECT_EQ(textOf(treeOf(kEdge)), kEdge);
}

TEST(ConfigurationTreeTest, findsNodesByPath) {
    const ConfigurationTree tree = treeOf(kEdge);
    const std::string edge = "/qos/classifiers/classifier[name=edge]";
    EXPECT_EQ(textAt(tree, edge + "/config/type"), R"("IPV4")");
    EXPECT_EQ(textAt(tree, edge + "/terms/term[id=a]"), R"({"id":"a"})");
    EXPECT_EQ(textAt(tree, "/qos/scheduler-policies/scheduler-policy[name=s]"), R"({"name":"s"})");
    EXPECT_EQ(textAt(tree, "/qos/classifiers/classifier[name=none]"), "-");
    EXPECT_EQ(textAt(tree, "/qos/classifiers/classifier[id=edge]"), "-");
    EXPECT_EQ(textAt(tree, edge + "/config/type/more"), "-");
}

TEST(ConfigurationTreeTest, walksMembersAndEntriesInTheOrderGiven) {
    const ConfigurationTree tree = treeOf(kEdge);
    Texts members;
    tree.at({{"qos", {}}})->eachMember([&](std::string_view name, const ConfigurationView&) {
        members.emplace_back(name);
    });
    EXPECT_EQ(members, (Texts{"forwarding-groups", "classifiers", "scheduler-policies"}));
    Texts keys;
    const auto list = tree.at({{"qos", {}}, {"classifiers", {}}, {"classifier", {}}});
    list->eachEntry(
        [&](std::string_view key, const ConfigurationView&) { keys.emplace_back(key); });
    EXPECT_EQ(keys, (Texts{"edge", "core"}));
    EXPECT_EQ(list->kind(), ConfigurationView::Kind::list);
    EXPECT_EQ(list->keyName(), "name");
    EXPECT_EQ(textOf(list->entry("core")), R"({"name":"core"})");
}

TEST(ConfigurationTreeTest, leavesASnapshotAsItIs) {
    const ConfigurationTree before = treeOf(kEdge);
    const ConfigurationTree after = edited(before, R"({"delete":"/qos"})");
    EXPECT_EQ(textOf(before), kEdge);
    EXPECT_EQ(textOf(after), R"({"x:y":[1.50,null]})");
}

TEST(ConfigurationTreeTest, tellsNoDifferenceToItself) {
    const ConfigurationTree tree = treeOf(kEdge);
    EXPECT_EQ(differences(tree, tree), Texts{});
    EXPECT_EQ(differences({}, {}), Texts{});
}

TEST(ConfigurationTreeTest, tellsTheSmallestNodesThatDiffer) {
    const ConfigurationTree before = treeOf(kEdge);
    const std::string edge = "/qos/classifiers/classifier[name=edge]";
    const ConfigurationTree after = edited(
        before, R"({"replace":")" + edge + R"(/terms/term[id=a]/config","value":{"id":"a"}},)" +
                    R"({"delete":")" + edge + R"(/terms/term[id=b]"},)" +
                    R"({"update":"/qos/classifiers/classifier[name=new]/config",)" +
                    R"("value":{"name":"new"}},)" +
                    R"({"update":"/qos/scheduler-policies/x","value":1})");
    EXPECT_EQ(differences(before, after),
              (Texts{edge + R"(/terms/term[id=a]: {"id":"a"} {"id":"a","config":{"id":"a"}})",
                     edge + R"(/terms/term[id=b]: {"id":"b","config":{"id":"b"}} -)",
                     R"(/qos/classifiers/classifier[name=new]: - )"
                     R"({"name":"new","config":{"name":"new"}})",
                     R"(/qos/scheduler-policies: {"scheduler-policy":[{"name":"s"}]} )"
                     R"({"scheduler-policy":[{"name":"s"}],"x":1})"}));
}

TEST(ConfigurationTreeTest, tellsMembersThatCameAndWentWhereverTheyStand) {
    const ConfigurationTree before = treeOf(R"({"a:x":1,"b:x":2,"c:x":3})");
    const ConfigurationTree after = treeOf(R"({"d:x":4,"c:x":3,"a:x":1})");
    Texts found = differences(before, after);
    std::sort(found.begin(), found.end());
    // Documents share nothing, so what is equal in both differs as well.
    EXPECT_EQ(found, (Texts{"/a:x: 1 1", "/b:x: 2 -", "/c:x: 3 3", "/d:x: - 4"}));
}

TEST(ConfigurationTreeTest, remembersWhatAChangeBroughtAndWhere) {
    const ConfigurationTree tree =
        edited(treeOf(kEdge), R"({"replace":"/qos/forwarding-groups","value":{}})", 7);
    const Json json = tree.json(7);
    const JsonValue qos = json.root().find("openconfig-qos:qos")->value;
    EXPECT_LT(qos.find("forwarding-groups")->value.offset(), 60u);
    EXPECT_EQ(qos.find("scheduler-policies")->value.offset(), JsonBuilder::kNoOffset);
}

TEST(ConfigurationTreeTest, mergesAnObjectOfManyMembersThatItDoesNotKnow) {
    std::string members;
    for (int i = 0; i < 20000; ++i)
        members += (i == 0 ? "" : ",") + std::string("\"x:") + std::to_string(i) + "\":0";
    const ConfigurationTree tree = treeOf(R"({"openconfig-qos:qos":{)" + members + "}}");
    const ConfigurationTree after =
        edited(tree, R"({"update":"/qos","value":{)" + members + R"(,"x:new":1}})");
    EXPECT_EQ(textOf(after), R"({"openconfig-qos:qos":{)" + members + R"(,"x:new":1}})");
    EXPECT_EQ(differences(after, edited(after, R"({"delete":"/qos/x:new"})")),
              Texts{"/qos/x:new: 1 -"});
}

TEST(ConfigurationTreeTest, namesTheTopMemberWithItsModuleHoweverAnEditDoes) {
    EXPECT_EQ(textOf(edited({}, R"({"update":"/","value":{"qos":{"x:y":1}}})")),
              R"({"openconfig-qos:qos":{"x:y":1}})");
    EXPECT_EQ(textOf(edited(treeOf(R"({"a:b":1})"), R"({"update":"/","value":{"qos":{"x:y":1}}})")),
              R"({"a:b":1,"openconfig-qos:qos":{"x:y":1}})");
}

}  // namespace
}  // namespace QosAgent
