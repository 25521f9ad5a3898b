#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "agent/openconfig/OpenConfigReader.h"

namespace QosAgent {
namespace {

using Values = std::vector<std::uint8_t>;
using Names = std::vector<std::string>;

/// A text with a `@` before the byte that a test is about.
struct Marked {
    explicit Marked(std::string marked) : text(std::move(marked)), offset(text.find('@')) {
        if (offset != std::string::npos) text.erase(offset, 1);
    }
    std::string text;
    std::size_t offset;
};

std::string qos(const std::string& members) {
    return R"({"openconfig-qos:qos":{)" + members + "}}";
}
std::string groups(const std::string& entries) {
    return R"("forwarding-groups":{"forwarding-group":[)" + entries + "]}";
}
std::string classifiers(const std::string& entries) {
    return R"("classifiers":{"classifier":[)" + entries + "]}";
}
std::string interfaces(const std::string& entries) {
    return R"("interfaces":{"interface":[)" + entries + "]}";
}
/// A list entry with its key, which is repeated, and more members.
std::string entry(const std::string& key, const std::string& name, const std::string& more = "",
                  const std::string& config = "") {
    const std::string own = '"' + key + R"(":")" + name + '"';
    return "{" + own + R"(,"config":{)" + own + (config.empty() ? "" : "," + config) + "}" +
           (more.empty() ? "" : "," + more) + "}";
}
std::string classifier(const std::string& name, const std::string& type,
                       const std::string& terms = "") {
    return entry("name", name, R"("terms":{"term":[)" + terms + "]}",
                 type.empty() ? "" : R"("type":")" + type + '"');
}
std::string term(const std::string& id, const std::string& conditions = "",
                 const std::string& actions = "") {
    std::string more;
    if (!conditions.empty()) more = R"("conditions":{)" + conditions + "}";
    if (!actions.empty()) more += (more.empty() ? "" : ",") + (R"("actions":{)" + actions + "}");
    return entry("id", id, more);
}
std::string ipv4(const std::string& config) {
    return R"("ipv4":{"config":{)" + config + "}}";
}
std::string targetGroup(const std::string& name) {
    return R"("config":{"target-group":)" + name + "}";
}
std::string attachment(const std::string& type, const std::string& name) {
    return entry("type", type, "", R"("name":)" + name);
}
std::string interface(const std::string& id, const std::string& attachments) {
    return entry("interface-id", id,
                 R"("input":{"classifiers":{"classifier":[)" + attachments + "]}}");
}
/// One IPv4 classifier with one term of these conditions.
std::string conditions(const std::string& ofTerm) {
    return qos(classifiers(classifier("C", "IPV4", term("T", ofTerm))));
}

class OpenConfigReaderTest : public ::testing::Test {
protected:
    using Result = std::variant<OpenConfigDocument, Fault>;

    Result read(const std::string& text) {
        const JsonResult json = parseJson(text);
        if (const auto* fault = std::get_if<Fault>(&json)) return *fault;
        OpenConfigReader reader(interner_);
        Result result = reader.read(std::get<Json>(json).root());
        warnings_ = reader.warnings();
        return result;
    }
    /// A document that must be good.
    OpenConfigDocument document(const std::string& text) {
        Result result = read(text);
        if (const auto* fault = std::get_if<Fault>(&result)) {
            ADD_FAILURE() << fault->message << " at " << text.substr(fault->offset, 40);
            return {};
        }
        return std::get<OpenConfigDocument>(std::move(result));
    }
    void expectRefused(const std::string& marked, const std::string& message) {
        const Marked place(marked);
        ASSERT_NE(place.offset, std::string::npos);
        const Result result = read(place.text);
        ASSERT_TRUE(std::holds_alternative<Fault>(result)) << place.text;
        EXPECT_EQ(std::get<Fault>(result).message, message);
        EXPECT_EQ(std::get<Fault>(result).offset, place.offset) << place.text;
    }
    /// Each warning is for the place of a mark; the marks are in the order of the warnings.
    void expectPassedOver(std::string marked, const Names& kinds) {
        std::vector<Warning> expected;
        for (const std::string& kind : kinds) {
            const Marked place(marked);
            ASSERT_NE(place.offset, std::string::npos);
            expected.push_back({place.offset, "passed over: " + kind});
            marked = place.text;
        }
        document(marked);
        EXPECT_EQ(warnings_.size(), expected.size());
        EXPECT_TRUE(warnings_ == expected) << shown(warnings_) << "not\n" << shown(expected);
    }
    static std::string shown(const std::vector<Warning>& warnings) {
        std::string lines;
        for (const Warning& warning : warnings)
            lines += std::to_string(warning.offset) + ": " + warning.message + '\n';
        return lines;
    }

    Interner interner_;
    std::vector<Warning> warnings_;
};

const std::string kFirstIsT =
    R"(published as if matching DSCP alone; first in term "T" of classifier "C"))";

TEST_F(OpenConfigReaderTest, takesTheEmptyObjectForNoConfiguration) {
    for (const char* text : {"{}", R"({"openconfig-qos:qos":{}})"}) {
        const OpenConfigDocument empty = document(text);
        EXPECT_TRUE(empty.groups.empty());
        EXPECT_TRUE(empty.classifiers.empty());
        EXPECT_TRUE(empty.attachedPairs.empty());
    }
}

TEST_F(OpenConfigReaderTest, numbersGroupsByTheirPlace) {
    const auto read = document(qos(groups(entry("name", "zinc") + "," + entry("name", "gold"))));
    ASSERT_EQ(read.groups.size(), 2u);
    EXPECT_EQ(read.groups.find("zinc")->trafficClass, 0u);
    EXPECT_EQ(read.groups.find("gold")->trafficClass, 1u);
}

TEST_F(OpenConfigReaderTest, readsATermWithAllThatIsCarried) {
    const auto read = document(qos(
        groups(entry("name", "gold")) + "," +
        classifiers(classifier(
            "C:1", "IPV4", term("T", ipv4(R"("dscp-set":[12,0,63])"), targetGroup(R"("gold")"))))));
    const ConfiguredClassifier* c = read.classifiers.find("C:1");
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->type, QosOc::Classifier::Type::IPV4);
    const ConfiguredTerm* t = c->terms.find("T");
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->objName, "openconfig:C%3A1:T");
    EXPECT_EQ(t->dscpValues(), (Values{12, 0, 63}));
    EXPECT_EQ(t->conditions.dscp, std::nullopt);
    EXPECT_EQ(t->targetGroup, "gold");
    EXPECT_EQ(warnings_.size(), 0u);
}

TEST_F(OpenConfigReaderTest, readsTheConditionsOfTheClassifiersFamily) {
    const auto read = document(
        qos(classifiers(classifier("C", "IPV6", term("T", R"("ipv6":{"config":{"dscp":46}})")))));
    EXPECT_EQ(read.classifiers.find("C")->terms.find("T")->conditions.dscp, 46);
    EXPECT_EQ(read.classifiers.find("C")->family(), QosOc::Classifier::Type::IPV6);
}

TEST_F(OpenConfigReaderTest, takesAClassifierWithoutTypeForIpv4) {
    const auto read =
        document(qos(classifiers(classifier("C", "", term("T", ipv4(R"("dscp":1)"))))));
    EXPECT_EQ(read.classifiers.find("C")->type, std::nullopt);
    EXPECT_EQ(read.classifiers.find("C")->family(), QosOc::Classifier::Type::IPV4);
    EXPECT_EQ(read.classifiers.find("C")->terms.find("T")->dscpValues(), Values{1});
}

TEST_F(OpenConfigReaderTest, matchesTheSingleDscpFirstAndEachValueOnce) {
    const auto read = document(conditions(ipv4(R"("dscp-set":[10,46,8],"dscp":46)")));
    EXPECT_EQ(read.classifiers.find("C")->terms.find("T")->dscpValues(), (Values{46, 10, 8}));
}

TEST_F(OpenConfigReaderTest, listsEachAttachedPairOnce) {
    const std::string both = attachment("IPV6", R"("six")") + "," + attachment("IPV4", R"("four")");
    const auto read = document(
        qos(classifiers(classifier("four", "") + "," + classifier("six", "IPV6")) + "," +
            interfaces(interface("1", both) + "," + interface("2", "") + "," +
                       interface("3", both) + "," + interface("4", attachment("IPV6", R"("six")")) +
                       "," + interface("5", attachment("IPV4", R"("four")")) + "," +
                       interface("6", entry("type", "IPV4")))));
    Names names;
    for (const auto& pair : read.attachedPairs.inOrder())
        names.emplace_back(pair->pmapName.view());
    EXPECT_EQ(names, (Names{"openconfig:four:six", "openconfig::six", "openconfig:four:"}));
    EXPECT_EQ(read.attachedPairs.find("openconfig::six")->ipv6ClassifierName, "six");
    EXPECT_EQ(warnings_.size(), 0u);
}

TEST_F(OpenConfigReaderTest, takesMembersWithTheModulesPrefix) {
    const auto read = document(R"({"openconfig-qos:qos":{"openconfig-qos:classifiers":{
        "openconfig-qos:classifier":[{"openconfig-qos:name":"C","config":{"openconfig-qos:name":"C",
        "openconfig-qos:type":"IPV6"}}]}}})");
    ASSERT_NE(read.classifiers.find("C"), nullptr);
    EXPECT_EQ(read.classifiers.find("C")->type, QosOc::Classifier::Type::IPV6);
    EXPECT_EQ(warnings_.size(), 0u);
}

TEST_F(OpenConfigReaderTest, readsOverQueuesWithoutAWord) {
    document(qos(groups(entry("name", "g", "",
                              R"("output-queue":"none","unicast-output-queue":"u",)"
                              R"("multicast-output-queue":7)")) +
                 R"(,"queues":{"queue":[{"name":0},{"state":[]}]})"));
    EXPECT_EQ(warnings_.size(), 0u);
}

TEST_F(OpenConfigReaderTest, warnsOnceOfEachLeafItDoesNotCarryWithItsFirstPlace) {
    const std::string other = R"("l2":{"config":{"ethertype":1}})";
    expectPassedOver(
        qos(R"(@"scheduler-policies":{"scheduler-policy":[{"name":"s"}]},)" +
            groups(entry("name", "g", "", R"(@"fabric-priority":1)")) + "," +
            classifiers(classifier("C", "IPV4",
                                   term("T", "@" + other + "," + ipv4(R"("dscp":1,@"protocol":6)"),
                                        R"(@"remark":{"config":{"set-dscp":1}})") +
                                       "," + term("U", other))) +
            "," + interfaces(entry("interface-id", "1", R"(@"output":{"queues":{"queue":[1]}})"))),
        {"scheduler-policies", "forwarding-groups/forwarding-group/config/fabric-priority",
         "classifiers/classifier/terms/term/conditions/l2 (in 2 terms, " + kFirstIsT,
         "classifiers/classifier/terms/term/conditions/ipv4/config/protocol (in 1 term, " +
             kFirstIsT,
         "classifiers/classifier/terms/term/actions/remark", "interfaces/interface/output"});
}

TEST_F(OpenConfigReaderTest, warnsOfNothingWhereContainersAreEmpty) {
    document(qos(R"("scheduler-policies":{"scheduler-policy":[]},)" +
                 classifiers(classifier("C", "IPV4",
                                        term("T", R"("l2":{"config":{}},"ipv6":{"config":{}})")))));
    EXPECT_EQ(warnings_.size(), 0u);
}

TEST_F(OpenConfigReaderTest, warnsOnceOfStateContainers) {
    expectPassedOver(qos(classifiers(entry("name", "C", R"(@"state":{"name":"C"})") + "," +
                                     entry("name", "D", R"("state":{"name":"no"})"))),
                     {"state containers"});
}

TEST_F(OpenConfigReaderTest, warnsOnceOfConditionsOfTheOtherFamilyAndDoesNotCheckThem) {
    const std::string six = R"("ipv6":{"config":{"dscp":99}})";
    const auto text =
        qos(classifiers(classifier("C", "IPV4", term("T", "@" + six) + "," + term("U", six)) + "," +
                        classifier("D", "IPV6", term("T", ipv4(R"("dscp":1)")))));
    expectPassedOver(
        text, {"conditions of another family than the classifier's (in 3 terms, " + kFirstIsT});
    const auto read = document(Marked(text).text);
    EXPECT_TRUE(read.classifiers.find("C")->terms.find("T")->conditions.empty());
}

TEST_F(OpenConfigReaderTest, warnsOnceOfClassifiersOfOtherTypesWithAllThatHangsOnThem) {
    const auto text =
        qos(classifiers(entry("name", "M", R"("terms":{"term":7})", R"("type":@"MPLS","more":1)") +
                        "," + entry("name", "E", "", R"("type":"ETHERNET")")) +
            "," +
            interfaces(interface("1", attachment("MPLS", R"("nowhere")") + "," +
                                          attachment("IPV4_MULTICAST", R"("M")") + "," +
                                          attachment("IPV6_MULTICAST", "7"))));
    expectPassedOver(text, {"classifiers of types other than IPV4 and IPV6"});
    const auto read = document(Marked(text).text);
    EXPECT_TRUE(read.classifiers.empty());
    EXPECT_TRUE(read.attachedPairs.empty());
}

TEST_F(OpenConfigReaderTest, tellsWhichMemberWasMeant) {
    expectPassedOver(qos(R"(@"classifers":{"classifier":[1]})"),
                     {R"(classifers, did you mean "classifiers"?)"});
    expectPassedOver(qos(groups(entry("name", "g", R"(@"cofnig":{"x":1},@"other":{"x":1})"))),
                     {R"(forwarding-groups/forwarding-group/cofnig, did you mean "config"?)",
                      "forwarding-groups/forwarding-group/other"});
}

TEST_F(OpenConfigReaderTest, passesOverTheDataOfOtherModules) {
    expectPassedOver(R"({@"openconfig-interfaces:interfaces":{"interface":[1]},)"
                     R"("openconfig-qos:qos":{@"ietf-x:y":1}})",
                     {"openconfig-interfaces:interfaces", "ietf-x:y"});
}

TEST_F(OpenConfigReaderTest, refusesATopMemberThatTheModuleDoesNotHave) {
    const std::string expected = R"(, expected "openconfig-qos:qos")";
    expectRefused(R"({@"openconfig-qos:qoss":{}})",
                  R"(unknown member "openconfig-qos:qoss")" + expected);
    expectRefused(R"({"openconfig-qos:qos":{},@"qos":{}})", R"(unknown member "qos")" + expected);
    expectRefused(R"({@"openconfig_qos:qos":{}})",
                  R"(unknown member "openconfig_qos:qos")" + expected);
}

TEST_F(OpenConfigReaderTest, refusesWhatIsNoObject) {
    expectRefused("@[]", "expected an object, found an array");
    expectRefused(R"({"openconfig-qos:qos":@null})", "expected an object, found null");
    expectRefused(qos(R"("classifiers":@[])"), "expected an object, found an array");
    expectRefused(qos(classifiers("@7")), "expected an object, found a number");
    expectRefused(qos(groups(R"({"name":"g","config":@"g"})")),
                  "expected an object, found a string");
    expectRefused(conditions(R"("ipv4":{"config":@false})"), "expected an object, found a boolean");
}

TEST_F(OpenConfigReaderTest, refusesAListThatIsNone) {
    expectRefused(qos(R"("classifiers":{"classifier":@{}})"), "expected a list, found an object");
    expectRefused(conditions(ipv4(R"("dscp-set":@8)")), "expected a list, found a number");
}

TEST_F(OpenConfigReaderTest, refusesAMemberGivenWithAndWithoutPrefix) {
    expectRefused(qos(groups(R"({"name":"g",@"openconfig-qos:name":"g","config":{"name":"g"}})")),
                  R"(a second member "name")");
}

TEST_F(OpenConfigReaderTest, refusesAMissingListKey) {
    expectRefused(qos(groups(R"(@{"config":{"name":"g"}})")), R"(the list key "name" is missing)");
    expectRefused(qos(classifiers(R"(@{"config":{"name":"g"}})")),
                  R"(the list key "name" is missing)");
    expectRefused(qos(classifiers(classifier("C", "IPV4", "@{}"))),
                  R"(the list key "id" is missing)");
    expectRefused(qos(interfaces("@{}")), R"(the list key "interface-id" is missing)");
    expectRefused(qos(interfaces(interface("1", R"(@{"config":{"type":"IPV4"}})"))),
                  R"(the list key "type" is missing)");
}

TEST_F(OpenConfigReaderTest, refusesAListKeyThatItsConfigDoesNotRepeat) {
    expectRefused(qos(groups(R"({"name":@"g"})")),
                  R"(no member "config/name" repeats the list key)");
    expectRefused(qos(classifiers(R"({"name":@"C","config":{}})")),
                  R"(no member "config/name" repeats the list key)");
    expectRefused(qos(classifiers(classifier("C", "IPV4", R"({"id":@"T","config":{}})"))),
                  R"(no member "config/id" repeats the list key)");
    expectRefused(qos(interfaces(R"({"interface-id":@"1"})")),
                  R"(no member "config/interface-id" repeats the list key)");
    expectRefused(qos(interfaces(interface("1", R"({"type":@"IPV4"})"))),
                  R"(no member "config/type" repeats the list key)");
}

TEST_F(OpenConfigReaderTest, refusesAConfigThatDiffersFromTheListKey) {
    expectRefused(qos(groups(R"({"name":"g","config":{"name":@"h"}})")),
                  R"(differs from the list key, which is "g")");
    expectRefused(qos(classifiers(classifier("C", "IPV4", R"({"id":"T","config":{"id":@"t"}})"))),
                  R"(differs from the list key, which is "T")");
    expectRefused(qos(interfaces(interface("1", R"({"type":"IPV4","config":{"type":@"IPV6"}})"))),
                  R"(differs from the list key, which is "IPV4")");
}

TEST_F(OpenConfigReaderTest, refusesAKeyThatIsNoText) {
    expectRefused(qos(groups(R"({"name":@7,"config":{"name":7}})")),
                  "expected a string, found a number");
    expectRefused(qos(classifiers(R"({"name":"C","config":{"name":@null}})")),
                  "expected a string, found null");
}

TEST_F(OpenConfigReaderTest, refusesAnEmptyName) {
    expectRefused(qos(groups(R"({"name":@"","config":{"name":""}})")), "an empty name");
    expectRefused(qos(classifiers(R"({"name":@"","config":{"name":""}})")), "an empty name");
    expectRefused(qos(classifiers(classifier("C", "IPV4", R"({"id":@"","config":{"id":""}})"))),
                  "an empty name");
}

TEST_F(OpenConfigReaderTest, refusesASecondEntryOfOneKey) {
    expectRefused(qos(groups(entry("name", "g") + R"(,{"name":@"g","config":{"name":"g"}})")),
                  R"(a second forwarding group "g")");
    expectRefused(
        qos(classifiers(classifier("C", "IPV4") + R"(,{"name":@"C","config":{"name":"C"}})")),
        R"(a second classifier "C")");
    expectRefused(
        qos(classifiers(classifier("C", "MPLS") + R"(,{"name":@"C","config":{"name":"C"}})")),
        R"(a second classifier "C")");
    expectRefused(qos(classifiers(
                      classifier("C", "IPV4", term("T") + R"(,{"id":@"T","config":{"id":"T"}})"))),
                  R"(a second term "T")");
    expectRefused(qos(interfaces(interface("1", "") +
                                 R"(,{"interface-id":@"1","config":{"interface-id":"1"}})")),
                  R"(a second interface "1")");
    expectRefused(
        qos(interfaces(interface(
            "1", entry("type", "MPLS") + R"(,{"type":@"MPLS","config":{"type":"MPLS"}})"))),
        R"(a second classifier of type "MPLS")");
}

TEST_F(OpenConfigReaderTest, refusesADscpThatIsNone) {
    for (const char* number : {"64", "255", "256", "-1", "1.0", "1e1", "18446744073709551617"})
        expectRefused(conditions(ipv4(R"("dscp":@)" + std::string(number))),
                      '"' + std::string(number) + R"(" is no DSCP, expected 0 to 63)");
    expectRefused(conditions(ipv4(R"("dscp":@"8")")), "expected a number, found a string");
    expectRefused(conditions(ipv4(R"("dscp-set":[1,@64])")),
                  R"("64" is no DSCP, expected 0 to 63)");
    expectRefused(conditions(ipv4(R"("dscp-set":[1,@null])")), "expected a number, found null");
}

TEST_F(OpenConfigReaderTest, refusesASecondEqualValueInASet) {
    expectRefused(conditions(ipv4(R"("dscp-set":[1,2,@1])")), "a second value 1");
}

TEST_F(OpenConfigReaderTest, refusesATargetGroupThatIsNotConfigured) {
    const auto text = [](const std::string& name) {
        return qos(groups(entry("name", "gold")) + "," +
                   classifiers(classifier("C", "IPV4", term("T", "", targetGroup(name)))));
    };
    expectRefused(text(R"(@"Gold")"), R"(no forwarding group "Gold" is configured)");
    expectRefused(text(R"(@"")"), R"(no forwarding group "" is configured)");
    expectRefused(text("@1"), "expected a string, found a number");
}

TEST_F(OpenConfigReaderTest, refusesATypeThatTheModelDoesNotHave) {
    expectRefused(qos(classifiers(entry("name", "C", "", R"("type":@"IPV5")"))),
                  R"(unknown type "IPV5", expected one of IPV4, IPV6, MPLS, ETHERNET)");
    expectRefused(qos(classifiers(entry("name", "C", "", R"("type":@"IPV4_MULTICAST")"))),
                  R"(unknown type "IPV4_MULTICAST", expected one of IPV4, IPV6, MPLS, ETHERNET)");
    expectRefused(qos(classifiers(entry("name", "C", "", R"("type":@4)"))),
                  "expected a string, found a number");
    expectRefused(
        qos(interfaces(interface("1", R"({"type":@"ETHERNET","config":{"type":"ETHERNET"}})"))),
        R"(unknown type "ETHERNET", expected one of IPV4, IPV6, MPLS, IPV4_MULTICAST, )"
        "IPV6_MULTICAST");
}

TEST_F(OpenConfigReaderTest, refusesAnAttachedClassifierThatIsNotConfigured) {
    expectRefused(qos(classifiers(classifier("C", "IPV4")) + "," +
                      interfaces(interface("1", attachment("IPV4", R"(@"c")")))),
                  R"(the classifier "c" is not configured)");
}

TEST_F(OpenConfigReaderTest, refusesAnAttachedClassifierOfAnotherType) {
    const auto text = [](const std::string& configured, const std::string& attached) {
        return qos(classifiers(classifier("C", configured)) + "," +
                   interfaces(interface("1", attachment(attached, R"(@"C")"))));
    };
    const std::string message = R"(the classifier "C" is of another type than its attachment)";
    expectRefused(text("IPV4", "IPV6"), message);
    expectRefused(text("IPV6", "IPV4"), message);
    expectRefused(text("", "IPV6"), message);
    expectRefused(text("MPLS", "IPV4"), message);
}

TEST_F(OpenConfigReaderTest, reportsTheFirstFaultInTheOrderOfReading) {
    expectRefused(qos(classifiers(classifier(
                      "C", "IPV4",
                      term("T", ipv4(R"("dscp":@64,"dscp-set":[64])"), targetGroup(R"("none")"))))),
                  R"("64" is no DSCP, expected 0 to 63)");
}

TEST_F(OpenConfigReaderTest, sharesEqualTexts) {
    const auto read =
        document(qos(groups(entry("name", "X")) + "," +
                     classifiers(classifier("X", "", term("X", "", targetGroup(R"("X")"))))));
    const auto* bytes = read.groups.first()->name.view().data();
    const ConfiguredClassifier& configured = *read.classifiers.first();
    EXPECT_EQ(configured.name.view().data(), bytes);
    EXPECT_EQ(configured.terms.first()->id.view().data(), bytes);
    EXPECT_EQ(configured.terms.first()->targetGroup.view().data(), bytes);
}

}  // namespace
}  // namespace QosAgent
