#include <gtest/gtest.h>

#include "agent/explain/Question.h"

namespace QosAgent {
namespace {

/// `COLUMN: MESSAGE`, or what was read.
std::string readJson(std::string_view text) {
    const JsonResult json = parseJson(text);
    const auto read = questionFrom(std::get<Json>(json).root());
    if (const auto* fault = std::get_if<Fault>(&read))
        return std::to_string(fault->offset + 1) + ": " + fault->message;
    const auto& question = std::get<Question>(read);
    return question.classifier + (question.term ? " " + *question.term : "");
}

std::string readText(std::string_view text) {
    const auto read = questionFrom(text);
    if (const auto* fault = std::get_if<QuestionFault>(&read)) return fault->message;
    const auto& question = std::get<Question>(read);
    return '[' + question.classifier + ']' + (question.term ? '[' + *question.term + ']' : "");
}

TEST(QuestionTest, isReadFromAnObject) {
    EXPECT_EQ(readJson(R"({"classifier":"edge"})"), "edge");
    EXPECT_EQ(readJson(R"({"term":"voice","classifier":"edge"})"), "edge voice");
}

TEST(QuestionTest, isRefusedAtWhatIsWrong) {
    EXPECT_EQ(readJson("[]"), "1: expected an object, found an array");
    EXPECT_EQ(readJson("{}"), "1: no classifier to explain");
    EXPECT_EQ(readJson(R"({"term":"voice"})"), "1: no classifier to explain");
    EXPECT_EQ(readJson(R"({"classifier":""})"), "15: an empty name");
    EXPECT_EQ(readJson(R"({"classifier":"c","term":""})"), "26: an empty name");
    EXPECT_EQ(readJson(R"({"classifier":7})"), "15: expected a string, found a number");
    EXPECT_EQ(readJson(R"({"clasifier":"c"})"),
              R"(2: unknown member "clasifier", did you mean "classifier"?)");
}

TEST(QuestionTest, isReadFromTheCommandLine) {
    EXPECT_EQ(readText("edge"), "[edge]");
    EXPECT_EQ(readText("edge/voice"), "[edge][voice]");
    EXPECT_EQ(readText("a~1b/c~0d~01"), "[a/b][c~d~1]");
}

TEST(QuestionTest, isRefusedFromTheCommandLine) {
    EXPECT_EQ(readText(""), "an empty name");
    EXPECT_EQ(readText("/voice"), "an empty name");
    EXPECT_EQ(readText("edge/"), "an empty name");
    EXPECT_EQ(readText("edge/a/b"), R"(expected CLASSIFIER or CLASSIFIER/TERM, found "edge/a/b")");
    EXPECT_EQ(readText("edge~2"), R"('~' in the name "edge~2" begins neither '~0' nor '~1')");
    EXPECT_EQ(readText("edge/voice~"), R"('~' in the name "voice~" begins neither '~0' nor '~1')");
}

}  // namespace
}  // namespace QosAgent
