#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "tests/agent/support/ConfigurationChance.h"
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

std::string quoted(const std::string& text) {
    std::string json;
    appendQuoted(json, text);
    return json;
}
std::string deleted(const std::string& path) {
    return R"({"delete":)" + quoted(path) + "}";
}
std::string updated(const std::string& path, const std::string& value) {
    return R"({"update":)" + quoted(path) + R"(,"value":)" + value + "}";
}
std::string replaced(const std::string& path, const std::string& value) {
    return R"({"replace":)" + quoted(path) + R"(,"value":)" + value + "}";
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

/// Edits made up by chance, and the same done to a plan.
class ChanceEdits {
public:
    ChanceEdits(Chance& chance, ConfigurationPlan& plan) : chance_(chance), plan_(plan) {}

    std::string next() {
        switch (chance_.below(9)) {
            case 0:
                return group();
            case 1:
                return deletedGroup();
            case 2:
                return deletedClassifier();
            case 3:
                return wholeClassifier();
            case 4:
                return interface();
            default:
                return term();
        }
    }

private:
    static constexpr std::array kGroups{"g0", "g1", "g2", "g3"};
    static constexpr std::array kNames{"a", "b", "c", "d"};
    static constexpr std::array kIds{"1", "2", "3"};

    static std::string entry(const std::string& key, const std::string& value) {
        return R"({")" + key + R"(":")" + value + R"(","config":{")" + key + R"(":")" + value +
               R"("}})";
    }
    std::string group() {
        const std::string name = chance_.of(kGroups);
        if (std::find(plan_.groups.begin(), plan_.groups.end(), name) == plan_.groups.end())
            plan_.groups.push_back(name);
        return updated("/qos/forwarding-groups",
                       R"({"forwarding-group":[)" + entry("name", name) + "]}");
    }
    std::string deletedGroup() {
        const std::string name = chance_.of(kGroups);
        std::erase(plan_.groups, name);
        return deleted("/qos/forwarding-groups/forwarding-group[name=" + name + "]");
    }
    std::string deletedClassifier() {
        const std::string name = chance_.of(kNames);
        std::erase_if(plan_.classifiers, [&](const auto& each) { return each.name == name; });
        return deleted("/qos/classifiers/classifier[name=" + name + "]");
    }
    /// Another type, and terms that are all made up anew.
    std::string wholeClassifier() {
        ConfigurationPlan made = chance_.configuration();
        if (made.classifiers.empty()) return deleted("/qos/queues");
        const ClassifierPlan& classifier = chance_.of(made.classifiers);
        ConfigurationPlan alone{{}, {classifier}, {}};
        const auto at =
            std::find_if(plan_.classifiers.begin(), plan_.classifiers.end(),
                         [&](const auto& each) { return each.name == classifier.name; });
        if (at == plan_.classifiers.end())
            plan_.classifiers.push_back(classifier);
        else
            *at = classifier;
        std::string document = documentOf(alone);
        const std::size_t begin = document.find('[') + 1;
        return replaced("/qos/classifiers/classifier[name=" + classifier.name + "]",
                        document.substr(begin, document.rfind(']') - begin));
    }
    std::string interface() {
        const std::string id = "eth" + std::to_string(chance_.below(3));
        const std::string path = "/qos/interfaces/interface[interface-id=" + id + "]";
        const auto at = std::find_if(plan_.interfaces.begin(), plan_.interfaces.end(),
                                     [&](const auto& each) { return each.id == id; });
        if (chance_.below(3) == 0) {
            if (at != plan_.interfaces.end()) plan_.interfaces.erase(at);
            return deleted(path);
        }
        AttachmentPlan attached{chance_.below(2) == 0 ? "a" : "b", chance_.below(2) == 0 ? "c" : "",
                                id};
        if (at == plan_.interfaces.end())
            plan_.interfaces.push_back(attached);
        else
            *at = attached;
        std::string document = documentOf({{}, {}, {attached}});
        const std::size_t begin = document.find('[') + 1;
        return replaced(path, document.substr(begin, document.rfind(']') - begin));
    }
    std::string term() {
        const std::string name = chance_.of(kNames);
        const std::string id = chance_.of(kIds);
        const std::string path =
            "/qos/classifiers/classifier[name=" + name + "]/terms/term[id=" + id + "]";
        const auto classifier = std::find_if(plan_.classifiers.begin(), plan_.classifiers.end(),
                                             [&](const auto& each) { return each.name == name; });
        if (classifier == plan_.classifiers.end()) return deleted(path);
        auto& terms = classifier->terms;
        const auto at = std::find_if(terms.begin(), terms.end(),
                                     [&](const auto& each) { return each.id == id; });
        if (at == terms.end() && chance_.below(2) == 0) {
            terms.push_back({id, {}});
            return updated(path + "/config", R"({"id":")" + id + "\"}");
        }
        if (at == terms.end() || chance_.below(4) == 0) {
            if (at != terms.end()) terms.erase(at);
            return deleted(path);
        }
        if (chance_.below(2) == 0) {
            at->group = chance_.of(kGroups);
            return updated(path + "/actions/config/target-group", '"' + at->group + '"');
        }
        const unsigned dscp = chance_.below(4);
        at->dscp = {dscp};
        at->isSet = false;
        return replaced(path + "/conditions",
                        std::string(R"({")") + (classifier->isIpv6() ? "ipv6" : "ipv4") +
                            R"(":{"config":{"dscp":)" + std::to_string(dscp) + "}}}");
    }

    Chance& chance_;
    ConfigurationPlan& plan_;
};

/// A database with its recorder.
struct Watched {
    ConfiguredState db;
    ChangeRecorder recorder{db.database};
};

class ConfigureChanceTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(ConfigureChanceTest, doesWhatTheEditedDocumentWouldDo) {
    unsigned refused = 0;
    unsigned applied = 0;
    for (unsigned round = 0; round < 25; ++round) {
        Chance chance(1000 * GetParam() + round);
        Watched byEdits;
        Watched byDocument;
        ConfigurationPlan plan = chance.configuration();
        for (std::size_t i = 0; i < plan.interfaces.size(); ++i)
            plan.interfaces[i].id = "eth" + std::to_string(i);
        std::string story = documentOf(plan) + '\n';
        ASSERT_EQ(byEdits.db.configure(documentOf(plan)), "");
        ASSERT_EQ(byDocument.db.configure(documentOf(plan)), "");
        for (unsigned step = 0; step < 12; ++step) {
            ConfigurationPlan later = plan;
            ChanceEdits edits(chance, later);
            std::string line = edits.next();
            for (unsigned more = chance.below(4); more > 0; --more)
                line += ',' + edits.next();
            line = R"({"configure":[)" + line + "]}";
            story += line + '\n';
            SCOPED_TRACE(story);
            byEdits.recorder.take();
            byDocument.recorder.take();
            const std::string fault = byDocument.db.configure(documentOf(later));
            ASSERT_EQ(byEdits.db.apply(line).empty(), fault.empty())
                << fault << " / " << byEdits.db.apply(line);
            ASSERT_EQ(byEdits.recorder.take(), byDocument.recorder.take());
            ASSERT_EQ(byEdits.db.all(), byDocument.db.all());
            ++(fault.empty() ? applied : refused);
            if (fault.empty()) plan = later;
        }
        std::string printed;
        JsonWriter writer(printed);
        byEdits.db.configuration.tree().write(writer);
        ASSERT_EQ(byEdits.db.configure(printed), "");
        ASSERT_EQ(byEdits.recorder.take(), Changes{});
    }
    EXPECT_GT(applied, 50u);
    EXPECT_GT(refused, 50u);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ConfigureChanceTest, ::testing::Range(0u, 6u));

}  // namespace
}  // namespace QosAgent
