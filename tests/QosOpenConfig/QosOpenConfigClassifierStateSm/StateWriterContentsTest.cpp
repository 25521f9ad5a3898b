#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/TermContentsTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Type = Classifier::Type;
using Ip = Config::TermConditionsIpConfig;
using Values = Orin::Vector<unsigned char>;

class AddClassifierTermConditionTest : public StateTest {
protected:
    void add(const char* name, Type type, Values values) {
        addClassifierTermCondition(root, name, type, "10", values);
    }
};

TEST_F(AddClassifierTermConditionTest, writesASingleValueAsADscp) {
    add("voice", Type::IPV4, {46});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 46}");
    const auto& conditions = root->classifier("voice")->terms()->term("10")->conditions;
    EXPECT_EQ(conditions, (Config::TermConditions{Ip(46), Ip()}));
}

TEST_F(AddClassifierTermConditionTest, writesSeveralValuesAsASetInTheirOrder) {
    add("voice", Type::IPV4, {10, 12, 10});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 [10, 12, 10]}");
}

TEST_F(AddClassifierTermConditionTest, writesEqualValuesAsASetToo) {
    add("voice", Type::IPV4, {46, 46});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 [46, 46]}");
}

TEST_F(AddClassifierTermConditionTest, writesAnyByte) {
    add("voice", Type::IPV4, {0});
    add("video", Type::IPV6, {255, 0, 64});
    EXPECT_EQ(state(), "video IPV6 {10 when ipv6 [255, 0, 64]}; voice IPV4 {10 when ipv4 0}");
}

TEST_F(AddClassifierTermConditionTest, leavesTheValuesOfTheCallerAsTheyAre) {
    Values values{3, 1, 2, 3, 9, 8, 7, 6, 5, 4};
    const Values before = values;
    addClassifierTermCondition(root, "voice", Type::IPV4, "10", values);
    EXPECT_EQ(values, before);
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 [3, 1, 2, 3, 9, 8, 7, 6, 5, 4]}");
}

TEST_F(AddClassifierTermConditionTest, choosesTheFamilyByItsTypeNotTheClassifiers) {
    addClassifier(root, "voice", Type::IPV4);
    add("voice", Type::IPV6, {46});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv6 46}");
    add("video", static_cast<Type>(2), {46});
    EXPECT_EQ(root->classifier("video")->terms()->term("10")->conditions,
              (Config::TermConditions{Ip(), Ip(46)}));
}

TEST_F(AddClassifierTermConditionTest, emptiesTheOtherFamily) {
    add("voice", Type::IPV4, {46, 48});
    add("voice", Type::IPV6, {10});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv6 10}");
    add("voice", Type::IPV4, {12});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 12}");
}

TEST_F(AddClassifierTermConditionTest, replacesEarlierConditions) {
    add("voice", Type::IPV4, {46});
    add("voice", Type::IPV4, {10, 12});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 [10, 12]}");
    add("voice", Type::IPV4, {48});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 48}");
}

TEST_F(AddClassifierTermConditionTest, keepsTheAction) {
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    add("voice", Type::IPV4, {46});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 46 to gold}");
}

TEST_F(AddClassifierTermConditionTest, keepsTheStoredStateId) {
    State::Term term(Orin::String("10"));
    term.stateId = "ten";
    root->classifierIs("voice")->termsIs()->termIs(term);
    add("voice", Type::IPV4, {46});
    term.conditions = {Ip(46), Ip()};
    EXPECT_EQ(*root->classifier("voice")->terms()->term("10"), term);
}

TEST_F(AddClassifierTermConditionTest, publishesTheTermBareAndThenWithItsConditions) {
    add("voice", Type::IPV4, {46});
    EXPECT_THAT(heard.take(), ElementsAre("voice", "voice/state IPV4", "voice/terms", "voice/10",
                                          "voice/10 when ipv4 46"));
}

TEST_F(AddClassifierTermConditionTest, publishesAnExistingTermOnce) {
    addClassifierTerm(root, "voice", Type::IPV4, "10");
    heard.take();
    add("voice", Type::IPV4, {46, 48});
    EXPECT_THAT(heard.take(), ElementsAre("voice/10 when ipv4 [46, 48]"));
}

TEST_F(AddClassifierTermConditionTest, publishesNothingForEqualConditions) {
    add("voice", Type::IPV4, {46, 48});
    heard.take();
    add("voice", Type::IPV4, {46, 48});
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(AddClassifierTermConditionTest, makesNothingOutOfNoValues) {
    add("voice", Type::IPV4, {});
    EXPECT_EQ(state(), "");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(AddClassifierTermConditionTest, keepsEarlierConditionsWhereThereAreNoValues) {
    add("voice", Type::IPV4, {46});
    heard.take();
    add("voice", Type::IPV4, {});
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 46}");
    EXPECT_THAT(heard.take(), IsEmpty());
}

const std::string kAddCondition =
    lead("addClassifierTermCondition") +
    "void QosOc::addClassifierTermCondition(const Ptr&, const String&, QosOc::Classifier::Type, "
    "const String&, Orin::Vector<unsigned char>&)";

TEST_F(AddClassifierTermConditionTest, tracesItselfThenTheTermThenTheClassifier) {
    const Lines lines = traced([this] { add("voice", Type::IPV6, {46}); });
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(withoutNumbers(lines)[0],
              kAddCondition + ", classifierName = voice, classifierType = IPV6, termId = 10");
    EXPECT_THAT(lines[1], ::testing::HasSubstr(" addClassifierTerm void "));
    EXPECT_THAT(lines[2], ::testing::HasSubstr(" addClassifier void "));
}

TEST_F(AddClassifierTermConditionTest, tracesThatThereAreNoValues) {
    const Lines lines = traced([this] { add("voice", Type::IPV4, {}); });
    EXPECT_THAT(
        withoutNumbers(lines),
        ElementsAre(kAddCondition + ", classifierName = voice, classifierType = IPV4, termId = 10",
                    kAddCondition + ", no rules are defined, skipping"));
}

class DeleteClassifierTermConditionTest : public TermContentsTest {};

TEST_F(DeleteClassifierTermConditionTest, removesTheContainerWhereAskedTo) {
    deleteClassifierTermCondition(root, "voice", "10", true);
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 to gold, 20}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/10 to gold"));
}

TEST_F(DeleteClassifierTermConditionTest, emptiesTheContainerOtherwise) {
    deleteClassifierTermCondition(root, "voice", "10", false);
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 when - to gold, 20}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/10 when - to gold"));
}

TEST_F(DeleteClassifierTermConditionTest, givesATermWithoutConditionsAnEmptyContainer) {
    deleteClassifierTermCondition(root, "voice", "20", false);
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 when ipv4 46 to gold, 20 when -}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/20 when -"));
}

TEST_F(DeleteClassifierTermConditionTest, publishesNothingTheSecondTime) {
    deleteClassifierTermCondition(root, "voice", "10", true);
    deleteClassifierTermCondition(root, "voice", "20", false);
    heard.take();
    deleteClassifierTermCondition(root, "voice", "10", true);
    deleteClassifierTermCondition(root, "voice", "20", false);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(DeleteClassifierTermConditionTest, keepsABareTerm) {
    deleteClassifierTerm(root, "voice", "20");
    deleteClassifierTermAction(root, "voice", "10");
    deleteClassifierTermCondition(root, "voice", "10", true);
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 to ''}");
}

TEST_F(DeleteClassifierTermConditionTest, changesNothingWhereThereIsNoSuchTerm) {
    expectNoEffect([this](const char* name, const char* id) {
        deleteClassifierTermCondition(root, name, id, true);
        deleteClassifierTermCondition(root, name, id, false);
    });
}

TEST_F(DeleteClassifierTermConditionTest, tracesAllButItsFlag) {
    const Lines lines = traced([this] {
        deleteClassifierTermCondition(root, "voice", "10", true);
        deleteClassifierTermCondition(root, "data", "20", false);
    });
    const std::string line = lead("deleteClassifierTermCondition") +
                             "void QosOc::deleteClassifierTermCondition(const Ptr&, const "
                             "String&, const String&, bool), classifierName = ";
    EXPECT_THAT(withoutNumbers(lines),
                ElementsAre(line + "voice, termId = 10", line + "data, termId = 20"));
}

}  // namespace
}  // namespace QosOc
