#include <gmock/gmock.h>

#include "agent/gnmi/Pattern.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

using testing::HasSubstr;

Refusal refusal(std::string_view text) {
    const auto result = Pattern::of(path(text));
    return std::holds_alternative<Refusal>(result) ? std::get<Refusal>(result)
                                                   : Refusal{Code::ok, ""};
}

TEST(PatternTest, acceptsEveryNodeOfTheModel) {
    EXPECT_EQ(refusal("").code, Code::ok);
    EXPECT_EQ(refusal("/qos").code, Code::ok);
    EXPECT_EQ(refusal("/qos/queues/queue[name=q]/config/queue-id").code, Code::ok);
    EXPECT_EQ(refusal("/qos/classifiers/classifier/terms/term[id=*]/state").code, Code::ok);
}

TEST(PatternTest, acceptsTheModulesNameBeforeAnElement) {
    const auto result = Pattern::of(path("/openconfig-qos:qos/openconfig-qos:queues"));
    EXPECT_EQ(toText(std::get<Pattern>(result).path()), "/qos/queues");
}

TEST(PatternTest, refusesWhatIsOutsideTheModelAsUnimplemented) {
    EXPECT_EQ(refusal("/interfaces").code, Code::unimplemented);
    EXPECT_THAT(refusal("/qos/nothing/here").message,
                testing::AllOf(HasSubstr("/qos/nothing/here"), HasSubstr("\"nothing\"")));
    EXPECT_EQ(refusal("/qos/.../nothing").code, Code::unimplemented);
    EXPECT_EQ(refusal("/*/*/*/*/*/*/*/*/*/*/*/*/*/*/*/*").code, Code::unimplemented);
}

TEST(PatternTest, refusesMalformedPathsAsInvalid) {
    RequestPath nameless;
    nameless.elements.resize(2);
    EXPECT_EQ(std::get<Refusal>(Pattern::of(nameless)).code, Code::invalidArgument);
    EXPECT_EQ(refusal("/qos[name=x]").code, Code::invalidArgument);
    EXPECT_EQ(refusal("/qos/queues/queue[id=x]").code, Code::invalidArgument);
    EXPECT_EQ(refusal("/qos/queues/queue[name=x][id=x]").code, Code::invalidArgument);
    EXPECT_EQ(refusal("/qos/...[name=x]").code, Code::invalidArgument);
}

TEST(PatternTest, refusesMoreThan32Elements) {
    std::string text;
    for (int at = 0; at < 31; ++at)
        text += "/...";
    EXPECT_EQ(refusal(text + "/qos").code, Code::ok);
    EXPECT_EQ(refusal(text + "/.../qos").code, Code::invalidArgument);
}

TEST(PatternTest, refusesElementsOfMoreThan1KiB) {
    const std::string key(1024 - 5 - 4, 'k');
    EXPECT_EQ(refusal("/qos/queues/queue[name=" + key + "]").code, Code::ok);
    EXPECT_EQ(refusal("/qos/queues/queue[name=" + key + "k]").code, Code::invalidArgument);
    EXPECT_EQ(refusal("/" + std::string(1025, 'n')).code, Code::invalidArgument);
}

bool isMeantBy(std::string_view pattern, const SchemaNode& leaf, std::vector<std::string> keys) {
    return isMeant(query({pattern}), {&leaf, std::move(keys)});
}

TEST(PatternTest, meansItsNodeAndAllBelow) {
    const SchemaNode& leaf = schemaNode("/qos/queues/queue/config/queue-id");
    for (const auto* text : {"", "/qos", "/qos/queues/queue[name=a]", "/qos/queues/queue[name=*]",
                             "/qos/queues/queue", "/qos/queues/queue[name=a]/config/queue-id"})
        EXPECT_TRUE(isMeantBy(text, leaf, {"a"})) << text;
    for (const auto* text :
         {"/qos/queues/queue[name=b]", "/qos/queues/queue/config/name", "/qos/queues/queue/state"})
        EXPECT_FALSE(isMeantBy(text, leaf, {"a"})) << text;
}

TEST(PatternTest, takesAStarForOneLevelAndThreeDotsForAny) {
    const SchemaNode& leaf = schemaNode("/qos/classifiers/classifier/terms/term/state/id");
    for (const auto* text :
         {"/qos/*/*/*/*/state", "/.../state", "/.../term[id=t]/state", "/...", "/qos/.../id",
          "/*/.../terms/.../id", "/qos/classifiers/classifier[name=c]/...", "/qos/.../.../id",
          "/.../*[id=t]"})
        EXPECT_TRUE(isMeantBy(text, leaf, {"c", "t"})) << text;
    for (const auto* text :
         {"/qos/*/*/state", "/.../config", "/.../term[id=u]", "/qos/classifiers/*/state",
          "/.../conditions", "/.../classifier[name=d]/.../id"})
        EXPECT_FALSE(isMeantBy(text, leaf, {"c", "t"})) << text;
}

TEST(PatternTest, limitsTheDepthBelowItsNode) {
    Query shallow = query({"/qos/queues/queue[name=a]"});
    shallow.depth = 1;
    const DataPath leaf{&schemaNode("/qos/queues/queue/config/queue-id"), {"a"}};
    EXPECT_FALSE(isMeant(shallow, leaf));
    shallow.depth = 2;
    EXPECT_TRUE(isMeant(shallow, leaf));
}

TEST(PatternTest, knowsItsWildcards) {
    const auto has = [](std::string_view text) {
        return std::get<Pattern>(Pattern::of(path(text))).hasWildcards();
    };
    EXPECT_FALSE(has("/qos/queues/queue[name=a]/config"));
    EXPECT_TRUE(has("/qos/queues/queue"));
    EXPECT_TRUE(has("/qos/queues/queue[name=*]"));
    EXPECT_TRUE(has("/qos/*"));
    EXPECT_TRUE(has("/..."));
}

TEST(PathTest, isWrittenWithItsKeysEscaped) {
    EXPECT_EQ(toText(DataPath{&schemaNode("/qos/queues/queue/config"), {"a]b\\c\nd/e"}}),
              "/qos/queues/queue[name=a\\]b\\\\c\\nd/e]/config");
    EXPECT_EQ(toText(RequestPath{}), "/");
}

TEST(PathTest, ordersAllBelowANodeDirectlyBehindIt) {
    const SchemaNode& terms = schemaNode("/qos/classifiers/classifier/terms");
    const SchemaNode& id = schemaNode("/qos/classifiers/classifier/terms/term/state/id");
    const SchemaNode& name = schemaNode("/qos/classifiers/classifier/state/name");
    const DataPathOrder isBefore;
    EXPECT_TRUE(isBefore({&terms, {"a"}}, {&id, {"a", "x"}}));
    EXPECT_TRUE(isBefore({&id, {"a", "x"}}, {&id, {"a", "y"}}));
    EXPECT_TRUE(isBefore({&id, {"a", "y"}}, {&name, {"b"}}));
    EXPECT_TRUE(isBefore({&name, {"a"}}, {&id, {"a", "x"}}));
    EXPECT_FALSE(isBefore({&id, {"a", "x"}}, {&id, {"a", "x"}}));
}

}  // namespace
}  // namespace QosAgent::Gnmi
