#include <cstdlib>

#include "platform/Agent/Toggles.h"
#include "tests/QosOpenConfig/MounterTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::IsEmpty;
using TestSupport::live;

class MounterLifeTest : public MounterTest {
protected:
    using Plugin = Agent::MounterPlugin::Plugin<ClassifierStateSmMounter>;
    using Context = Agent::MounterPlugin::MounterContext;

    const Orin::Ptr<Context> context = Orin::Ptr<Context>::adopt(new Context(manager));
};

TEST_F(MounterLifeTest, leavesTheStateAndReactsNoMoreWhenItIsDestroyed) {
    fill();
    rootIs();
    heard.take();
    mounter = nullptr;
    EXPECT_EQ(live<ClassifierStateSm>() + live<CmapStatusSm>(), 0u);
    qosStatus->cmapTypeStatusDel(Qos::MapType::mapQos);
    aclCliConfig->aclTypeConfigDel(Acl::AclType::ipv4);
    configDir->classifierDel("config");
    EXPECT_EQ(state(), kFilledState);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(MounterLifeTest, releasesItsInputsWhenItIsDestroyed) {
    mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    mounter = nullptr;
    EXPECT_EQ(qosStatus->userCount(), 2u) << "the fixture's and the manager's";
    EXPECT_EQ(root->userCount(), 3u) << "the recorder's too";
}

TEST_F(MounterLifeTest, isDestroyedWithoutARootMachine) {
    MounterWatch changes(*mounter);
    mounter = nullptr;
    EXPECT_THAT(changes.take(), IsEmpty());
    EXPECT_EQ(live<ClassifierStateSmMounter>(), 0u);
}

TEST_F(MounterLifeTest, publishesThatItsRootMachineGoesWhileItIsDestroyed) {
    const Vex::TypedNode* made = rootIs().get();
    MounterWatch changes(*mounter);
    mounter = nullptr;
    EXPECT_THAT(changes.take(), ElementsAre(Change{647, made}));
    EXPECT_EQ(live<ClassifierStateSmMounter>(), 0u);
}

TEST_F(MounterLifeTest, startsOverOnTheStateOfItsPredecessor) {
    fill();
    rootIs();
    mounter = ClassifierStateSmMounter::create();
    heard.take();
    rootIs();
    EXPECT_EQ(state(), kFilledState);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(MounterLifeTest, isMadeAndDrivenByThePlugin) {
    mounter = nullptr;
    fill();
    Plugin().init(context.get());
    ASSERT_EQ(context->mounters().size(), 1u);
    EXPECT_EQ(live<ClassifierStateSmMounter>(), 1u);
    EXPECT_EQ(&context->mounters()[0]->typeData(), &ClassifierStateSmMounter::kTypeRecord);
    EXPECT_EQ(context->mounters()[0]->mountStatus(), Strata::mountSuccess_);
    EXPECT_EQ(state(), kFilledState);
}

TEST_F(MounterLifeTest, leavesNothingBehindWhenItCannotBeDriven) {
    mounter = nullptr;
    fill();
    const char* path = "qos/openconfig/state/classifiers";
    StateDir tree = State::ClassifiersDir::create();
    manager->entityIs(path, tree, Strata::Access::readAndWrite);
    const auto before = TestSupport::liveCounts();
    const std::size_t failures = TestSupport::failEachAllocation(
        [this] { Plugin().init(context.get()); },
        [&] {
            context->mounterDelAll();
            tree = State::ClassifiersDir::create();
            manager->entityIs(path, tree, Strata::Access::readAndWrite);
            EXPECT_EQ(TestSupport::liveCounts(), before);
        });
    EXPECT_GT(failures, 0u);
    EXPECT_EQ(TestSupport::textOf(*tree), kFilledState);
}

TEST_F(MounterLifeTest, hasItsOperationsInOrder) {
    const std::string own = "QosOc::ClassifierStateSmMounter::";
    const std::string agent = "Agent::MounterPlugin::MounterBase::";
    EXPECT_THAT(TestSupport::virtualOperations(mounter.get()),
                ElementsAre("~", "delete ~", "Orin::Node::lastUserGone",
                            "Vex::PublishingNode::publisher", own + "typeData",
                            own + "handleParent", "Strata::Mounter::doStrataMountsComplete",
                            "QosOc::MounterBase::doMountsComplete",
                            "Strata::Mounter::handleMountStatus", agent + "createPluginStatePhase1",
                            agent + "createPluginStatePhase2", agent + "startPluginRunnabilitySm",
                            "QosOc::MounterBase::doMounts", own + "doPluginSpecificMounts",
                            own + "doPluginSpecificMountsComplete", own + "createSm"));
}

TEST_F(MounterLifeTest, isMadeByAPluginOfThreeOperations) {
    const Plugin plugin;
    EXPECT_THAT(TestSupport::virtualOperations(&plugin),
                ElementsAre("~", "delete ~",
                            "Agent::MounterPlugin::Plugin<QosOc::ClassifierStateSmMounter>::init"));
}

TEST_F(MounterLifeTest, isDrivenThroughTheSlotsOfItsBases) {
    using TestSupport::slotOf;
    EXPECT_EQ(slotOf(&QosOc::MounterBase::createSm), 15u);
    EXPECT_EQ(slotOf(&QosOc::MounterBase::doPluginSpecificMountsComplete), 14u);
    EXPECT_EQ(slotOf(&QosOc::MounterBase::doPluginSpecificMounts), 13u);
    EXPECT_EQ(slotOf(&Agent::MounterPlugin::MounterBase::doMounts), 12u);
    EXPECT_EQ(slotOf(&Strata::Mounter::handleParent), 5u);
    EXPECT_EQ(slotOf(&Orin::Node::lastUserGone), 2u);
    EXPECT_EQ(slotOf(&PluginBase<Context>::init), 2u);
}

TEST_F(MounterLifeTest, describesItself) {
    EXPECT_EQ(mounter->typeData().fullName, "QosOc::ClassifierStateSmMounter");
    EXPECT_THAT(
        attributesOf(mounter->typeData()),
        ElementsAre("qosStatus 642 plain Qos::Status", "aclCliConfig 643 plain Acl::Input::Config",
                    "qosCliConfig 644 plain Qos::Input::Config",
                    "classifierConfigDir 645 plain QosOc::Config::ClassifiersDir",
                    "classifierStateDir 646 plain QosOc::State::ClassifiersDir",
                    "classifierStateSm 647 child QosOc::ClassifierStateSm"));
}

TEST_F(MounterLifeTest, tracesItsMounts) {
    const auto group = Orin::Ptr<Strata::MountGroup>::adopt(new Strata::MountGroup(manager));
    const Lines lines = traced([&] {
        mounter->doPluginSpecificMounts(group);
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
        mounter->handleParent();
    });
    EXPECT_THAT(withoutNumbers(lines),
                ElementsAre(mounterLine("doPluginSpecificMounts", "(const Ptr&)"),
                            mounterLine("doPluginSpecificMountsComplete",
                                        "(Strata::MountStatus, const Ptr&)")));
}

/// What happens once in the life of a process: each test in a process of its own.
class MounterProcessTest : public MounterTest {
protected:
    MounterProcessTest() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        Agent::toggleReaderIs(
            [this](std::string_view toggle, std::string_view file, bool fallback) {
                reads.push_back(std::string(toggle) + " in " + std::string(file) +
                                (fallback ? " or true" : " or false"));
                return isOn;
            });
    }
    ~MounterProcessTest() override { Agent::toggleReaderIs(nullptr); }
    /// Ends the process well if all checks of the test have held.
    [[noreturn]] static void end() { std::_Exit(HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS); }
    Lines createSm() {
        return withoutNumbers(traced([this] { mounter->createSm(); }));
    }

    bool isOn = true;
    Lines reads;
};

TEST_F(MounterProcessTest, makesTheRootMachineOverItsInputsWithTheToggleOn) {
    const auto inChild = [this] {
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
        const Lines lines = createSm();
        EXPECT_THAT(reads, ElementsAre("OCQosClassifierStatePath in QosOpenConfig.json or true"));
        EXPECT_EQ(mounter->classifierStateSm(), rootIs()) << "the inputs are those, in order";
        ASSERT_EQ(lines.size(), 3u);
        EXPECT_EQ(lines[0], mounterLine("createSm", "()"));
        EXPECT_EQ(lines[1], mounterLine("createSm", "(): Instantiating QosOc::ClassifierStateSm"));
        EXPECT_THAT(lines[2], ::testing::HasSubstr(" handleInitialized "));
    };
    EXPECT_EXIT((inChild(), end()), ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(MounterProcessTest, makesNothingWithTheToggleOff) {
    const auto inChild = [this] {
        isOn = false;
        fill();
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
        EXPECT_THAT(createSm(), ElementsAre(mounterLine("createSm", "()"),
                                            mounterLine("createSm",
                                                        "(), toggle: OCQosClassifierStatePath is "
                                                        "disabled, returning")));
        EXPECT_EQ(mounter->classifierStateSm(), nullptr);
        EXPECT_EQ(held("qosStatus"), qosStatus.get());
        EXPECT_EQ(state(), "");
    };
    EXPECT_EXIT((inChild(), end()), ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(MounterProcessTest, readsTheToggleOnceEvenForAMounterAfterIt) {
    const auto inChild = [this] {
        isOn = false;
        mounter->createSm();
        isOn = true;
        mounter->createSm();
        EXPECT_EQ(mounter->classifierStateSm(), nullptr);
        mounter = ClassifierStateSmMounter::create();
        mounter->createSm();
        EXPECT_EQ(mounter->classifierStateSm(), nullptr);
        EXPECT_EQ(reads.size(), 1u);
    };
    EXPECT_EXIT((inChild(), end()), ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(MounterProcessTest, staysOnWhenTheToggleIsTurnedOffLater) {
    const auto inChild = [this] {
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
        mounter->createSm();
        isOn = false;
        mounter = ClassifierStateSmMounter::create();
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
        mounter->createSm();
        EXPECT_NE(mounter->classifierStateSm(), nullptr);
        EXPECT_EQ(reads.size(), 1u);
    };
    EXPECT_EXIT((inChild(), end()), ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(MounterProcessTest, isStoppedByAMissingMountGroup) {
    EXPECT_DEATH(mounter->doPluginSpecificMounts(nullptr),
                 "QosOpenConfig/QosOpenConfigClassifierStateSmMounter:[0-9]+: virtual void "
                 "QosOc::ClassifierStateSmMounter::doPluginSpecificMounts\\(const Ptr&\\): "
                 "Assertion `mg' failed");
}

TEST_F(MounterProcessTest, isStoppedByMountsThatDidNotSucceed) {
    for (const auto status :
         {Strata::mountUnknown_, Strata::mountRequested_, Strata::mountInProgress_,
          Strata::mountFailed_, static_cast<Strata::MountStatus>(5)})
        EXPECT_DEATH(mounter->doPluginSpecificMountsComplete(status, manager),
                     "doPluginSpecificMountsComplete\\(Strata::MountStatus, const Ptr&\\): "
                     "Assertion `mountStatus == Strata::mountSuccess_' failed");
}

TEST_F(MounterProcessTest, isStoppedByAMissingWatchedInput) {
    const auto withoutPath = [this](const char* path) {
        manager->entityIs(path, noEntity());
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
        mounter->createSm();
    };
    EXPECT_DEATH(withoutPath("qos/status"), "Assertion `qosStatus' failed");
    EXPECT_DEATH(withoutPath("acl/config/cli"), "Assertion `aclCliConfig' failed");
    EXPECT_DEATH(withoutPath("qos/openconfig/config/classifiers"),
                 "Assertion `classifierConfigDir' failed");
}

TEST_F(MounterProcessTest, isStoppedByAMissingStateTree) {
    manager->entityIs("qos/openconfig/state/classifiers", noEntity());
    mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    EXPECT_DEATH(mounter->createSm(),
                 "QosOpenConfig/QosOpenConfigClassifierStateSm:907: void "
                 "QosOc::ClassifierStateSm::handleInitialized\\(\\): Assertion "
                 "`classifierStateDir' failed");
}

}  // namespace
}  // namespace QosOc
