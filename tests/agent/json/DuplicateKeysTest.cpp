#include "tests/agent/json/JsonReaderTest.h"

namespace QosAgent {
namespace {

TEST(DuplicateKeysTest, refusesADuplicateKeyAtTheSecond) {
    EXPECT_EQ(faultIn(R"({"a": 1, "b": 2, "a": 3})"), (Fault{17, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"([{"b": {"a": {"a": 1}, "c": 2}, "b": 3}])"),
              (Fault{32, R"(duplicate key "b")"}));
    EXPECT_EQ(faultIn(R"({"a": [{"": 1,"": 2}]})"), (Fault{14, R"(duplicate key "")"}));
}

TEST(DuplicateKeysTest, comparesKeysDecoded) {
    EXPECT_EQ(faultIn(R"({"A": 1, "\u0041": 2})"), (Fault{9, R"(duplicate key "A")"}));
    EXPECT_EQ(faultIn(R"({"a\u0000": 1, "a": 2})"), kNoFault);
    EXPECT_EQ(faultIn("{\"\xc3\xa4\": 1, \"a\xcc\x88\": 2}"), kNoFault);
}

TEST(DuplicateKeysTest, allowsOneKeyInSeveralObjects) {
    EXPECT_EQ(faultIn(R"([{"a": {"a": 1}, "b": {"a": 2}}, {"a": 3}])"), kNoFault);
}

TEST(DuplicateKeysTest, reportsTheFirstOfSeveralDuplicates) {
    EXPECT_EQ(faultIn(R"({"b": 1, "a": 2, "b": 3, "a": 4, "b": 5})"),
              (Fault{17, R"(duplicate key "b")"}));
    EXPECT_EQ(faultIn(R"({"a": 1, "a": {"b": 1, "b": 2}})"), (Fault{9, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"({"a": {"b": 1, "b": 2}, "a": 1})"), (Fault{15, R"(duplicate key "b")"}));
}

TEST(DuplicateKeysTest, reportsADuplicateRatherThanALaterFault) {
    EXPECT_EQ(faultIn(R"({"a": 1, "a")"), (Fault{9, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"({"a": 1, "a": 2, "c": [x)"), (Fault{9, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"([{"a": 1, "a": 2, "c": [{"d": )"), (Fault{10, R"(duplicate key "a")"}));
    EXPECT_EQ(faultIn(R"({"a": 1, "b": x, "a": 2})"), (Fault{14, "expected a value, found 'x'"}));
}

TEST(DuplicateKeysTest, quotesADuplicateKeyOnOneShortLine) {
    EXPECT_EQ(faultIn(R"({"\n\u001b": 1, "\n\u001b": 2})"),
              (Fault{16, R"(duplicate key "\n\u001b")"}));
    const std::string key = quotedRun(1000);
    EXPECT_EQ(faultIn("{" + key + ":1," + key + ":2}").message,
              "duplicate key \"" + std::string(60, 'x') + "\"...");
}

TEST(DuplicateKeysTest, findsADuplicateAmongManyKeys) {
    const std::string many = objectOf(100'000);
    EXPECT_EQ(faultIn(many + R"("k0":1})"), (Fault{many.size(), R"(duplicate key "k0")"}));
    EXPECT_EQ(faultIn(many + R"("k99999":1})"), (Fault{many.size(), R"(duplicate key "k99999")"}));
}

TEST(DuplicateKeysTest, takesAnObjectOfManyKeys) {
    const std::string text = objectOf(100'000) + R"("last":1})";
    const Json tree = treeOf(text);
    EXPECT_EQ(tree.root().size(), 100'001u);
    EXPECT_EQ(tree.root().find("last")->keyOffset, text.size() - 9);
}

}  // namespace
}  // namespace QosAgent
