#include <gtest/gtest.h>

#include "agent/json/JsonReader.h"
#include "agent/output/ChangeText.h"

namespace QosAgent {
namespace {

using std::chrono::milliseconds;

const std::string kState = "qos/openconfig/state/classifiers/classifier/";

/// 12:31:05.123 of some day.
constexpr ChangeText::Time kNow{std::chrono::hours(24 * 365 * 50 + 12) + std::chrono::minutes(31) +
                                milliseconds(5123)};

class ChangeTextTest : public ::testing::Test {
protected:
    /// What is said of a change after its time, which is always the same here.
    std::string said(const std::string& line) {
        const std::string text = changes.textOf(line, kNow);
        const std::string time = "12:31:05.123Z ";
        EXPECT_EQ(text.substr(0, time.size()), time);
        return text.substr(std::min(text.size(), time.size()));
    }
    std::string update(const std::string& path, const std::string& value) {
        return said(R"({"update":")" + kState + path + R"(","value":)" + value + "}");
    }
    std::string remove(const std::string& path) {
        return said(R"({"delete":")" + kState + path + "\"}");
    }
    void stateIs(const std::string& text) {
        const JsonResult json = parseJson(text);
        changes.stateIs(std::get<Json>(json).root());
    }

    ChangeText changes;
};

TEST_F(ChangeTextTest, tellsTheLifeOfAClassifier) {
    EXPECT_EQ(update("edge/state", R"({"name":"edge","type":"IPV4"})"), "edge: absent -> IPV4");
    EXPECT_EQ(update("edge/state", R"({"name":"edge","type":"IPV6"})"), "edge: IPV4 -> IPV6");
    EXPECT_EQ(remove("edge"), "edge: IPV6 -> absent");
}

TEST_F(ChangeTextTest, escapesWhatNobodySees) {
    EXPECT_EQ(update("\u202ea\u009b/state", R"({"name":"a","type":"IPV4"})"),
              R"(\u202ea\u009b: absent -> IPV4)");
}

TEST_F(ChangeTextTest, tellsTheLifeOfATerm) {
    update("edge/state", R"({"name":"edge","type":"IPV4"})");
    EXPECT_EQ(update("edge/terms/term/voice", R"({"id":"voice","stateId":"voice"})"),
              "edge voice: absent -> empty");
    EXPECT_EQ(update("edge/terms/term/voice", R"({"conditions":{"ipv4":{"dscp":46},"ipv6":{}}})"),
              "edge voice: empty -> dscp 46(EF)");
    EXPECT_EQ(update("edge/terms/term/voice",
                     R"({"conditions":{"ipv4":{"dscpSet":[8,9,10]},"ipv6":{"dscp":1}},)"
                     R"("actions":{"targetGroup":"gold"}})"),
              "edge voice: dscp 46(EF) -> dscp 8-10; ipv6 dscp 1, group gold");
    EXPECT_EQ(update("edge/terms/term/voice", R"({"actions":{"targetGroup":"gold"}})"),
              "edge voice: dscp 8-10; ipv6 dscp 1, group gold -> group gold");
    EXPECT_EQ(remove("edge/terms/term/voice"), "edge voice: group gold -> absent");
    EXPECT_EQ(remove("edge/terms"), "edge: no terms -> absent");
}

TEST_F(ChangeTextTest, tellsWhatIsEmptyFromWhatIsAbsent) {
    update("edge/state", R"({"type":"IPV4"})");
    EXPECT_EQ(update("edge/terms/term/1", R"({"conditions":{"ipv4":{},"ipv6":{}}})"),
              "edge 1: absent -> no dscp");
    EXPECT_EQ(update("edge/terms/term/1",
                     R"({"conditions":{"ipv4":{},"ipv6":{}},"actions":{"targetGroup":""}})"),
              "edge 1: no dscp -> no dscp, no group");
    EXPECT_EQ(update("edge/terms/term/1", "{}"), "edge 1: no dscp, no group -> empty");
}

TEST_F(ChangeTextTest, tellsHowManyTermsGoWithAClassifier) {
    update("edge/state", R"({"type":"IPV4"})");
    update("edge/terms/term/1", "{}");
    update("edge/terms/term/2", "{}");
    EXPECT_EQ(remove("edge/terms"), "edge: 2 terms -> absent");
    update("edge/terms/term/1", "{}");
    EXPECT_EQ(remove("edge"), "edge: IPV4 with 1 term -> absent");
    EXPECT_EQ(update("edge/terms/term/1", "{}"), "edge 1: absent -> empty");
}

TEST_F(ChangeTextTest, knowsTheStateOfTheBeginning) {
    stateIs(R"({"classifier":{"edge":{"state":{"type":"IPV6"},"terms":{"term":
        {"voice":{"conditions":{"ipv6":{"dscp":46}}}}}}}})");
    EXPECT_EQ(remove("edge/terms/term/voice"), "edge voice: dscp 46(EF) -> absent");
    EXPECT_EQ(remove("edge"), "edge: IPV6 -> absent");
    EXPECT_EQ(remove("edge"), "edge: absent -> absent");
}

TEST_F(ChangeTextTest, readsTheEscapesOfPathsAndEscapesControls) {
    EXPECT_EQ(update("a~1b~0~01/state", R"({"type":"IPV4"})"), "a/b~~1: absent -> IPV4");
    EXPECT_EQ(update("a~1b~0~01/terms/term/x\\n", "{}"), "a/b~~1 x\\n: absent -> empty");
    EXPECT_EQ(update("c/terms/term/x", R"({"actions":{"targetGroup":"g\n"}})"),
              "c x: absent -> group g\\n");
}

TEST_F(ChangeTextTest, leavesOtherLinesAsTheyAre) {
    for (const char* line :
         {"# an echo", "{}", "[1]", R"({"classifier":{}})", R"({"update":"qos/status","value":{}})",
          R"({"update":"qos/openconfig/state/classifiers/classifier/edge/state"})",
          "{\"update\":7}"})
        EXPECT_EQ(changes.textOf(line, kNow), line);
}

}  // namespace
}  // namespace QosAgent
