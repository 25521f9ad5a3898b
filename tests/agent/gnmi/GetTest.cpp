#include <gmock/gmock.h>
#include <gnmi.pb.h>

#include "agent/gnmi/Get.h"
#include "tests/agent/gnmi/Messages.h"
#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kConfiguration = R"({"openconfig-qos:qos": {"classifiers": {"classifier": [
    {"name": "c", "config": {"name": "c", "type": "IPV4"},
     "terms": {"term": [{"id": "t", "config": {"id": "t"}}]}}]},
     "buffer-allocation-profiles": {"buffer-allocation-profile": [{"name": "p",
        "config": {"name": "p"}, "queues": {"queue": [{"name": "q",
            "config": {"name": "q", "dedicated-buffer": "18446744073709551615",
                       "use-shared-buffer": true}}]}}]}}})";

class GetTest : public testing::Test {
protected:
    TreePtr tree = TreeBuilder()
                       .configuration(kConfiguration)
                       .classifier("c")
                       .term("c", term("t", 46, "gold"))
                       .build();

    /// The updates of the answer as `PATH=VALUE`, after `@TIMESTAMP` for each notification.
    Lines ask(const std::string& request) {
        gnmi::GetResponse response;
        const auto refusal = get(message<gnmi::GetRequest>(request), *tree, 99, response);
        if (refusal)
            return {std::to_string(static_cast<int>(refusal->code)) + " " + refusal->message};
        Lines lines;
        for (const auto& notification : response.notification()) {
            EXPECT_EQ(notification.prefix().origin(), "openconfig");
            lines.push_back("@" + std::to_string(notification.timestamp()));
            for (const auto& update : notification.update())
                lines.push_back(textOf(update.path()) + "=" + textOf(update.val()));
        }
        return lines;
    }
    static std::string textOf(const gnmi::Path& path) {
        EXPECT_EQ(path.origin(), "");
        EXPECT_EQ(path.target(), "");
        RequestPath plain;
        for (const auto& elem : path.elem()) {
            plain.elements.push_back({elem.name(), {}});
            for (const auto& [name, value] : elem.key())
                plain.elements.back().keys.emplace(name, value);
        }
        return toText(plain);
    }
    static std::string textOf(const gnmi::TypedValue& value) {
        if (value.has_json_val()) return "json " + value.json_val();
        if (value.has_json_ietf_val()) return "ietf " + value.json_ietf_val();
        return value.ShortDebugString();
    }
    static std::string pathOf(std::string_view text) { return "path { " + elements(text) + "} "; }
};

TEST_F(GetTest, answersAContainerAsOneObjectWithBareNamesInJson) {
    EXPECT_THAT(ask(pathOf("/qos/classifiers/classifier[name=c]/terms/term[id=t]")),
                ElementsAre("@99",
                            "/qos/classifiers/classifier[name=c]/terms/term[id=t]=json "
                            R"({"id":"t","config":{"id":"t"},"state":{"id":"t"},)"
                            R"("conditions":{"ipv4":{"state":{"dscp":46}}},)"
                            R"("actions":{"state":{"target-group":"gold"}}})"));
}

TEST_F(GetTest, qualifiesOutermostNamesInJsonIetf) {
    EXPECT_THAT(ask(pathOf("/qos/classifiers") + "type: CONFIG encoding: JSON_IETF"),
                ElementsAre("@99", R"(/qos/classifiers=ietf {"openconfig-qos:classifier":[)"
                                   R"({"name":"c","config":{"name":"c","type":"IPV4"},)"
                                   R"("terms":{"term":[{"id":"t","config":{"id":"t"}}]}}]})"));
    EXPECT_THAT(ask("path {} type: STATE encoding: JSON_IETF")[1],
                HasSubstr(R"(/=ietf {"openconfig-qos:qos":{"classifiers":)"));
}

TEST_F(GetTest, answersALeafAsItsValue) {
    const std::string path =
        "/qos/classifiers/classifier[name=c]/terms/term[id=t]/conditions/ipv4/state/dscp";
    EXPECT_THAT(ask(pathOf(path)), ElementsAre("@99", path + "=json 46"));
    EXPECT_THAT(ask(pathOf(path) + "encoding: PROTO"), ElementsAre("@99", path + "=uint_val: 46"));
}

TEST_F(GetTest, answersAListWithWildcardsEntryByEntry) {
    const auto lines = ask(pathOf("/qos/classifiers/classifier[name=*]/state"));
    EXPECT_THAT(lines, ElementsAre("@99",
                                   "/qos/classifiers/classifier[name=c]/state=json "
                                   R"({"name":"c","type":"IPV4"})"));
    EXPECT_EQ(ask(pathOf("/qos/classifiers/classifier/state")), lines);
    EXPECT_EQ(ask(pathOf("/qos/*/classifier/state")), lines);
    EXPECT_EQ(ask(pathOf("/.../classifier/state")), lines);
}

TEST_F(GetTest, answersEachLeafWithProto) {
    EXPECT_THAT(
        ask(pathOf("/qos/buffer-allocation-profiles") + "encoding: PROTO"),
        ElementsAre(
            "@99",
            "/qos/buffer-allocation-profiles/buffer-allocation-profile[name=p]/name=string_val: "
            "\"p\"",
            "/qos/buffer-allocation-profiles/buffer-allocation-profile[name=p]/config/"
            "name=string_val: \"p\"",
            "/qos/buffer-allocation-profiles/buffer-allocation-profile[name=p]/queues/"
            "queue[name=q]/name=string_val: \"q\"",
            "/qos/buffer-allocation-profiles/buffer-allocation-profile[name=p]/queues/"
            "queue[name=q]/config/name=string_val: \"q\"",
            "/qos/buffer-allocation-profiles/buffer-allocation-profile[name=p]/queues/"
            "queue[name=q]/config/dedicated-buffer=uint_val: 18446744073709551615",
            "/qos/buffer-allocation-profiles/buffer-allocation-profile[name=p]/queues/"
            "queue[name=q]/config/use-shared-buffer=bool_val: true"));
}

TEST_F(GetTest, answersOneNotificationForEachPathInOrder) {
    const std::string name = "/qos/classifiers/classifier[name=c]/state/name";
    EXPECT_THAT(ask(pathOf(name) + pathOf(name)),
                ElementsAre("@99", name + "=json \"c\"", "@99", name + "=json \"c\""));
}

TEST_F(GetTest, joinsPrefixAndPath) {
    EXPECT_THAT(ask("prefix { " + elements("/qos/classifiers") + "} path { " +
                    elements("/classifier[name=c]/state/name") + "}"),
                ElementsAre("@99", "/qos/classifiers/classifier[name=c]/state/name=json \"c\""));
}

TEST_F(GetTest, givesATargetBackInThePrefixOnly) {
    gnmi::GetResponse response;
    get(message<gnmi::GetRequest>("prefix { target: \"box\" } path { }"), *tree, 99, response);
    EXPECT_EQ(response.notification(0).prefix().target(), "box");
    gnmi::GetResponse other;
    get(message<gnmi::GetRequest>("prefix { } path { }"), *tree, 99, other);
    EXPECT_EQ(other.notification(0).prefix().target(), "");
}

TEST_F(GetTest, leavesEntriesOfTheStateAloneOutOfTheConfiguration) {
    tree = TreeBuilder().classifier("c").build();
    EXPECT_THAT(ask("type: CONFIG path { }"), ElementsAre("@99", "/=json {}"));
    EXPECT_THAT(ask("type: CONFIG " + pathOf("/qos/classifiers/classifier[name=c]")),
                ElementsAre(HasSubstr("nothing is there")));
}

TEST_F(GetTest, refusesWhatIsNotThereAsNotFound) {
    EXPECT_THAT(ask(pathOf("/qos/classifiers/classifier[name=none]")),
                ElementsAre("5 /qos/classifiers/classifier[name=none]: nothing is there"));
    EXPECT_THAT(ask(pathOf("/qos/queues"))[0], HasSubstr("5 /qos/queues"));
    EXPECT_THAT(ask(pathOf("/qos/queues/queue[name=*]"))[0], HasSubstr("5 "));
    EXPECT_THAT(ask(pathOf("/qos/classifiers/classifier[name=c]/config") + "type: STATE")[0],
                HasSubstr("5 "));
}

TEST_F(GetTest, answersTheRootEvenWhenNothingIsThere) {
    tree = TreeBuilder().build();
    EXPECT_THAT(ask("path {}"), ElementsAre("@99", "/=json {}"));
}

TEST_F(GetTest, refusesWhatIsOutsideTheModelAsUnimplemented) {
    EXPECT_THAT(ask(pathOf("/interfaces"))[0], HasSubstr("12 /interfaces"));
    EXPECT_THAT(ask("path { origin: \"cli\" }")[0], HasSubstr("12 origin \"cli\""));
    EXPECT_THAT(ask("path { origin: \"openconfig\" }")[0], testing::StartsWith("@"));
    EXPECT_THAT(ask("path {} encoding: ASCII")[0], HasSubstr("12 the encoding ASCII"));
    EXPECT_THAT(ask("path {} encoding: BYTES")[0], HasSubstr("12 the encoding BYTES"));
    EXPECT_THAT(ask("path {} use_models { name: \"openconfig-acl\" }")[0],
                HasSubstr("12 the model \"openconfig-acl\""));
    EXPECT_THAT(ask("path {} use_models { name: \"openconfig-qos\" }")[0],
                testing::StartsWith("@"));
}

TEST_F(GetTest, refusesMalformedPathsAsInvalid) {
    EXPECT_THAT(ask("path { elem { } }")[0], HasSubstr("3 "));
    EXPECT_THAT(ask("path { element: \"qos\" }")[0], HasSubstr("3 "));
    EXPECT_THAT(ask("path { target: \"box\" }")[0], HasSubstr("3 a target"));
    EXPECT_THAT(ask("prefix { origin: \"openconfig\" } path { origin: \"openconfig\" }")[0],
                HasSubstr("3 an origin"));
}

TEST_F(GetTest, limitsTheDepthThatTheExtensionNames) {
    const std::string ask1 = pathOf("/qos/classifiers/classifier[name=c]");
    EXPECT_THAT(ask(ask1 + "extension { depth { level: 1 } }"),
                ElementsAre("@99", R"(/qos/classifiers/classifier[name=c]=json {"name":"c"})"));
    EXPECT_THAT(ask(ask1 + "extension { depth { level: 2 } }"),
                ElementsAre("@99",
                            "/qos/classifiers/classifier[name=c]=json "
                            R"({"name":"c","config":{"name":"c","type":"IPV4"},)"
                            R"("state":{"name":"c","type":"IPV4"}})"));
    EXPECT_EQ(ask(ask1 + "extension { depth { level: 0 } }"), ask(ask1));
    EXPECT_THAT(ask(pathOf("/qos") + "extension { depth { level: 1 } }"), ElementsAre("@99"));
}

TEST_F(GetTest, refusesExtensionsThatItDoesNotHave) {
    EXPECT_THAT(ask("extension { history { } }")[0], HasSubstr("12 "));
    EXPECT_THAT(ask("extension { master_arbitration { } }")[0], HasSubstr("12 "));
    EXPECT_THAT(ask("extension { commit { } }")[0], HasSubstr("3 "));
    EXPECT_EQ(ask("extension { registered_ext { id: EID_EXPERIMENTAL } }"), Lines{});
}

TEST(CapabilitiesTest, namesModelEncodingsAndVersion) {
    gnmi::CapabilityResponse response;
    EXPECT_EQ(capabilities({}, response), std::nullopt);
    EXPECT_EQ(response.ShortDebugString(),
              R"(supported_models { name: "openconfig-qos" organization: "OpenConfig working )"
              R"(group" version: "2.2.0" } supported_encodings: JSON supported_encodings: )"
              R"(JSON_IETF supported_encodings: PROTO gNMI_version: "0.10.0")");
    EXPECT_EQ(
        capabilities(message<gnmi::CapabilityRequest>("extension { depth { } }"), response)->code,
        Code::invalidArgument);
}

}  // namespace
}  // namespace QosAgent::Gnmi
