#include <gtest/gtest.h>

#include "agent/configuration/ModelPath.h"

namespace QosAgent {
namespace {

ModelPath path(std::string_view text) {
    auto read = parseModelPath(text);
    if (const auto* fault = std::get_if<PathFault>(&read)) {
        ADD_FAILURE() << text << ": " << fault->message;
        return {};
    }
    return std::get<ModelPath>(std::move(read));
}

std::string faultOf(std::string_view text) {
    const auto read = parseModelPath(text);
    const auto* fault = std::get_if<PathFault>(&read);
    return fault == nullptr ? "" : std::to_string(fault->offset) + ": " + fault->message;
}

TEST(ModelPathTest, hasElementsWithKeys) {
    EXPECT_EQ(path("/"), ModelPath{});
    EXPECT_EQ(path("/qos"), (ModelPath{{"qos", {}}}));
    EXPECT_EQ(path("/a/b[k=v][l=w]/c"),
              (ModelPath{{"a", {}}, {"b", {{"k", "v"}, {"l", "w"}}}, {"c", {}}}));
    EXPECT_EQ(path("/qos/"), (ModelPath{{"qos", {}}}));
}

TEST(ModelPathTest, leavesOutTheModulesPrefix) {
    EXPECT_EQ(path("/openconfig-qos:qos/x:y"), (ModelPath{{"qos", {}}, {"x:y", {}}}));
}

TEST(ModelPathTest, takesAnyCharacterInAKey) {
    EXPECT_EQ(path(R"(/a[k=b/c[d=e\]f\\g])"), (ModelPath{{"a", {{"k", R"(b/c[d=e]f\g)"}}}}));
    EXPECT_EQ(path(R"(/a[k=\n\r\u00e9\U20AC])"), (ModelPath{{"a", {{"k", "\n\r\u00e9\u20ac"}}}}));
    EXPECT_EQ(path("/a[k=]"), (ModelPath{{"a", {{"k", ""}}}}));
}

TEST(ModelPathTest, readsBackWhatItWrites) {
    for (const char* text :
         {"/", "/qos/classifiers/classifier[name=a/b]/terms", R"(/a[k=\]\\\n\r[=][l=x]/b)"})
        EXPECT_EQ(textOf(path(text)), text);
}

TEST(ModelPathTest, tellsWhereAPathIsWrong) {
    EXPECT_EQ(faultOf(""), "0: the path must begin with '/'");
    EXPECT_EQ(faultOf("qos"), "0: the path must begin with '/'");
    EXPECT_EQ(faultOf("/a//b"), "3: an empty name in the path");
    EXPECT_EQ(faultOf("/[k=v]"), "1: an empty name in the path");
    EXPECT_EQ(faultOf("/a[k]"), "3: expected '=' after the name of a key in the path");
    EXPECT_EQ(faultOf("/a[=v]"), "3: an empty name of a key in the path");
    EXPECT_EQ(faultOf("/a[k=v"), "6: no ']' ends a key in the path");
    EXPECT_EQ(faultOf("/a[k=v/"), "7: no ']' ends a key in the path");
    EXPECT_EQ(faultOf("/a[k=1][k=2]"), R"(8: a second key "k" in the path)");
    EXPECT_EQ(faultOf("/a[k=v]b"), "7: expected '/' or '[' in the path");
    EXPECT_EQ(faultOf(R"(/a[k=\x])"), R"(7: '\' begins no escape in the path)");
    EXPECT_EQ(faultOf(R"(/a[k=\u12])"), "9: expected four hexadecimal digits in the path");
    EXPECT_EQ(faultOf(R"(/a[k=\uD800])"), "11: a lone surrogate in the path");
}

}  // namespace
}  // namespace QosAgent
