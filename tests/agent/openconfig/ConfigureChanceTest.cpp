#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "tests/agent/support/ConfigurationChance.h"
#include "tests/agent/support/ConfigurationEdits.h"
#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/ConfiguredState.h"

namespace QosAgent {
namespace {

/// Edits made up by chance, and the same done to a plan.
class ChanceEdits {
public:
    ChanceEdits(Chance& chance, ConfigurationPlan& plan) : chance_(chance), plan_(plan) {}

    std::string next() {
        switch (chance_.below(11)) {
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
            case 5:
                return deletedTerms();
            case 6:
                return chance_.below(4) == 0 ? deletedHolder() : notCarried();
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
    std::string deletedTerms() {
        const std::string name = chance_.of(kNames);
        for (ClassifierPlan& classifier : plan_.classifiers)
            if (classifier.name == name) classifier.terms.clear();
        return deleted("/qos/classifiers/classifier[name=" + name + "]/terms");
    }
    std::string deletedHolder() {
        switch (chance_.below(3)) {
            case 0:
                plan_.groups.clear();
                return deleted("/qos/forwarding-groups");
            case 1:
                plan_.classifiers.clear();
                return deleted("/qos/classifiers");
            default:
                plan_.interfaces.clear();
                return deleted("/qos/interfaces");
        }
    }
    std::string notCarried() {
        static constexpr std::array kPaths{"/qos/scheduler-policies", "/qos/classifiers/x",
                                           "/qos/x"};
        return chance_.below(2) == 0 ? updated(chance_.of(kPaths), "{}")
                                     : deleted(chance_.of(kPaths));
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

/// A line of others that removes something the configuration made, or something that holds it.
std::string lineOfOthers(Chance& chance) {
    static const std::vector<std::string> kPlaces{
        "qos/status/cmapTypeStatus/mapQos/cmapStatus/openconfig:a:1",
        "qos/status/cmapTypeStatus/mapQos/cmapStatus/openconfig:c:2/match/matchIpv6AccessGroup",
        "qos/status/cmapTypeStatus/mapQos",
        "qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:a:c",
        "qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:a:/classes/openconfig:a:2",
        "acl/config/cli/aclTypeConfig/ipv4/aclConfig/openconfig:a:1",
        "acl/config/cli/aclTypeConfig/ipv6/aclConfig/openconfig:c:1/aclSubConfig/ipRuleById/10",
        "acl/config/cli/aclTypeConfig/ipv6/aclConfig/openconfig:d:3/aclSubConfig",
        "qos/input/config/cli/forwardingGroupNameToTcMap/tc/g1",
        "qos/input/config/cli/forwardingGroupNameToTcMap",
        "qos/openconfig/config/classifiers/classifier/a",
        "qos/openconfig/config/classifiers/classifier/b/config/type",
        "qos/openconfig/config/classifiers/classifier/c/terms",
        "qos/openconfig/config/classifiers/classifier/d/terms/term/1",
        "qos/openconfig/config/classifiers/classifier/a/terms/term/2/actions",
    };
    return R"({"delete":")" + chance.of(kPlaces) + "\"}";
}

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
            if (chance.below(3) == 0) {
                const std::string others = lineOfOthers(chance);
                story += others + '\n';
                ASSERT_EQ(byEdits.db.apply(others), "");
                ASSERT_EQ(byDocument.db.apply(others), "");
            }
            byEdits.recorder.take();
            byDocument.recorder.take();
            const std::string fault = byDocument.db.configure(documentOf(later));
            ASSERT_EQ(byEdits.db.apply(line).empty(), fault.empty()) << fault;
            ASSERT_EQ(byEdits.recorder.take(), byDocument.recorder.take());
            ASSERT_EQ(byEdits.db.all(), byDocument.db.all());
            ++(fault.empty() ? applied : refused);
            if (fault.empty()) plan = later;
        }
        std::string printed;
        JsonWriter writer(printed);
        byEdits.db.configuration.tree().write(writer);
        ASSERT_EQ(byEdits.db.configure(printed), "");
        ASSERT_EQ(byDocument.db.configure(documentOf(plan)), "");
        ASSERT_EQ(byEdits.recorder.take(), byDocument.recorder.take());
    }
    EXPECT_GT(applied, 50u);
    EXPECT_GT(refused, 50u);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ConfigureChanceTest, ::testing::Range(0u, 6u));

}  // namespace
}  // namespace QosAgent
