#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "agent/json/JsonBuilder.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {
namespace {

Json treeOf(std::string_view text) {
    return std::get<Json>(parseJson(text));
}

std::string textOf(const JsonValue& value) {
    std::string text;
    JsonWriter writer(text);
    writeJson(writer, value);
    return text;
}

/// The places of a value and of all below it: of a member its key's, then its value's.
std::vector<std::size_t> placesOf(const JsonValue& value) {
    std::vector<std::size_t> places{value.offset()};
    const auto add = [&](const JsonValue& inner) {
        for (const std::size_t place : placesOf(inner))
            places.push_back(place);
    };
    for (const JsonMember& member : value.members()) {
        places.push_back(member.keyOffset);
        add(member.value);
    }
    for (const JsonValue& element : value.elements())
        add(element);
    return places;
}

TEST(JsonBuilderTest, buildsWhatItIsTold) {
    JsonBuilder builder;
    builder.beginObject(1).key("a", 2).beginArray(3).text("x", 4).beginObject(5).end().end();
    builder.key("b", 6).text("", 7).end();
    const Json tree = builder.take();
    EXPECT_EQ(textOf(tree.root()), R"({"a":["x",{}],"b":""})");
    EXPECT_EQ(placesOf(tree.root()), (std::vector<std::size_t>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(tree.root().size(), 2u);
    EXPECT_EQ(tree.root().find("a")->value.size(), 2u);
    EXPECT_EQ(tree.root().find("b")->value.text(), "");
}

TEST(JsonBuilderTest, beginsAnewOnceItsTreeIsTaken) {
    JsonBuilder builder;
    const Json first = builder.text("first", 0).take();
    const Json second = builder.beginArray(0).text("second", 0).end().take();
    EXPECT_EQ(textOf(first.root()), R"("first")");
    EXPECT_EQ(textOf(second.root()), R"(["second"])");
}

TEST(JsonBuilderTest, copiesValuesOfEveryKindWithTheirPlaces) {
    const std::string text =
        R"({"object":{"é\u0000":[]},"numbers":[0,-1.50e+3,18446744073709551616],)"
        R"("others":[true,false,null,"\"\\"]})";
    const Json tree = treeOf(text);
    const Json copy = copyOf(tree.root());
    EXPECT_EQ(textOf(copy.root()), text);
    EXPECT_EQ(placesOf(copy.root()), placesOf(tree.root()));
}

TEST(JsonBuilderTest, givesACopyOnePlaceIfAsked) {
    const Json tree = treeOf(R"({"a":[1,{"b":true}]})");
    JsonBuilder builder;
    const Json copy = builder.copy(tree.root(), 9).take();
    EXPECT_EQ(textOf(copy.root()), R"({"a":[1,{"b":true}]})");
    EXPECT_EQ(placesOf(copy.root()), (std::vector<std::size_t>(7, 9)));
}

TEST(JsonBuilderTest, copiesAPartOfATreeThatMayGo) {
    Json copy = copyOf(treeOf("[]").root());
    {
        const Json tree = treeOf(R"([{"a":"kept"},2])");
        copy = copyOf(*tree.root().elements().begin());
    }
    EXPECT_EQ(textOf(copy.root()), R"({"a":"kept"})");
}

}  // namespace
}  // namespace QosAgent
