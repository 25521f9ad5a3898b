#include "QosOpenConfig/QosOpenConfigClassifierStateSm/CmapTypeStatusSm.h"
#include "platform/Vex/Errors.h"
#include "tests/QosOpenConfig/MachineContract.h"

namespace QosOc {
namespace {

using Qos::ClassMapStatus;
using Qos::ClassMapTypeStatus;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using enum Qos::ClassMapMatchOption;

Orin::Ptr<ClassMapStatus> classMap(const char* name) {
    const auto made = ClassMapStatus::create(Orin::String(name));
    made->matchIs(matchIpAccessGroup, "any");
    return made;
}

class CmapTypeStatusSmTest : public StateTest {
protected:
    void start() { sm = CmapTypeStatusSm::CmapTypeStatusSmIs(cmapTypeStatus, root); }
    std::size_t children() const { return childCount(*sm, "cmapStatusSm"); }

    const Orin::Ptr<ClassMapTypeStatus> cmapTypeStatus =
        ClassMapTypeStatus::create(Qos::MapType::mapQos);
    Orin::Ptr<CmapTypeStatusSm> sm;
};

TEST_F(CmapTypeStatusSmTest, catchesUpWithTheClassMapsThatAreThere) {
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    cmapTypeStatus->cmapStatusIs(classMap("openconfig:video:10"));
    start();
    EXPECT_EQ(state(), "video IPV4 {10}; voice IPV4");
    EXPECT_EQ(children(), 2u);
    EXPECT_EQ(TestSupport::live<CmapStatusSm>(), 2u);
}

TEST_F(CmapTypeStatusSmTest, followsAClassMapThatComes) {
    start();
    const auto voice = classMap("voice");
    cmapTypeStatus->cmapStatusIs(voice);
    EXPECT_EQ(state(), "voice IPV4");
    EXPECT_EQ(children(), 1u);
    deleteClassifier(root, "voice");
    voice->matchIs(matchIpv6AccessGroup, "any");
    EXPECT_EQ(state(), "voice IPV6") << "the child is live";
}

TEST_F(CmapTypeStatusSmTest, keepsTheChildOfAClassMapThatIsPublishedAgain) {
    start();
    const auto voice = classMap("voice");
    cmapTypeStatus->cmapStatusIs(voice);
    const auto child = sm->cmapStatusSmIs(voice, root);
    sm->handleCmapStatus("voice");
    EXPECT_EQ(sm->cmapStatusSmIs(voice, root), child);
    EXPECT_EQ(TestSupport::live<CmapStatusSm>(), 1u);
}

TEST_F(CmapTypeStatusSmTest, dropsTheClassMapThatLeft) {
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    cmapTypeStatus->cmapStatusIs(classMap("openconfig:video:10"));
    start();
    cmapTypeStatus->cmapStatusDel("voice");
    EXPECT_EQ(state(), "video IPV4 {10}");
    cmapTypeStatus->cmapStatusDel("openconfig:video:10");
    EXPECT_EQ(state(), "video IPV4");
    EXPECT_EQ(TestSupport::live<CmapStatusSm>(), 0u);
}

/// Counts the children of a machine each time that the root of the state tree publishes.
struct ChildCounter {
    ChildCounter(const StateDir& root, const CmapTypeStatusSm& machine) : tree(root), sm(machine) {
        record.owner = this;
        record.dispatch = [](Orin::Publisher&, Orin::Subscriber& self, Orin::AttributeId,
                             const void*) noexcept {
            auto& counter = *static_cast<ChildCounter*>(self.owner);
            counter.counts.push_back(childCount(counter.sm, "cmapStatusSm"));
        };
        tree->publisher()->subscriberAdd(record);
    }
    ~ChildCounter() { tree->publisher()->subscriberDel(record); }

    StateDir tree;
    const CmapTypeStatusSm& sm;
    Orin::Subscriber record;
    std::vector<std::size_t> counts;
};

TEST_F(CmapTypeStatusSmTest, letsAChildPrepareBeforeItRemovesIt) {
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    start();
    ChildCounter counter(root, *sm);
    cmapTypeStatus->cmapStatusDel("voice");
    EXPECT_THAT(counter.counts, ElementsAre(1u));
    EXPECT_EQ(children(), 0u);
}

TEST_F(CmapTypeStatusSmTest, doesNothingForANameThatIsNowhere) {
    start();
    sm->handleCmapStatus("voice");
    EXPECT_EQ(children(), 0u);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(CmapTypeStatusSmTest, takesBackAllWhenItPreparesToDie) {
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    cmapTypeStatus->cmapStatusIs(classMap("openconfig:video:10"));
    cmapTypeStatus->cmapStatusIs(classMap("openconfig:video:20"));
    start();
    heard.take();
    sm->doPrepareToDie();
    EXPECT_EQ(state(), "video IPV4");
    EXPECT_THAT(heard.take(),
                ElementsAre("voice gone", "video/10 gone", "video/20 gone", "video/terms gone"));
    EXPECT_EQ(children(), 0u);
}

TEST_F(CmapTypeStatusSmTest, passesOverChildrenWhoseClassMapHasGone) {
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    cmapTypeStatus->cmapStatusIs(classMap("video"));
    start();
    sm->hasNotificationActiveIs(false);
    cmapTypeStatus->cmapStatusDel("voice");
    sm->doPrepareToDie();
    EXPECT_EQ(state(), "voice IPV4");
    EXPECT_EQ(children(), 1u);
}

TEST_F(CmapTypeStatusSmTest, passesOverAllChildrenWhereTheInputIsEmpty) {
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    start();
    sm->hasNotificationActiveIs(false);
    cmapTypeStatus->cmapStatusDel("voice");
    heard.take();
    sm->doPrepareToDie();
    EXPECT_EQ(children(), 1u);
    sm = nullptr;
    EXPECT_THAT(heard.take(), IsEmpty());
    EXPECT_EQ(TestSupport::live<CmapStatusSm>(), 0u);
}

TEST_F(CmapTypeStatusSmTest, passesOverClassMapsWithoutAChild) {
    start();
    sm->hasNotificationActiveIs(false);
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    addClassifier(root, "voice", Classifier::Type::IPV4);
    sm->doPrepareToDie();
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(CmapTypeStatusSmTest, refusesANullClassMap) {
    start();
    try {
        sm->cmapStatusSmIs(nullptr, root);
        FAIL() << "must throw";
    } catch (const Vex::MutatorArgNullPointerException& error) {
        EXPECT_THAT(error.what(), HasSubstr("cmapStatus"));
    }
    EXPECT_EQ(children(), 0u);
}

TEST_F(CmapTypeStatusSmTest, refusesAChildFromOtherInputs) {
    start();
    const auto voice = classMap("voice");
    const auto child = sm->cmapStatusSmIs(voice, root);
    EXPECT_THROW(sm->cmapStatusSmIs(classMap("voice"), root), Vex::MutatorReinstantiatingException);
    EXPECT_THROW(sm->cmapStatusSmIs(voice, State::ClassifiersDir::create()),
                 Vex::MutatorReinstantiatingException);
    EXPECT_EQ(sm->cmapStatusSmIs(voice, root), child);
}

TEST_F(CmapTypeStatusSmTest, stopsTheProcessWhenAClassMapIsSwappedUnderItsName) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    start();
    EXPECT_DEATH(cmapTypeStatus->cmapStatusIs(classMap("voice")),
                 "already instantiated from other inputs: cmapStatus");
}

TEST_F(CmapTypeStatusSmTest, givesOutAChildThatItRemoves) {
    const auto voice = classMap("voice");
    cmapTypeStatus->cmapStatusIs(voice);
    start();
    const auto child = sm->cmapStatusSmIs(voice, root);
    EXPECT_EQ(sm->cmapStatusSmDel("voice"), child);
    EXPECT_EQ(sm->cmapStatusSmDel("voice"), nullptr);
    EXPECT_EQ(state(), "voice IPV4") << "removing takes nothing back";
}

TEST_F(CmapTypeStatusSmTest, removesAllChildrenAndLeavesTheirState) {
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    cmapTypeStatus->cmapStatusIs(classMap("video"));
    start();
    sm->cmapStatusSmDelAll();
    EXPECT_EQ(TestSupport::live<CmapStatusSm>(), 0u);
    EXPECT_EQ(state(), "video IPV4; voice IPV4");
}

TEST_F(CmapTypeStatusSmTest, turnsItsChildrenOffAndOnWithItself) {
    const auto voice = classMap("voice");
    cmapTypeStatus->cmapStatusIs(voice);
    start();
    sm->hasNotificationActiveIs(false);
    EXPECT_FALSE(hasSubscribers(*voice));
    EXPECT_FALSE(hasSubscribers(*cmapTypeStatus));
    sm->hasNotificationActiveIs(true);
    EXPECT_EQ(traced([&] { voice->matchIs(matchDscp, "any"); }).size(), 2u);
    EXPECT_EQ(traced([&] { cmapTypeStatus->cmapStatusDel("voice"); }).size(), 3u);
}

TEST_F(CmapTypeStatusSmTest, isAZombieWithoutItsChildren) {
    const auto voice = classMap("voice");
    cmapTypeStatus->cmapStatusIs(voice);
    start();
    sm->vexDoZombieReactors(true);
    cmapTypeStatus->cmapStatusIs(classMap("video"));
    EXPECT_EQ(state(), "voice IPV4");
    EXPECT_EQ(traced([&] { voice->matchIs(matchDscp, "any"); }).size(), 2u);
}

TEST_F(CmapTypeStatusSmTest, ignoresOtherAttributes) {
    start();
    sm->hasNotificationActiveIs(false);
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    sm->hasNotificationActiveIs(true);
    const Orin::String key = "voice";
    for (const Orin::AttributeId id : Ids{0, 3, 258, 260, 262, 299})
        cmapTypeStatus->publishChange(id, &key);
    EXPECT_EQ(state(), "");
    cmapTypeStatus->publishChange(259, &key);
    EXPECT_EQ(state(), "voice IPV4");
}

TEST_F(CmapTypeStatusSmTest, tracesItsStartAndEachClassMap) {
    cmapTypeStatus->cmapStatusIs(ClassMapStatus::create(Orin::String("vo\x7Fice")));
    const Lines lines = traced([this] { start(); });
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], lineOf(sm.get(), "handleInitialized", 451,
                               "void QosOc::CmapTypeStatusSm::handleInitialized()"));
    EXPECT_EQ(lines[1], lineOf(sm.get(), "handleCmapStatus", 434,
                               "void QosOc::CmapTypeStatusSm::handleCmapStatus(const String&), "
                               "cmapName = vo\\177ice"));
    EXPECT_THAT(lines[2], HasSubstr(":425 handleInitialized "));
}

TEST_F(CmapTypeStatusSmTest, tracesThatItPreparesToDieWithoutItsAddress) {
    cmapTypeStatus->cmapStatusIs(classMap("voice"));
    start();
    const Lines lines = traced([this] { sm->doPrepareToDie(); });
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0],
              lead("doPrepareToDie", "460") + "void QosOc::CmapTypeStatusSm::doPrepareToDie()");
    EXPECT_THAT(lines[1], HasSubstr(":408 doPrepareToDie "));
    EXPECT_THAT(lines[2], HasSubstr(" deleteClassifier void "));
}

TEST_F(CmapTypeStatusSmTest, leavesNothingBehindWhenItCannotBeMade) {
    const auto voice = classMap("voice");
    const auto term = classMap("openconfig:video:10");
    cmapTypeStatus->cmapStatusIs(voice);
    cmapTypeStatus->cmapStatusIs(term);
    expectLeavesNothingBehind(
        {cmapTypeStatus.get(), voice.get(), term.get()},
        [&](const StateDir& tree) { cmapTypeStatusSmFactory(cmapTypeStatus, tree); });
}

TEST_F(CmapTypeStatusSmTest, leavesNoChildBehindThatItCannotEnter) {
    start();
    const auto voice = classMap("voice");
    sm->cmapStatusSmIs(voice, root);
    sm->cmapStatusSmDelAll();
    expectLeavesNothingBehind({voice.get()}, [&](const StateDir& tree) {
        sm->cmapStatusSmIs(voice, tree);
        sm->cmapStatusSmDelAll();
    });
}

TEST_F(CmapTypeStatusSmTest, hasTheOperationsOfAMachine) {
    start();
    EXPECT_THAT(TestSupport::virtualOperations(sm.get()),
                ElementsAreArray(machineOperations("CmapTypeStatusSm")));
}

TEST_F(CmapTypeStatusSmTest, describesItself) {
    start();
    EXPECT_EQ(sm->typeData().fullName, "QosOc::CmapTypeStatusSm");
    EXPECT_THAT(attributesOf(sm->typeData()),
                ElementsAre("cmapTypeStatus 1 input watched Qos::ClassMapTypeStatus",
                            "classifierStateDir 2 input QosOc::State::ClassifiersDir",
                            "cmapStatusSm 3 child by key QosOc::CmapStatusSm"));
}

}  // namespace
}  // namespace QosOc
