#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "agent/json/Json.h"
#include "tests/agent/json/JsonReaderTest.h"

namespace QosAgent {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> keysOf(JsonValue object) {
    std::vector<std::string> keys;
    for (const JsonMember& member : object.members())
        keys.emplace_back(member.key);
    return keys;
}

std::vector<std::string> textsOf(JsonValue array) {
    std::vector<std::string> texts;
    for (const JsonValue element : array.elements())
        texts.emplace_back(element.text());
    return texts;
}

std::optional<std::uint64_t> plainNumberOf(std::string_view text) {
    return treeOf(text).root().plainNumber();
}

TEST(JsonTest, tellsTheKindOfEachValue) {
    const Json tree = treeOf(R"([null, true, 1, "", [], {}])");
    std::vector<JsonKind> kinds;
    for (const JsonValue element : tree.root().elements())
        kinds.push_back(element.kind());
    EXPECT_THAT(kinds, ElementsAre(JsonKind::null, JsonKind::boolean, JsonKind::number,
                                   JsonKind::string, JsonKind::array, JsonKind::object));
    EXPECT_TRUE(tree.root().is(JsonKind::array));
    EXPECT_FALSE(tree.root().is(JsonKind::object));
}

TEST(JsonTest, holdsBothBooleans) {
    EXPECT_TRUE(treeOf("true").root().boolean());
    EXPECT_FALSE(treeOf("false").root().boolean());
}

TEST(JsonTest, keepsMembersInSourceOrder) {
    EXPECT_THAT(keysOf(treeOf(R"({"b": {"x": [1, {}]}, "": 2, "a": []})").root()),
                ElementsAre("b", "", "a"));
}

TEST(JsonTest, stepsOverWhatIsInsideAnElement) {
    EXPECT_THAT(textsOf(treeOf(R"(["a", ["b", {"c": ["d"]}], "e", {}, "f"])").root()),
                ElementsAre("a", "", "e", "", "f"));
}

TEST(JsonTest, countsItemsOfContainersOnly) {
    EXPECT_EQ(treeOf(R"({"a": [1, 2, 3], "b": {"c": 1}})").root().size(), 2u);
    EXPECT_EQ(treeOf(R"([[1, 2, 3], {"c": 1}, 4])").root().size(), 3u);
    EXPECT_EQ(treeOf("{}").root().size(), 0u);
    EXPECT_EQ(treeOf(R"("text")").root().size(), 0u);
    EXPECT_EQ(treeOf("1234").root().size(), 0u);
    EXPECT_EQ(treeOf("true").root().size(), 0u);
}

TEST(JsonTest, hasNoItemsOfTheOtherKind) {
    EXPECT_THAT(keysOf(treeOf(R"(["a", 1])").root()), IsEmpty());
    EXPECT_THAT(textsOf(treeOf(R"({"a": "b"})").root()), IsEmpty());
    EXPECT_THAT(textsOf(treeOf(R"("a")").root()), IsEmpty());
    EXPECT_THAT(keysOf(treeOf("null").root()), IsEmpty());
}

TEST(JsonTest, findsAMemberByItsWholeName) {
    const Json tree = treeOf(R"({"ab": 1, "a": {"c": 2}, "c": 3})");
    const auto found = tree.root().find("a");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->key, "a");
    EXPECT_EQ(found->keyOffset, 10u);
    EXPECT_EQ(found->value.offset(), 15u);
    EXPECT_EQ(tree.root().find("c")->value.text(), "3");
}

TEST(JsonTest, findsNothingWhereThereIsNoSuchMember) {
    EXPECT_FALSE(treeOf(R"({"a": {"b": 1}})").root().find("b"));
    EXPECT_FALSE(treeOf(R"(["a"])").root().find("a"));
    EXPECT_FALSE(treeOf(R"("a")").root().find("a"));
}

TEST(JsonTest, hasTextOnlyInStringsAndNumbers) {
    EXPECT_EQ(treeOf(R"("ab")").root().text(), "ab");
    EXPECT_EQ(treeOf("-1.50E+2").root().text(), "-1.50E+2");
    EXPECT_EQ(treeOf("true").root().text(), "");
    EXPECT_EQ(treeOf("null").root().text(), "");
    EXPECT_EQ(treeOf("[1]").root().text(), "");
}

TEST(JsonTest, readsPlainNumbersUpTo64Bits) {
    EXPECT_EQ(plainNumberOf("0"), 0u);
    EXPECT_EQ(plainNumberOf("46"), 46u);
    EXPECT_EQ(plainNumberOf("18446744073709551615"), UINT64_MAX);
}

TEST(JsonTest, hasNoPlainNumberForOtherSpellings) {
    for (const char* text : {"18446744073709551616", "100000000000000000000000", "-0", "-1", "1.0",
                             "1e2", "1E2", "0.5", "0e0", "true", "null", R"("1")", "[1]"}) {
        EXPECT_EQ(plainNumberOf(text), std::nullopt) << text;
    }
}

TEST(JsonTest, keepsItsViewsWhenMoved) {
    Json first = treeOf(R"({"a": "b"})");
    const JsonMember member = *first.root().find("a");
    Json second = std::move(first);
    EXPECT_EQ(member.key, "a");
    EXPECT_EQ(member.value.text(), "b");
    EXPECT_EQ(second.root().find("a")->key.data(), member.key.data());
    Json third = treeOf("1");
    third = std::move(second);
    EXPECT_EQ(third.root().find("a")->value.text().data(), member.value.text().data());
}

TEST(JsonTest, outlivesItsSourceText) {
    std::string text = R"({"key": ["value", 12]})";
    const Json tree = treeOf(text);
    text.assign(text.size(), '#');
    EXPECT_THAT(keysOf(tree.root()), ElementsAre("key"));
    EXPECT_THAT(textsOf(tree.root().find("key")->value), ElementsAre("value", "12"));
}

}  // namespace
}  // namespace QosAgent
