#include <gmock/gmock.h>
#include <gnmi.pb.h>

#include "agent/gnmi/Set.h"
#include "tests/agent/gnmi/Messages.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

using testing::HasSubstr;

std::string lineOf(const std::string& request, const Tree& tree = *TreeBuilder().build()) {
    const auto edits = editsOf(message<gnmi::SetRequest>(request), tree);
    if (const auto* refusal = std::get_if<Refusal>(&edits))
        return std::to_string(static_cast<int>(refusal->code)) + " " + refusal->message;
    return std::get<Edits>(edits).line;
}

std::string update(const std::string& operation, std::string_view path, const std::string& value) {
    return operation + " { path { " + elements(path) + "} val { " + value + " } } ";
}

TEST(SetTest, becomesOneConfigureInTheOrderOfTheProtocol) {
    EXPECT_EQ(
        lineOf(update("update", "/qos/queues/queue[name=a]/config/queue-id", "uint_val: 1") +
               update("replace", "/qos/queues/queue[name=b]", "json_ietf_val: '{\"name\":\"b\"}'") +
               "delete { " + elements("/qos/queues/queue[name=c]") + "}"),
        R"({"configure":[{"delete":"/qos/queues/queue[name=c]"},)"
        R"({"replace":"/qos/queues/queue[name=b]","value":{"name":"b"}},)"
        R"({"update":"/qos/queues/queue[name=a]/config/queue-id","value":1}]})");
}

TEST(SetTest, isNothingWithoutEdits) {
    EXPECT_EQ(lineOf(""), "");
}

TEST(SetTest, takesValuesOfEveryKindForLeaves) {
    const auto value = [](const std::string& leaf, const std::string& text) {
        const std::string line = lineOf(update("update", "/qos" + leaf, text));
        const std::size_t at = line.find("\"value\":");
        return at == std::string::npos ? line : line.substr(at + 8, line.size() - at - 11);
    };
    const std::string buffer =
        "/buffer-allocation-profiles/buffer-allocation-profile[name=p]/queues/queue[name=q]/"
        "config/";
    EXPECT_EQ(value("/queues/queue[name=q]/config/name", "string_val: 'q\"'"), R"("q\"")");
    EXPECT_EQ(value("/queues/queue[name=q]/config/queue-id", "uint_val: 7"), "7");
    EXPECT_EQ(value("/queues/queue[name=q]/config/queue-id", "int_val: -7"), "-7");
    EXPECT_EQ(value(buffer + "dedicated-buffer", "uint_val: 7"), "\"7\"");
    EXPECT_EQ(value(buffer + "use-shared-buffer", "bool_val: true"), "true");
    const std::string set =
        "/classifiers/classifier[name=c]/terms/term[id=t]/conditions/ipv4/config/dscp-set";
    EXPECT_EQ(value(set, "leaflist_val { element { uint_val: 1 } element { uint_val: 2 } }"),
              "[1,2]");
    EXPECT_EQ(value(set, "json_val: ' [ 1 ,\\n 2 ] '"), "[1,2]");
}

TEST(SetTest, refusesValuesThatFitNoNode) {
    EXPECT_THAT(lineOf(update("update", "/qos/queues", "uint_val: 1")),
                HasSubstr("3 /qos/queues: "));
    EXPECT_THAT(lineOf(update("update", "/qos/queues", "json_val: '{'")),
                HasSubstr("3 /qos/queues"));
    EXPECT_THAT(lineOf(update("replace", "/qos/queues", "json_val: 'null'")), HasSubstr("3 "));
    EXPECT_THAT(lineOf(update("replace", "/qos/queues/queue[name=q]", "json_val: '{}'")),
                HasSubstr("3 "));
    EXPECT_THAT(lineOf(update("update", "/qos/queues", "ascii_val: 'x'")), HasSubstr("12 "));
    EXPECT_THAT(lineOf(update("update", "/qos/queues", "")), HasSubstr("3 "));
    EXPECT_THAT(lineOf("update { path { elem { name: 'qos' } } value { value: 'x' } }"),
                HasSubstr("obsolete"));
}

TEST(SetTest, refusesStateAndWhatIsNotInTheModel) {
    EXPECT_THAT(lineOf(update("update", "/qos/classifiers/classifier[name=c]/state/type",
                              "string_val: 'IPV4'")),
                HasSubstr("3 /qos/classifiers/classifier[name=c]/state/type: state cannot be set"));
    EXPECT_THAT(lineOf("delete { " + elements("/qos/classifiers/classifier[name=c]/state") + "}"),
                HasSubstr("3 "));
    EXPECT_THAT(lineOf("delete { " + elements("/interfaces") + "}"), HasSubstr("12 /interfaces"));
    EXPECT_THAT(lineOf("delete { " + elements("/qos/nothing") + "}"), HasSubstr("5 /qos/nothing"));
}

TEST(SetTest, refusesWildcardsAndMissingKeysOutsideOfDelete) {
    for (const auto* path : {"/qos/queues/queue", "/qos/queues/queue[name=*]", "/qos/*", "/..."})
        EXPECT_THAT(lineOf(update("update", path, "json_val: '{}'")), HasSubstr("wildcard"))
            << path;
}

TEST(SetTest, expandsWildcardsOfDeletesOverTheConfiguration) {
    const auto tree = TreeBuilder()
                          .configuration(R"({"qos": {"queues": {"queue": [
                              {"name": "a", "config": {"name": "a", "queue-id": 1}},
                              {"name": "b", "config": {"name": "b"}}]}}})")
                          .classifier("only-state")
                          .build();
    EXPECT_EQ(lineOf("delete { " + elements("/qos/queues/queue[name=*]") + "}", *tree),
              R"({"configure":[{"delete":"/qos/queues/queue[name=a]"},)"
              R"({"delete":"/qos/queues/queue[name=b]"}]})");
    EXPECT_EQ(lineOf("delete { " + elements("/.../queue-id") + "}", *tree),
              R"({"configure":[{"delete":"/qos/queues/queue[name=a]/config/queue-id"}]})");
    EXPECT_EQ(lineOf("delete { " + elements("/qos/classifiers/classifier") + "}", *tree),
              R"({"configure":[]})");
}

TEST(SetTest, putsTheUnionOfAllValuesInThePlaceOfTheConfiguration) {
    EXPECT_EQ(
        lineOf(
            update("union_replace", "/qos/queues/queue[name=a]", "json_val: '{\"name\":\"a\"}'") +
            update("union_replace", "/qos/queues/queue[name=b]", "json_val: '{\"name\":\"b\"}'")),
        R"({"configure":[{"delete":"/qos"},)"
        R"({"update":"/qos/queues/queue[name=a]","value":{"name":"a"}},)"
        R"({"update":"/qos/queues/queue[name=b]","value":{"name":"b"}}]})");
    EXPECT_THAT(lineOf(update("union_replace", "/qos", "json_val: '{}'") +
                       update("update", "/qos", "json_val: '{}'")),
                HasSubstr("3 union_replace"));
}

TEST(SetTest, answersEachOperationWithItsPath) {
    const auto request = message<gnmi::SetRequest>(
        "prefix { target: 'box' elem { name: 'qos' } } " +
        update("update", "/queues", "json_val: '{}'") + "delete { " + elements("/classifiers") +
        "} " + update("replace", "/queues", "json_val: '{}'"));
    gnmi::SetResponse response;
    answer(request, 5, response);
    EXPECT_EQ(response.ShortDebugString(),
              R"(prefix { origin: "openconfig" elem { name: "qos" } target: "box" } )"
              R"(response { path { elem { name: "classifiers" } } op: DELETE } )"
              R"(response { path { elem { name: "queues" } } op: REPLACE } )"
              R"(response { path { elem { name: "queues" } } op: UPDATE } timestamp: 5)");
}

std::optional<CommitAction> commitOf(const std::string& request) {
    const auto edits = editsOf(message<gnmi::SetRequest>(request), *TreeBuilder().build());
    return std::holds_alternative<Edits>(edits) ? std::get<Edits>(edits).commit : std::nullopt;
}

TEST(SetTest, readsTheCommitExtension) {
    using Kind = CommitAction::Kind;
    using std::chrono::milliseconds;
    EXPECT_EQ(commitOf("extension { commit { id: 'a' commit { } } }"),
              (CommitAction{Kind::begin, "a", std::chrono::minutes(10)}));
    EXPECT_EQ(commitOf("extension { commit { id: 'a' commit { rollback_duration { seconds: 2 "
                       "nanos: 1 } } } }"),
              (CommitAction{Kind::begin, "a", milliseconds(2001)}));
    EXPECT_EQ(commitOf("extension { commit { id: 'a' confirm { } } }"),
              (CommitAction{Kind::confirm, "a", std::chrono::minutes(10)}));
    EXPECT_EQ(commitOf("extension { commit { id: 'a' cancel { } } }")->kind, Kind::cancel);
    EXPECT_EQ(commitOf("extension { commit { id: 'a' set_rollback_duration { rollback_duration { "
                       "seconds: 1 } } } }"),
              (CommitAction{Kind::postpone, "a", milliseconds(1000)}));
    EXPECT_EQ(commitOf(""), std::nullopt);
}

TEST(SetTest, refusesCommitExtensionsThatSayTooLittleOrTooMuch) {
    for (const auto* commit : {"commit { }", "id: 'a'", "id: 'a' set_rollback_duration { }",
                               "id: 'a' commit { rollback_duration { } }"})
        EXPECT_THAT(lineOf("extension { commit { " + std::string(commit) + " } }"),
                    HasSubstr("3 the extension commit"))
            << commit;
    EXPECT_THAT(
        lineOf("delete { " + elements("/qos") + "} extension { commit { id: 'a' confirm { } } }"),
        HasSubstr("no edits"));
}

TEST(SetTest, refusesTheDepthExtension) {
    EXPECT_THAT(lineOf("extension { depth { level: 1 } }"), HasSubstr("3 "));
}

}  // namespace
}  // namespace QosAgent::Gnmi
