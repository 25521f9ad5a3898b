#include <functional>

#include "tests/QosOpenConfig/MounterTest.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/ReentrancyTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using TestSupport::live;

/// A subscriber of the state acts on the mounter while the root machine is being made.
class MounterReentrancyTest : public MounterTest {
protected:
    MounterReentrancyTest() {
        fill();
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    }
    /// Calls `createSm`; `act` is called at the first change of the state.
    void createSmDuring(const std::function<void()>& act) {
        const Once once(root->publisher(), act);
        mounter->createSm();
    }
    /// The state that is left when a root machine has done its work and then all inputs go.
    static std::string stateAfterAllInputsWent() {
        const RootInputs inputs;
        inputs.fill();
        const StateDir tree = State::ClassifiersDir::create();
        const auto machine = inputs.rootOver(tree);
        inputs.qosStatus->pmapTypeStatusDel(Qos::MapType::mapQos);
        inputs.qosStatus->cmapTypeStatusDel(Qos::MapType::mapQos);
        inputs.aclCliConfig->aclTypeConfigDel(Acl::AclType::ipv4);
        inputs.aclCliConfig->aclTypeConfigDel(Acl::AclType::ipv6);
        inputs.configDir->classifierDel("config");
        return TestSupport::textOf(*tree);
    }
    static std::size_t machines() {
        return live<ClassifierStateSm>() + live<PmapTypeStatusSm>() + live<CmapTypeStatusSm>() +
               live<AclTypeStateSm>() + live<ClassifierConfigSm>();
    }
};

TEST_F(MounterReentrancyTest, takesTheStateBackWhenAnInputDisappears) {
    const std::function<void()> disappearances[] = {
        [this] { mounter->qosStatusIs(nullptr); },
        [this] { mounter->aclCliConfigIs(nullptr); },
        [this] { mounter->classifierConfigDirIs(nullptr); },
        [this] { mounter->classifierStateDirIs(nullptr); },
    };
    for (const auto& disappear : disappearances) {
        createSmDuring(disappear);
        EXPECT_EQ(mounter->classifierStateSm(), nullptr);
        EXPECT_EQ(machines(), 0u);
        EXPECT_EQ(state(), stateAfterAllInputsWent());
        for (const char* name : {"acl", "acl6", "cmap", "config", "pmap"})
            root->classifierDel(name);
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    }
}

TEST_F(MounterReentrancyTest, makesNoChildAnewWhileTheStateIsTakenBack) {
    const Once once(
        root->publisher(),
        [this] { qosStatus->cmapTypeStatusIs(cmapType(Qos::MapType::mapQos, "late")); },
        [this] { return root->classifier("cmap") == nullptr && held("qosStatus") == nullptr; });
    createSmDuring([this] { mounter->qosStatusIs(nullptr); });
    EXPECT_EQ(root->classifier("late"), nullptr);
    EXPECT_EQ(machines(), 0u);
}

TEST_F(MounterReentrancyTest, startsOverWithAnInputThatWasReplaced) {
    const auto other = Qos::Status::create();
    other->cmapTypeStatusIs(cmapType(Qos::MapType::mapQos, "other"));
    createSmDuring([&] { mounter->qosStatusIs(other); });
    EXPECT_FALSE(hasSubscribers(*qosStatus));
    EXPECT_TRUE(hasSubscribers(*other));
    EXPECT_EQ(live<ClassifierStateSm>(), 1u);
    EXPECT_EQ(state(),
              "acl IPV4 {10 when ipv4 46}; acl6 IPV6 {10 when ipv6 46}; config IPV4 {10 to gold}; "
              "other IPV4; pmap IPV4");
}

TEST_F(MounterReentrancyTest, startsOverWithoutAForwardingGroupConfiguration) {
    createSmDuring([this] { mounter->qosCliConfigIs(nullptr); });
    EXPECT_EQ(live<ClassifierStateSm>(), 1u);
    EXPECT_TRUE(mounter->classifierStateSm()->isMadeFrom(
        qosStatus, aclCliConfig, Orin::Ptr<const Qos::Input::Config>(), configDir, root));
}

TEST_F(MounterReentrancyTest, keepsTheMachineWhenTheInputCameBack) {
    MounterWatch changes(*mounter);
    createSmDuring([this] {
        mounter->qosStatusIs(nullptr);
        mounter->qosStatusIs(qosStatus);
    });
    EXPECT_THAT(changes.take(), ElementsAre(Change{642, qosStatus.get()}, Change{642, nullptr},
                                            Change{647, nullptr}));
    EXPECT_EQ(state(), kFilledState);
}

TEST_F(MounterReentrancyTest, makesOneMachineWhenItIsAskedForAgain) {
    Orin::Ptr<ClassifierStateSm> inner;
    Orin::Ptr<ClassifierStateSm> outer;
    {
        const Once once(root->publisher(), [&] { inner = rootIs(); });
        outer = rootIs();
    }
    EXPECT_EQ(outer, inner);
    EXPECT_EQ(live<ClassifierStateSm>(), 1u);
    EXPECT_TRUE(outer->notificationActive());
    EXPECT_EQ(state(), kFilledState);
}

TEST_F(MounterReentrancyTest, endsWithAMachineOverItsOwnInputs) {
    const RootInputs others;
    createSmDuring([&] {
        mounter->classifierStateSmIs(others.qosStatus, others.aclCliConfig, others.qosCliConfig,
                                     others.configDir, root);
    });
    EXPECT_EQ(live<ClassifierStateSm>(), 1u);
    EXPECT_FALSE(hasSubscribers(*others.qosStatus));
    EXPECT_TRUE(hasSubscribers(*qosStatus));
}

}  // namespace
}  // namespace QosOc
