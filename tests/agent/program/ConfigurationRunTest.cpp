#include <gtest/gtest.h>

#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/Program.h"

namespace QosAgent {
namespace {

/// The program over OpenConfig configurations, as documents and in change streams.
class ConfigurationRunTest : public ProgramTest {
protected:
    static std::string configuration(const std::string& classifier, unsigned dscp) {
        return documentOf({{}, {{classifier, "", {{"T", {dscp}}}}}, {}});
    }
    static std::string shown(const std::string& classifier, unsigned dscp) {
        return R"({"openconfig-qos:qos":{"classifiers":{"classifier":[{"name":")" + classifier +
               R"(","state":{"name":")" + classifier +
               R"(","type":"IPV4"},"terms":{"term":[{"id":"T","state":{"id":"T"},)"
               R"("conditions":{"ipv4":{"state":{"dscp":)" +
               std::to_string(dscp) + "}}}}]}}]}}}\n";
    }
    Ended print(std::vector<std::string> inputs, const std::string& lines) {
        inputs.insert(inputs.begin(), {"--output", "none"});
        inputs.emplace_back("-");
        return run(inputs, lines + "{\"print\":\"openconfig\"}\n");
    }
    static std::string operation(const std::string& document) {
        return R"({"openconfig":)" + document + "}\n";
    }
};

TEST_F(ConfigurationRunTest, showsTheStateOfADocument) {
    EXPECT_EQ(print({file("c.json", configuration("C", 46))}, ""), (Ended{0, shown("C", 46), ""}));
}

TEST_F(ConfigurationRunTest, letsALaterDocumentTakeThePlaceOfTheEarlier) {
    EXPECT_EQ(
        print({file("c.json", configuration("C", 46)), file("d.json", configuration("D", 8))}, ""),
        (Ended{0, shown("D", 8), ""}));
}

TEST_F(ConfigurationRunTest, letsAChangeStreamTakeThePlaceOfADocument) {
    EXPECT_EQ(print({file("c.json", configuration("C", 46))}, operation(configuration("C", 8))),
              (Ended{0, shown("C", 8), ""}));
}

TEST_F(ConfigurationRunTest, carriesTheConfigurationFromOneStreamToTheNext) {
    const std::string stream = file("s.jsonl", operation(configuration("C", 46)));
    EXPECT_EQ(print({stream}, operation(configuration("C", 8))), (Ended{0, shown("C", 8), ""}));
}

TEST_F(ConfigurationRunTest, warnsWithThePlaceInADocument) {
    const std::string document = file("c.json",
                                      "{\"openconfig-qos:qos\": {\n  \"scheduler-policies\": [1],\n"
                                      "  \"state\": {\"x\": 1}}}\n");
    EXPECT_EQ(print({document}, ""),
              (Ended{0, "{}\n",
                     document + ":2:3: warning: passed over: scheduler-policies\n" + document +
                         ":3:3: warning: passed over: state containers\n"}));
}

TEST_F(ConfigurationRunTest, warnsWithThePlaceInAStreamAndKeepsTheExitStatus) {
    EXPECT_EQ(print({}, "\n" + operation(R"({"openconfig-qos:qos":{"state":{"x":1}}})")),
              (Ended{0, "{}\n", "-:2:38: warning: passed over: state containers\n"}));
}

TEST_F(ConfigurationRunTest, refusesADocumentWithItsPlaceAndNoWarning) {
    const std::string document = file("c.json",
                                      "{\"openconfig-qos:qos\": {\"state\": {\"x\": 1},\n"
                                      "  \"classifiers\": []}}");
    EXPECT_EQ(print({document}, ""),
              (Ended{2, "", document + ":2:18: expected an object, found an array\n"}));
}

TEST_F(ConfigurationRunTest, goesOnAfterARefusedConfigurationIfAsked) {
    const std::string wrong = operation(configuration("C", 64));
    const std::string column = std::to_string(wrong.find("64") + 1);
    EXPECT_EQ(
        print({"--keep-going"}, operation(configuration("C", 46)) + wrong),
        (Ended{1, shown("C", 46), "-:2:" + column + ": \"64\" is no DSCP, expected 0 to 63\n"}));
}

}  // namespace
}  // namespace QosAgent
