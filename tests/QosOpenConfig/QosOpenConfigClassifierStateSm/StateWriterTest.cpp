#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "tests/QosOpenConfig/StateTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Type = Classifier::Type;

class AddClassifierTest : public StateTest {};

TEST_F(AddClassifierTest, makesAClassifierOfTheTypeWithoutTerms) {
    addClassifier(root, "voice", Type::IPV6);
    EXPECT_EQ(state(), "voice IPV6");
    EXPECT_EQ(root->classifier("voice")->state(), (State::ClassifierState{"voice", Type::IPV6}));
    EXPECT_EQ(root->classifier("voice")->terms(), nullptr);
}

TEST_F(AddClassifierTest, publishesTheClassifierAndThenItsState) {
    addClassifier(root, "voice", Type::IPV6);
    EXPECT_THAT(heard.take(), ElementsAre("voice", "voice/state IPV6"));
}

TEST_F(AddClassifierTest, publishesTheStateOfAnIpv4ClassifierToo) {
    addClassifier(root, "voice", Type::IPV4);
    EXPECT_THAT(heard.take(), ElementsAre("voice", "voice/state IPV4"));
}

TEST_F(AddClassifierTest, changesNothingTheSecondTime) {
    addClassifier(root, "voice", Type::IPV6);
    heard.take();
    addClassifier(root, "voice", Type::IPV6);
    EXPECT_EQ(state(), "voice IPV6");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(AddClassifierTest, keepsTheTypeThatWasWrittenFirst) {
    addClassifier(root, "voice", Type::IPV6);
    heard.take();
    addClassifier(root, "voice", Type::IPV4);
    EXPECT_EQ(state(), "voice IPV6");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(AddClassifierTest, keepsTheTermsOfAnExistingClassifier) {
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    addClassifier(root, "voice", Type::IPV6);
    EXPECT_EQ(state(), "voice IPV4 {10 to gold}");
}

TEST_F(AddClassifierTest, leavesAClassifierWithoutAStateAsItIs) {
    root->classifierIs("voice");
    heard.take();
    addClassifier(root, "voice", Type::IPV6);
    EXPECT_EQ(root->classifier("voice")->state(), State::ClassifierState());
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(AddClassifierTest, tracesItsArguments) {
    const Lines lines = traced([this] {
        addClassifier(root, "vo\tice", Type::IPV6);
        addClassifier(root, "vo\tice", Type::IPV4);
    });
    const std::string line =
        lead("addClassifier") +
        "void QosOc::addClassifier(const Ptr&, const String&, QosOc::Classifier::Type), "
        "classifierName = vo\\tice, classifierType = ";
    EXPECT_THAT(withoutNumbers(lines), ElementsAre(line + "IPV6", line + "IPV4"));
}

class DeleteClassifierTest : public StateTest {};

TEST_F(DeleteClassifierTest, removesAClassifierWithItsTerms) {
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    addClassifier(root, "video", Type::IPV4);
    heard.take();
    deleteClassifier(root, "voice");
    EXPECT_EQ(state(), "video IPV4");
    EXPECT_THAT(heard.take(), ElementsAre("voice gone"));
    EXPECT_EQ(TestSupport::live<State::Terms>(), 0u);
}

TEST_F(DeleteClassifierTest, changesNothingWhereThereIsNone) {
    addClassifier(root, "video", Type::IPV4);
    heard.take();
    deleteClassifier(root, "voice");
    EXPECT_EQ(state(), "video IPV4");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(DeleteClassifierTest, makesRoomForAnotherType) {
    addClassifier(root, "voice", Type::IPV4);
    deleteClassifier(root, "voice");
    addClassifier(root, "voice", Type::IPV6);
    EXPECT_EQ(state(), "voice IPV6");
}

TEST_F(DeleteClassifierTest, tracesItsArgumentsWhetherThereIsOneOrNot) {
    addClassifier(root, "voice", Type::IPV4);
    const Lines lines = traced([this] {
        deleteClassifier(root, "voice");
        deleteClassifier(root, "voice");
    });
    const std::string line =
        lead("deleteClassifier") +
        "void QosOc::deleteClassifier(const Ptr&, const String&), classifierName = voice";
    EXPECT_THAT(withoutNumbers(lines), ElementsAre(line, line));
}

class AddClassifierTermTest : public StateTest {};

TEST_F(AddClassifierTermTest, makesClassifierTermsAndBareTerm) {
    addClassifierTerm(root, "voice", Type::IPV6, "10");
    EXPECT_EQ(state(), "voice IPV6 {10}");
    const State::Term* term = root->classifier("voice")->terms()->term("10");
    EXPECT_EQ(*term, (State::Term(Orin::String("10"))));
    EXPECT_EQ(term->stateId, "10");
}

TEST_F(AddClassifierTermTest, publishesEachThingThatItMakesFromTheTopDown) {
    addClassifierTerm(root, "voice", Type::IPV6, "10");
    EXPECT_THAT(heard.take(), ElementsAre("voice", "voice/state IPV6", "voice/terms", "voice/10"));
}

TEST_F(AddClassifierTermTest, publishesOnlyTheTermWhereThereAreOthers) {
    addClassifierTerm(root, "voice", Type::IPV4, "10");
    heard.take();
    addClassifierTerm(root, "voice", Type::IPV4, "20");
    EXPECT_EQ(state(), "voice IPV4 {10, 20}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/20"));
}

TEST_F(AddClassifierTermTest, keepsConditionsAndActionsOfAnExistingTerm) {
    Orin::Vector<unsigned char> values{46};
    addClassifierTermCondition(root, "voice", Type::IPV4, "10", values);
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    heard.take();
    addClassifierTerm(root, "voice", Type::IPV4, "10");
    EXPECT_EQ(state(), "voice IPV4 {10 when ipv4 46 to gold}");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(AddClassifierTermTest, keepsTheTypeOfAnExistingClassifier) {
    addClassifier(root, "voice", Type::IPV4);
    addClassifierTerm(root, "voice", Type::IPV6, "10");
    EXPECT_EQ(state(), "voice IPV4 {10}");
}

TEST_F(AddClassifierTermTest, tracesItselfAndThenTheClassifier) {
    const Lines lines = traced([this] { addClassifierTerm(root, "voice", Type::IPV6, "1\n0"); });
    EXPECT_THAT(
        withoutNumbers(lines),
        ElementsAre(lead("addClassifierTerm") +
                        "void QosOc::addClassifierTerm(const Ptr&, const String&, "
                        "QosOc::Classifier::Type, const String&), classifierName = voice, "
                        "classifierType = IPV6, termId = 1\\n0",
                    lead("addClassifier") +
                        "void QosOc::addClassifier(const Ptr&, const String&, "
                        "QosOc::Classifier::Type), classifierName = voice, classifierType = IPV6"));
}

class DeleteClassifierTermTest : public StateTest {};

TEST_F(DeleteClassifierTermTest, removesTheTermAndKeepsTheOthers) {
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    addClassifierTerm(root, "voice", Type::IPV4, "20");
    heard.take();
    deleteClassifierTerm(root, "voice", "10");
    EXPECT_EQ(state(), "voice IPV4 {20}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/10 gone"));
}

TEST_F(DeleteClassifierTermTest, removesTheTermsContainerWithTheLastTerm) {
    addClassifierTerm(root, "voice", Type::IPV6, "10");
    heard.take();
    deleteClassifierTerm(root, "voice", "10");
    EXPECT_EQ(state(), "voice IPV6");
    EXPECT_THAT(heard.take(), ElementsAre("voice/10 gone", "voice/terms gone"));
}

TEST_F(DeleteClassifierTermTest, leavesNothingOfTheTermForItsSuccessor) {
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    deleteClassifierTerm(root, "voice", "10");
    addClassifierTerm(root, "voice", Type::IPV4, "10");
    EXPECT_EQ(state(), "voice IPV4 {10}");
}

TEST_F(DeleteClassifierTermTest, changesNothingWhereThereIsNoSuchTerm) {
    addClassifierTerm(root, "voice", Type::IPV4, "10");
    addClassifier(root, "video", Type::IPV4);
    heard.take();
    deleteClassifierTerm(root, "data", "10");
    deleteClassifierTerm(root, "video", "10");
    deleteClassifierTerm(root, "voice", "20");
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10}");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(DeleteClassifierTermTest, removesATermsContainerThatWasLeftEmpty) {
    addClassifier(root, "voice", Type::IPV4);
    root->classifier("voice")->termsIs();
    heard.take();
    deleteClassifierTerm(root, "voice", "10");
    EXPECT_EQ(state(), "voice IPV4");
    EXPECT_THAT(heard.take(), ElementsAre("voice/terms gone"));
}

TEST_F(DeleteClassifierTermTest, tracesItsArgumentsWhetherThereIsOneOrNot) {
    const Lines lines = traced([this] { deleteClassifierTerm(root, "voice", "10"); });
    EXPECT_THAT(withoutNumbers(lines),
                ElementsAre(lead("deleteClassifierTerm") +
                            "void QosOc::deleteClassifierTerm(const Ptr&, const String&, const "
                            "String&), classifierName = voice, termId = 10"));
}

}  // namespace
}  // namespace QosOc
