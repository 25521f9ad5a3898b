#include <gtest/gtest.h>

#include "tests/agent/support/ConfigurationEdits.h"
#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/ConfiguredState.h"

namespace QosAgent {
namespace {

const std::string kTerms = "/qos/classifiers/classifier[name=edge]/terms/term";

ConfigurationPlan edge() {
    return {{"gold", "lead"},
            {{"edge", "IPV4", {{"voice", {46}, "gold"}, {"data", {10, 12}, "lead"}}}},
            {{"edge", ""}}};
}

class ConfigureTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(db.configure(documentOf(edge())), ""); }

    std::string configure(const std::string& edits) {
        return db.apply(R"({"configure":[)" + edits + "]}");
    }
    /// Expects the refusal at the place of the `@`, which is taken out.
    void expectRefused(std::string edits, const std::string& message) {
        const std::string begin = R"({"configure":[)";
        const std::size_t place = edits.find('@');
        ASSERT_NE(place, std::string::npos);
        edits.erase(place, 1);
        const std::string before = printed();
        const std::string all = db.all();
        EXPECT_EQ(configure(edits), std::to_string(begin.size() + place + 1) + ": " + message);
        EXPECT_EQ(printed(), before);
        EXPECT_EQ(db.all(), all);
    }
    std::string printed() const {
        std::string text;
        JsonWriter writer(text);
        db.configuration.tree().write(writer);
        return text;
    }
    void expectState(const std::map<std::string, std::string>& terms) {
        EXPECT_EQ(db.terms(), terms);
    }

    ConfiguredState db;
};

TEST_F(ConfigureTest, changesALeaf) {
    EXPECT_EQ(configure(updated(kTerms + "[id=voice]/actions/config/target-group", R"("lead")")),
              "");
    expectState({{"edge/voice", "voice when ipv4 46 to lead"},
                 {"edge/data", "data when ipv4 [10, 12] to lead"}});
}

TEST_F(ConfigureTest, addsToALeafListWhatIsNotInIt) {
    EXPECT_EQ(configure(updated(kTerms + "[id=data]/conditions/ipv4/config/dscp-set", "[12,14]")),
              "");
    EXPECT_EQ(db.terms()["edge/data"], "data when ipv4 [10, 12, 14] to lead");
    EXPECT_EQ(configure(replaced(kTerms + "[id=data]/conditions/ipv4/config/dscp-set", "[14,10]")),
              "");
    EXPECT_EQ(db.terms()["edge/data"], "data when ipv4 [14, 10] to lead");
}

TEST_F(ConfigureTest, makesAnEntryOfItsKeyInThePath) {
    EXPECT_EQ(configure(updated(kTerms + "[id=new]/config", R"({"openconfig-qos:id":"new"})")), "");
    EXPECT_EQ(db.terms()["edge/new"], "new");
    EXPECT_EQ(configure(replaced(kTerms + "[id=more]", R"({"config":{"id":"more"}})")), "");
    EXPECT_EQ(db.terms()["edge/more"], "more");
}

TEST_F(ConfigureTest, mergesContainersAndListsByKey) {
    EXPECT_EQ(configure(updated(
                  "/", R"({"qos":{"classifiers":{"classifier":[{"name":"edge","terms":)"
                       R"({"term":[{"id":"voice","conditions":{"ipv4":{"config":{"dscp":8}}}},)"
                       R"({"id":"x","config":{"id":"x"}}]}}]}}})")),
              "");
    expectState({{"edge/voice", "voice when ipv4 8 to gold"},
                 {"edge/data", "data when ipv4 [10, 12] to lead"},
                 {"edge/x", "x"}});
}

TEST_F(ConfigureTest, deletesWhateverIsThere) {
    EXPECT_EQ(
        configure(deleted(kTerms + "[id=voice]/conditions") + "," + deleted(kTerms + "[id=data]") +
                  "," + deleted(kTerms + "[id=none]/config") + "," + deleted("/qos/interfaces")),
        "");
    expectState({{"edge/voice", "voice to gold"}});
    EXPECT_EQ(configure(deleted("/")), "");
    EXPECT_EQ(printed(), "{}");
    expectState({});
}

TEST_F(ConfigureTest, beginsWithNothing) {
    ASSERT_EQ(db.configure("{}"), "");
    EXPECT_EQ(
        configure(updated("/qos/classifiers/classifier[name=c]", R"({"config":{"name":"c"}})")),
        "");
    EXPECT_EQ(printed(), R"({"openconfig-qos:qos":{"classifiers":{"classifier":[)"
                         R"({"name":"c","config":{"name":"c"}}]}}})");
}

TEST_F(ConfigureTest, keepsWhatTheAgentDoesNotCarry) {
    ASSERT_EQ(db.configure(R"({"x:y":[1.50,null],"openconfig-qos:qos":{"scheduler-policies":)"
                           R"({"scheduler-policy":[{"name":"s"}]}}})"),
              "");
    EXPECT_EQ(configure(updated("/qos/scheduler-policies/scheduler-policy[name=s]/config/name",
                                R"("s")")),
              "");
    EXPECT_EQ(printed(), R"({"x:y":[1.50,null],"openconfig-qos:qos":{"scheduler-policies":)"
                         R"({"scheduler-policy":[{"name":"s","config":{"name":"s"}}]}}})");
}

TEST_F(ConfigureTest, editsTheListsWithinAnInterface) {
    const std::string list =
        "/qos/interfaces/interface[interface-id=eth0]/input/classifiers/classifier";
    EXPECT_EQ(configure(deleted(list + "[type=IPV4]")), "");
    EXPECT_EQ(db.at("qos/status").find(R"("pmapName")"), std::string::npos);
    EXPECT_EQ(configure(updated(list + "[type=IPV4]/config", R"({"type":"IPV4","name":"edge"})")),
              "");
    EXPECT_NE(db.at("qos/status").find(R"("pmapName":"openconfig:edge:")"), std::string::npos);
}

TEST_F(ConfigureTest, seesWhatEarlierEditsOfTheLineDid) {
    EXPECT_EQ(configure(deleted("/qos/forwarding-groups/forwarding-group[name=gold]") + "," +
                        deleted(kTerms + "[id=voice]/actions")),
              "");
    EXPECT_EQ(db.terms()["edge/voice"], "voice when ipv4 46");
}

TEST_F(ConfigureTest, makesAndRemovesTheContainersThatHoldTheLists) {
    ASSERT_EQ(db.configure(R"({"openconfig-qos:qos":{"queues":{}}})"), "");
    EXPECT_EQ(configure(updated("/qos/forwarding-groups",
                                R"({"forwarding-group":[{"name":"z","config":{"name":"z"}},)"
                                R"({"name":"a","config":{"name":"a"}}]})") +
                        "," +
                        updated("/qos/classifiers/classifier[name=c]",
                                R"({"name":"c","config":{"name":"c"}})")),
              "");
    EXPECT_EQ(db.at("qos/input/config/cli"),
              R"({"forwardingGroupNameToTcMap":{"tc":{"a":1,"z":0}}})");
    EXPECT_EQ(configure(updated("/qos/classifiers/classifier[name=c]/terms",
                                R"({"term":[{"id":"t","config":{"id":"t"}}]})")),
              "");
    expectState({{"c/t", "t"}});
    EXPECT_EQ(configure(deleted("/qos/classifiers/classifier[name=c]/terms")), "");
    expectState({});
    EXPECT_EQ(configure(deleted("/qos/forwarding-groups") + "," + deleted("/qos/classifiers")), "");
    EXPECT_EQ(db.at("qos/input/config/cli"), "{}");
    EXPECT_EQ(db.at("qos/openconfig/config/classifiers"), "{}");
    EXPECT_EQ(printed(), R"({"openconfig-qos:qos":{"queues":{}}})");
}

TEST_F(ConfigureTest, warnsOfWhatAnEditBringsThatIsNotCarried) {
    const auto warnings = [this](const std::string& edits) {
        EXPECT_EQ(configure(edits), "");
        std::vector<std::string> messages;
        for (const Warning& warning : db.operations.takeWarnings())
            messages.push_back(warning.message);
        return messages;
    };
    using Messages = std::vector<std::string>;
    EXPECT_EQ(warnings(updated("/qos/scheduler-policies", R"({"x":1})")),
              Messages{"passed over: scheduler-policies"});
    EXPECT_EQ(warnings(updated("/qos/classifiers/x", "1")), Messages{"passed over: classifiers/x"});
    EXPECT_EQ(warnings(updated("/qos/classifiers/classifier[name=edge]/terms/x", "1")),
              Messages{"passed over: classifiers/classifier/terms/x"});
    EXPECT_EQ(warnings(updated("/", R"({"x:y":1})")), Messages{"passed over: x:y"});
    // What was warned of before is not warned of again.
    EXPECT_EQ(warnings(updated(kTerms + "[id=voice]/actions/config/target-group", R"("lead")")),
              Messages{});
    EXPECT_EQ(warnings(deleted("/qos/scheduler-policies")), Messages{});
}

TEST_F(ConfigureTest, refusesABrokenReferenceAtTheEditThatBreaksIt) {
    expectRefused(updated(kTerms + "[id=x]/config", R"({"id":"x"})") + "," +
                      R"({"delete":@"/qos/forwarding-groups/forwarding-group[name=gold]"})" + "," +
                      deleted(kTerms + "[id=x]"),
                  R"(no forwarding group "gold" is configured)");
    expectRefused(updated(kTerms + "[id=voice]/actions/config/target-group", R"(@"tin")"),
                  R"(no forwarding group "tin" is configured)");
    expectRefused(R"({"delete":@"/qos/classifiers/classifier[name=edge]"})",
                  R"(the classifier "edge" is not configured)");
}

TEST_F(ConfigureTest, refusesAValueThatTheModelDoesNotAllowWhereItStands) {
    expectRefused(updated(kTerms + "[id=x]/config", R"({"id":"x"})") + "," +
                      updated(kTerms + "[id=voice]/conditions/ipv4/config", R"({"dscp":@64})"),
                  R"("64" is no DSCP, expected 0 to 63)");
    expectRefused(replaced(kTerms + "[id=voice]", R"({"id":@"other","config":{"id":"other"}})"),
                  R"(differs from the key in the path, which is "voice")");
}

TEST_F(ConfigureTest, refusesPathsThatLeadNowhere) {
    const std::string classifiers = "/qos/classifiers/classifier";
    expectRefused(R"({"delete":@"qos"})", "the path must begin with '/'");
    expectRefused(R"({"delete":@"/qos/classifiers/classifier"})",
                  R"(the list "classifier" needs its key "name" in the path)");
    expectRefused(R"({"delete":@"/qos/classifiers/classifier[id=edge]"})",
                  R"(the list "classifier" has no key "id", expected "name")");
    expectRefused(R"({"delete":@"/qos/classifiers/classifier[name=*]"})",
                  "an edit takes no wildcard in its path");
    expectRefused(R"({"delete":@"/qos/*/classifier[name=edge]"})",
                  "an edit takes no wildcard in its path");
    expectRefused(R"({"delete":@"/interfaces"})",
                  R"(the model has no "interfaces" at its root, expected "qos")");
}

TEST_F(ConfigureTest, refusesEditsThatAreNone) {
    expectRefused(R"(@7)", "an edit must be an object");
    expectRefused(R"(@{})", "no operation, expected one of delete, replace, update");
    expectRefused(R"(@{"update":"/qos"})", R"(no value for the operation "update")");
    expectRefused(R"(@{"delete":"/qos","value":1})",
                  R"(a value is given for the operation "delete")");
    expectRefused(R"({"delete":"/qos",@"update":"/qos"})", "a second operation in one edit");
    expectRefused(R"({@"remove":"/qos"})", R"(unknown operation "remove")");
}

}  // namespace
}  // namespace QosAgent
