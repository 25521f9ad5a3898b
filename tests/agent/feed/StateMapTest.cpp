#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "agent/feed/StateMap.h"

namespace QosAgent {
namespace {

StateValuePtr named(const std::string& classifier) {
    auto value = std::make_shared<StateValue>();
    value->classifier = classifier;
    return value;
}

std::vector<std::string> pathsOf(const StateMap& map) {
    std::vector<std::string> paths;
    for (const auto* entry = map.firstFrom(""); entry != nullptr;
         entry = map.firstAfter(entry->path))
        paths.push_back(entry->path);
    return paths;
}

StateMap holding(const std::vector<std::string>& paths) {
    StateMap map;
    for (const std::string& path : paths)
        map = map.with(path, named(path));
    return map;
}

using Paths = std::vector<std::string>;

TEST(StateMapTest, isEmptyAtFirst) {
    const StateMap map;
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(map.size(), 0u);
    EXPECT_EQ(map.find("a"), nullptr);
    EXPECT_EQ(map.firstFrom(""), nullptr);
    EXPECT_TRUE(map.without("a").isEmpty());
}

TEST(StateMapTest, leavesEarlierCopiesAsTheyAre) {
    const StateMap before = holding({"a", "b"});
    const StateMap after = before.with("a", named("new")).without("b").with("c", named("c"));
    EXPECT_EQ(pathsOf(before), (Paths{"a", "b"}));
    EXPECT_EQ(before.find("a")->classifier, "a");
    EXPECT_EQ(pathsOf(after), (Paths{"a", "c"}));
    EXPECT_EQ(after.find("a")->classifier, "new");
}

TEST(StateMapTest, removesAPathWithAllBelowItAndNothingBeside) {
    const StateMap map =
        holding({"c/A", "c/A!", "c/A!/x", "c/A/state", "c/A/terms/1", "c/AB/state"});
    EXPECT_EQ(pathsOf(map.without("c/A")), (Paths{"c/A!", "c/A!/x", "c/AB/state"}));
    EXPECT_TRUE(map.without("c/A/te").size() == map.size());
}

TEST(StateMapTest, tellsWhetherAnythingIsAtOrBelowAPath) {
    const StateMap map = holding({"c/A/state"});
    EXPECT_TRUE(map.holds("c/A"));
    EXPECT_TRUE(map.holds("c/A/state"));
    EXPECT_FALSE(map.holds("c/A/sta"));
    EXPECT_FALSE(map.holds("c/B"));
}

TEST(StateMapTest, equalsAnOrdinaryMapAfterAnyChanges) {
    std::mt19937 random(7);
    StateMap map;
    std::map<std::string, std::string> model;
    for (int step = 0; step < 4000; ++step) {
        const std::string path = "p" + std::to_string(random() % 300);
        if (random() % 5 < 3) {
            const std::string text = std::to_string(step);
            map = map.with(path, named(text));
            model[path] = text;
        } else {
            map = map.without(path);
            model.erase(path);
        }
        ASSERT_EQ(map.size(), model.size());
    }
    std::map<std::string, std::string> walked;
    for (const auto* at = map.firstFrom(""); at != nullptr; at = map.firstAfter(at->path))
        walked[at->path] = at->value->classifier;
    EXPECT_EQ(walked, model);
}

TEST(StateMapTest, goesOnWithAWalkFromAPathThatIsGone) {
    const StateMap map = holding({"a", "c"});
    EXPECT_EQ(map.firstAfter("b")->path, "c");
    EXPECT_EQ(map.firstFrom("c")->path, "c");
    EXPECT_EQ(map.firstAfter("c"), nullptr);
}

}  // namespace
}  // namespace QosAgent
