#include "QosOpenConfig/QosOpenConfigClassifierStateSmMounter.h"
#include "tests/QosOpenConfig/MounterTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using TestSupport::live;

class ClassifierStateSmMounterTest : public MounterTest {};

TEST_F(ClassifierStateSmMounterTest, beginsWithNothing) {
    EXPECT_EQ(mounter->name(), "ClassifierStateSmMounter");
    EXPECT_EQ(mounter->userCount(), 1u);
    EXPECT_EQ(live<ClassifierStateSmMounter>(), 1u);
    for (const auto& attribute : mounter->typeData().attributes)
        EXPECT_EQ(attribute.read(mounter.get()), Vex::Value(Vex::NodeRef())) << attribute.name;
}

TEST_F(ClassifierStateSmMounterTest, publishesAnInputThatChangesWithTheOldOne) {
    const auto second = Qos::Status::create();
    MounterWatch changes(*mounter);
    mounter->qosStatusIs(qosStatus);
    EXPECT_THAT(changes.take(), ElementsAre(Change{642, nullptr}));
    mounter->qosStatusIs(second);
    EXPECT_THAT(changes.take(), ElementsAre(Change{642, qosStatus.get()}));
    mounter->qosStatusIs(nullptr);
    EXPECT_THAT(changes.take(), ElementsAre(Change{642, second.get()}));
    EXPECT_EQ(second->userCount(), 1u);
}

TEST_F(ClassifierStateSmMounterTest, releasesAnInputAfterItHasPublishedItsSuccessor) {
    mounter->qosStatusIs(Qos::Status::create());
    const Vex::TypedNode* first = held("qosStatus");
    MounterWatch changes(*mounter);
    mounter->qosStatusIs(qosStatus);
    EXPECT_THAT(changes.take(), ElementsAre(Change{642, first}));
    EXPECT_EQ(live<Qos::Status>(), 1u);
}

TEST_F(ClassifierStateSmMounterTest, publishesEachInputUnderItsId) {
    MounterWatch changes(*mounter);
    mounter->classifierStateDirIs(root);
    mounter->classifierConfigDirIs(configDir);
    mounter->qosCliConfigIs(qosCliConfig);
    mounter->aclCliConfigIs(aclCliConfig);
    EXPECT_THAT(changes.take(), ElementsAre(Change{646, nullptr}, Change{645, nullptr},
                                            Change{644, nullptr}, Change{643, nullptr}));
    mounter->classifierStateDirIs(nullptr);
    mounter->classifierConfigDirIs(nullptr);
    mounter->qosCliConfigIs(nullptr);
    mounter->aclCliConfigIs(nullptr);
    EXPECT_THAT(changes.take(),
                ElementsAre(Change{646, root.get()}, Change{645, configDir.get()},
                            Change{644, qosCliConfig.get()}, Change{643, aclCliConfig.get()}));
}

TEST_F(ClassifierStateSmMounterTest, publishesNothingForTheInputThatItHas) {
    MounterWatch changes(*mounter);
    mounter->qosStatusIs(nullptr);
    EXPECT_THAT(changes.take(), IsEmpty());
    for (int times = 0; times < 2; ++times) {
        mounter->qosStatusIs(qosStatus);
        mounter->aclCliConfigIs(aclCliConfig);
        mounter->qosCliConfigIs(qosCliConfig);
        mounter->classifierConfigDirIs(configDir);
        mounter->classifierStateDirIs(root);
    }
    EXPECT_EQ(changes.take().size(), 5u);
}

TEST_F(ClassifierStateSmMounterTest, asksForItsMountsInOrder) {
    const auto group = Orin::Ptr<Strata::MountGroup>::adopt(new Strata::MountGroup(manager));
    mounter->doPluginSpecificMounts(group);
    Lines mounts;
    for (const Strata::Mount& mount : group->mounts())
        mounts.push_back(mount.path() + " " + mount.type() + " " +
                         std::to_string(mount.flags().val()));
    const std::string read = std::to_string(static_cast<int>(Strata::MountFlag::read));
    const std::string write = std::to_string(static_cast<int>(Strata::MountFlag::write));
    EXPECT_THAT(
        mounts,
        ElementsAre("qos/status Qos::Status " + read, "acl/config/cli Acl::Input::Config " + read,
                    "qos/input/config/cli Qos::Input::Config " + read,
                    "qos/openconfig/config/classifiers QosOc::Config::ClassifiersDir " + read,
                    "qos/openconfig/state/classifiers QosOc::State::ClassifiersDir " + write));
}

TEST_F(ClassifierStateSmMounterTest, takesTheMountedEntitiesInOrder) {
    MounterWatch changes(*mounter);
    mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    EXPECT_THAT(changes.take(),
                ElementsAre(Change{642, nullptr}, Change{643, nullptr}, Change{644, nullptr},
                            Change{645, nullptr}, Change{646, nullptr}));
    EXPECT_EQ(held("qosStatus"), qosStatus.get());
    EXPECT_EQ(held("aclCliConfig"), aclCliConfig.get());
    EXPECT_EQ(held("qosCliConfig"), qosCliConfig.get());
    EXPECT_EQ(held("classifierConfigDir"), configDir.get());
    EXPECT_EQ(held("classifierStateDir"), root.get());
    EXPECT_EQ(held("classifierStateSm"), nullptr);
}

TEST_F(ClassifierStateSmMounterTest, takesNullWhereNothingIsMounted) {
    mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    MounterWatch changes(*mounter);
    manager->entityIs("acl/config/cli", noEntity());
    mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    EXPECT_THAT(changes.take(), ElementsAre(Change{643, aclCliConfig.get()}));
    EXPECT_EQ(held("aclCliConfig"), nullptr);
    mounter->doPluginSpecificMountsComplete(
        Strata::mountSuccess_, Orin::Ptr<Strata::EntityManager>::adopt(new Strata::EntityManager));
    EXPECT_EQ(changes.take().size(), 4u);
}

TEST_F(ClassifierStateSmMounterTest, takesNullWhereAnEntityOfAnotherTypeIsMounted) {
    manager->entityIs("qos/status", aclCliConfig);
    manager->entityIs("acl/config/cli", qosCliConfig);
    manager->entityIs("qos/input/config/cli", qosStatus);
    manager->entityIs("qos/openconfig/config/classifiers", root);
    manager->entityIs("qos/openconfig/state/classifiers", configDir);
    MounterWatch changes(*mounter);
    mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    EXPECT_THAT(changes.take(), IsEmpty());
}

TEST_F(ClassifierStateSmMounterTest, makesTheRootMachineAndPublishesIt) {
    fill();
    MounterWatch changes(*mounter);
    const auto made = rootIs();
    EXPECT_EQ(mounter->classifierStateSm(), made);
    EXPECT_TRUE(made->notificationActive());
    EXPECT_THAT(changes.take(), ElementsAre(Change{647, nullptr}));
    EXPECT_EQ(state(), kFilledState);
}

TEST_F(ClassifierStateSmMounterTest, keepsTheRootMachineOverTheSameInputs) {
    const auto made = rootIs();
    MounterWatch changes(*mounter);
    EXPECT_EQ(rootIs(), made);
    EXPECT_THAT(changes.take(), IsEmpty());
}

TEST_F(ClassifierStateSmMounterTest, replacesTheRootMachineWhenAnyInputIsAnother) {
    const auto is = [this](const auto& qos, const auto& acl, const auto& cli, const auto& config,
                           const auto& tree) {
        const Vex::TypedNode* before = mounter->classifierStateSm().get();
        MounterWatch changes(*mounter);
        mounter->classifierStateSmIs(qos, acl, cli, config, tree);
        EXPECT_THAT(changes.take(), ElementsAre(Change{647, before}));
        EXPECT_NE(mounter->classifierStateSm().get(), before);
        EXPECT_EQ(live<ClassifierStateSm>(), 1u);
    };
    is(qosStatus, aclCliConfig, qosCliConfig, configDir, root);
    is(Qos::Status::create(), aclCliConfig, qosCliConfig, configDir, root);
    is(qosStatus, aclCliConfig, qosCliConfig, configDir, root);
    is(qosStatus, Acl::Input::Config::create(), qosCliConfig, configDir, root);
    is(qosStatus, aclCliConfig, qosCliConfig, configDir, root);
    is(qosStatus, aclCliConfig, Qos::Input::Config::create(), configDir, root);
    is(qosStatus, aclCliConfig, qosCliConfig, configDir, root);
    is(qosStatus, aclCliConfig, qosCliConfig, Config::ClassifiersDir::create(), root);
    is(qosStatus, aclCliConfig, qosCliConfig, configDir, root);
    is(qosStatus, aclCliConfig, qosCliConfig, configDir, State::ClassifiersDir::create());
}

TEST_F(ClassifierStateSmMounterTest, releasesTheOldRootMachineOnceTheNewOneIsActive) {
    rootIs();
    const RootInputs others;
    MounterWatch changes(*mounter);
    const auto made = mounter->classifierStateSmIs(others.qosStatus, others.aclCliConfig,
                                                   others.qosCliConfig, others.configDir, root);
    EXPECT_THAT(changes.aliveRoots(), ElementsAre(2u)) << "both while the change is published";
    EXPECT_EQ(live<ClassifierStateSm>(), 1u);
    EXPECT_TRUE(made->notificationActive());
    EXPECT_TRUE(hasSubscribers(*others.qosStatus));
    EXPECT_FALSE(hasSubscribers(*qosStatus));
}

TEST_F(ClassifierStateSmMounterTest, keepsTheRootMachineWhenItsSuccessorCannotBeMade) {
    fill();
    const auto first = rootIs();
    const auto other = Qos::Status::create();
    const std::size_t failures = TestSupport::failEachAllocation(
        [&] { mounter->classifierStateSmIs(other, aclCliConfig, qosCliConfig, configDir, root); },
        [&] {
            EXPECT_EQ(mounter->classifierStateSm(), first);
            EXPECT_EQ(live<ClassifierStateSm>(), 1u);
        });
    EXPECT_GT(failures, 0u);
    EXPECT_NE(mounter->classifierStateSm(), first);
}

TEST_F(ClassifierStateSmMounterTest, givesOutTheRootMachineSilenced) {
    fill();
    const auto made = rootIs();
    MounterWatch changes(*mounter);
    const auto removed = mounter->classifierStateSmDel();
    EXPECT_EQ(removed, made);
    EXPECT_EQ(mounter->classifierStateSm(), nullptr);
    EXPECT_THAT(changes.take(), ElementsAre(Change{647, made.get()}));
    EXPECT_FALSE(removed->notificationActive());
    qosStatus->cmapTypeStatusDel(Qos::MapType::mapQos);
    configDir->classifierDel("config");
    EXPECT_EQ(state(), kFilledState) << "nothing reacts any more";
}

TEST_F(ClassifierStateSmMounterTest, hasNothingToGiveOutWithoutARootMachine) {
    MounterWatch changes(*mounter);
    EXPECT_EQ(mounter->classifierStateSmDel(), nullptr);
    EXPECT_THAT(changes.take(), IsEmpty());
}

}  // namespace
}  // namespace QosOc
