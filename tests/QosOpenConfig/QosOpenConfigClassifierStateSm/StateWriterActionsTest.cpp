#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/TermContentsTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Type = Classifier::Type;

class AddClassifierTermActionTest : public TermContentsTest {};

TEST_F(AddClassifierTermActionTest, makesClassifierTermsAndTerm) {
    addClassifierTermAction(root, "data", Type::IPV6, "10", "silver");
    EXPECT_EQ(TestSupport::textOf(*root->classifier("data")->terms()->term("10")), "10 to silver");
    EXPECT_THAT(heard.take(), ElementsAre("data", "data/state IPV6", "data/terms", "data/10",
                                          "data/10 to silver"));
}

TEST_F(AddClassifierTermActionTest, replacesTheTargetGroupAndKeepsTheConditions) {
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "silver");
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 when ipv4 46 to silver, 20}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/10 when ipv4 46 to silver"));
}

TEST_F(AddClassifierTermActionTest, keepsTheTypeOfAnExistingClassifier) {
    addClassifierTermAction(root, "voice", Type::IPV6, "20", "silver");
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 when ipv4 46 to gold, 20 to silver}");
}

TEST_F(AddClassifierTermActionTest, storesAnEmptyTargetGroup) {
    addClassifierTermAction(root, "voice", Type::IPV4, "20", "");
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 when ipv4 46 to gold, 20 to ''}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/20 to ''"));
}

TEST_F(AddClassifierTermActionTest, publishesNothingForTheSameTargetGroup) {
    addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(AddClassifierTermActionTest, tracesItselfThenTheTermThenTheClassifier) {
    const Lines lines =
        traced([this] { addClassifierTermAction(root, "voice", Type::IPV4, "10", "go\\ld"); });
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(withoutNumbers(lines)[0],
              lead("addClassifierTermAction") +
                  "void QosOc::addClassifierTermAction(const Ptr&, const String&, "
                  "QosOc::Classifier::Type, const String&, const String&), classifierName = voice, "
                  "classifierType = IPV4, termId = 10, targetGroup = go\\\\ld");
    EXPECT_THAT(lines[1], ::testing::HasSubstr(" addClassifierTerm void "));
    EXPECT_THAT(lines[2], ::testing::HasSubstr(" addClassifier void "));
}

class DeleteClassifierTermActionTest : public TermContentsTest {};

TEST_F(DeleteClassifierTermActionTest, clearsTheTargetGroupAndKeepsTheContainer) {
    deleteClassifierTermAction(root, "voice", "10");
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 when ipv4 46 to '', 20}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/10 when ipv4 46 to ''"));
}

TEST_F(DeleteClassifierTermActionTest, givesATermWithoutAnActionAnEmptyContainer) {
    deleteClassifierTermAction(root, "voice", "20");
    EXPECT_EQ(state(), "video IPV4; voice IPV4 {10 when ipv4 46 to gold, 20 to ''}");
    EXPECT_THAT(heard.take(), ElementsAre("voice/20 to ''"));
}

TEST_F(DeleteClassifierTermActionTest, publishesNothingTheSecondTime) {
    deleteClassifierTermAction(root, "voice", "10");
    heard.take();
    deleteClassifierTermAction(root, "voice", "10");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(DeleteClassifierTermActionTest, changesNothingWhereThereIsNoSuchTerm) {
    expectNoEffect(
        [this](const char* name, const char* id) { deleteClassifierTermAction(root, name, id); });
}

TEST_F(DeleteClassifierTermActionTest, tracesItsArguments) {
    const Lines lines = traced([this] { deleteClassifierTermAction(root, "data", "10"); });
    EXPECT_THAT(withoutNumbers(lines),
                ElementsAre(lead("deleteClassifierTermAction") +
                            "void QosOc::deleteClassifierTermAction(const Ptr&, const String&, "
                            "const String&), classifierName = data, termId = 10"));
}

}  // namespace
}  // namespace QosOc
