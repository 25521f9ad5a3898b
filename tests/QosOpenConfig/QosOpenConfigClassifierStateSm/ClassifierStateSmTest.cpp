#include <algorithm>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/RootTest.h"

namespace QosOc {
namespace {

using Acl::AclType;
using Qos::MapType;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using TestSupport::live;

constexpr auto kOtherMapType = static_cast<MapType>(255);
constexpr auto kOtherAclType = static_cast<AclType>(255);

class ClassifierStateSmTest : public StateTest, protected RootInputs {
protected:
    void start() { sm = rootOver(root); }
    /// `LINE FUNCTION` of the lines that the root itself writes.
    Lines rootSteps(const Lines& lines) const {
        static const std::regex step(R"(^\S+ [^:]+:(\d+ \S+) (0x\S+void) .*)");
        Lines steps;
        std::smatch match;
        for (const std::string& line : lines)
            if (std::regex_match(line, match, step) && match[2] == addressOf(sm.get()) + "void")
                steps.push_back(match[1]);
        return steps;
    }
    Orin::Ptr<const Vex::TypedNode> registry() const {
        return Vex::attributeNamed(sm->typeData(), "classifiersWithPmap")
            ->read(sm.get())
            .as<Vex::NodeRef>();
    }

    Orin::Ptr<ClassifierStateSm> sm;
};

TEST_F(ClassifierStateSmTest, catchesUpWithEveryInput) {
    fill();
    start();
    EXPECT_EQ(state(), kFilledState);
    EXPECT_EQ(childCount(*sm, "pmapTypeStatusSm"), 1u);
    EXPECT_EQ(childCount(*sm, "cmapTypeStatusSm"), 1u);
    EXPECT_EQ(childCount(*sm, "aclTypeStateSm"), 2u);
    EXPECT_EQ(childCount(*sm, "classifierConfigSm"), 1u);
}

TEST_F(ClassifierStateSmTest, reconcilesPolicyMapsClassMapsListsAndConfigurationInThisOrder) {
    fill();
    const Lines lines = traced([this] { start(); });
    EXPECT_THAT(rootSteps(lines),
                ElementsAre("907 handleInitialized", "821 handlePmapTypeStatus",
                            "847 handleCmapTypeStatus", "869 handleAclTypeConfig",
                            "869 handleAclTypeConfig", "891 handleClassifierConfig"));
    EXPECT_THAT(
        heard.take(),
        ElementsAre("pmap", "pmap/state IPV4", "cmap", "cmap/state IPV4", "acl", "acl/state IPV4",
                    "acl/terms", "acl/10", "acl/10 when ipv4 46", "acl6", "acl6/state IPV6",
                    "acl6/terms", "acl6/10", "acl6/10 when ipv6 46", "config", "config/state IPV4",
                    "config/terms", "config/10", "config/10 to gold"));
}

TEST_F(ClassifierStateSmTest, letsTheConfigurationKnowWhichClassifiersPolicyMapsUse) {
    configDir->classifierIs(classifier("voice", Classifier::Type::IPV4));
    qosStatus->pmapTypeStatusIs(pmapType(MapType::mapQos, "openconfig:voice:"));
    const Lines lines = traced([this] { start(); });
    EXPECT_EQ(state(), "voice IPV4");
    EXPECT_THAT(lines, ::testing::Contains(
                           HasSubstr(" classifier : voice (IPV4) is a part of pmap(s), skipping")));
}

TEST_F(ClassifierStateSmTest, startsWithAFreshRegistry) {
    start();
    const auto first = registry();
    ASSERT_NE(first, nullptr);
    sm->handleInitialized();
    EXPECT_NE(registry(), nullptr);
    EXPECT_NE(registry(), first);
    EXPECT_EQ(first->userCount(), 1u) << "the earlier one was let go";
}

TEST_F(ClassifierStateSmTest, followsEachInputThatComesLater) {
    start();
    EXPECT_EQ(state(), "");
    fill();
    EXPECT_EQ(state(), kFilledState);
}

TEST_F(ClassifierStateSmTest, ignoresOtherMapTypes) {
    start();
    for (const auto type : {MapType::mapCopp, MapType::mapPbr, kOtherMapType}) {
        qosStatus->cmapTypeStatusIs(cmapType(type, "cmap"));
        qosStatus->pmapTypeStatusIs(pmapType(type, "openconfig:pmap:"));
    }
    EXPECT_EQ(state(), "");
    EXPECT_EQ(live<CmapTypeStatusSm>() + live<PmapTypeStatusSm>(), 0u);
}

TEST_F(ClassifierStateSmTest, ignoresOtherMapTypesAtItsStart) {
    qosStatus->cmapTypeStatusIs(cmapType(MapType::mapPbr, "cmap"));
    qosStatus->pmapTypeStatusIs(pmapType(MapType::mapCopp, "openconfig:pmap:"));
    start();
    EXPECT_EQ(state(), "");
    EXPECT_EQ(live<CmapTypeStatusSm>() + live<PmapTypeStatusSm>(), 0u);
}

TEST_F(ClassifierStateSmTest, keepsItsChildrenWhenOtherMapTypesGo) {
    fill();
    qosStatus->cmapTypeStatusIs(cmapType(MapType::mapPbr, "other"));
    qosStatus->pmapTypeStatusIs(pmapType(MapType::mapCopp, "openconfig:other:"));
    start();
    qosStatus->cmapTypeStatusDel(MapType::mapPbr);
    qosStatus->pmapTypeStatusDel(MapType::mapCopp);
    EXPECT_EQ(state(), kFilledState);
    EXPECT_EQ(live<CmapTypeStatusSm>() + live<PmapTypeStatusSm>(), 2u);
}

TEST_F(ClassifierStateSmTest, ignoresOtherTypesOfAccessLists) {
    fill();
    start();
    for (const auto type : {AclType::mac, kOtherAclType}) {
        aclCliConfig->aclTypeConfigIs(aclType(type, "openconfig:other:10"));
        aclCliConfig->aclTypeConfigDel(type);
    }
    EXPECT_EQ(state(), kFilledState);
    EXPECT_EQ(live<AclTypeStateSm>(), 2u);
}

TEST_F(ClassifierStateSmTest, dropsTheClassMapsThatLeft) {
    fill();
    start();
    heard.take();
    const Lines lines = traced([this] { qosStatus->cmapTypeStatusDel(MapType::mapQos); });
    EXPECT_THAT(heard.take(), ElementsAre("cmap gone"));
    EXPECT_EQ(live<CmapTypeStatusSm>() + live<CmapStatusSm>(), 0u);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_THAT(lines[1], HasSubstr(":460 doPrepareToDie void QosOc::CmapTypeStatusSm::"));
    EXPECT_THAT(lines[2], HasSubstr(":408 doPrepareToDie "));
}

TEST_F(ClassifierStateSmTest, dropsThePolicyMapsThatLeft) {
    fill();
    start();
    const Lines lines = traced([this] { qosStatus->pmapTypeStatusDel(MapType::mapQos); });
    EXPECT_THAT(lines.at(1), HasSubstr("void QosOc::PmapTypeStatusSm::doPrepareToDie()"));
    EXPECT_EQ(live<PmapTypeStatusSm>() + live<PmapStatusSm>(), 0u);
}

TEST_F(ClassifierStateSmTest, dropsTheAccessListsOfTheTypeThatLeft) {
    fill();
    start();
    aclCliConfig->aclTypeConfigDel(AclType::ipv6);
    EXPECT_EQ(TestSupport::textOf(*root->classifier("acl")->terms()->term("10")),
              "10 when ipv4 46");
    EXPECT_THAT(state(), ::testing::Not(HasSubstr("ipv6")));
    EXPECT_EQ(live<AclTypeStateSm>(), 1u);
    aclCliConfig->aclTypeConfigDel(AclType::ipv4);
    EXPECT_THAT(state(), ::testing::Not(HasSubstr("when ipv")));
    EXPECT_EQ(live<AclTypeStateSm>(), 0u);
}

TEST_F(ClassifierStateSmTest, dropsTheConfiguredClassifierThatLeft) {
    fill();
    start();
    heard.take();
    configDir->classifierDel("config");
    EXPECT_THAT(heard.take(), ElementsAre("config/10 to ''"));
    EXPECT_EQ(live<ClassifierConfigSm>() + live<ClassifierTermsSm>(), 0u);
}

TEST_F(ClassifierStateSmTest, doesNothingForMembersThatAreNowhere) {
    start();
    sm->handlePmapTypeStatus(MapType::mapQos);
    sm->handleCmapTypeStatus(MapType::mapQos);
    sm->handleAclTypeConfig(AclType::ipv4);
    sm->handleAclTypeConfig(AclType::ipv6);
    sm->handleClassifierConfig("voice");
    EXPECT_THAT(heard.take(), IsEmpty());
    EXPECT_EQ(live<PmapTypeStatusSm>() + live<CmapTypeStatusSm>() + live<AclTypeStateSm>() +
                  live<ClassifierConfigSm>(),
              0u);
}

TEST_F(ClassifierStateSmTest, keepsItsChildrenWhenTheirInputsArePublishedAgain) {
    fill();
    start();
    heard.take();
    sm->handleCmapTypeStatus(MapType::mapQos);
    sm->handlePmapTypeStatus(MapType::mapQos);
    sm->handleAclTypeConfig(AclType::ipv4);
    sm->handleClassifierConfig("config");
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(ClassifierStateSmTest, ignoresOtherAttributes) {
    fill();
    start();
    sm->hasNotificationActiveIs(false);
    qosStatus->cmapTypeStatusDel(MapType::mapQos);
    aclCliConfig->aclTypeConfigDel(AclType::ipv4);
    configDir->classifierDel("config");
    sm->hasNotificationActiveIs(true);
    const MapType map = MapType::mapQos;
    const AclType acl = AclType::ipv4;
    const Orin::String name = "config";
    const Lines lines = traced([&] {
        for (const Orin::AttributeId id : Ids{0, 1, 2, 3, 257, 259, 297, 300})
            qosStatus->publishChange(id, &map);
        for (const Orin::AttributeId id : Ids{0, 1, 257, 259, 298, 299}) {
            aclCliConfig->publishChange(id, &acl);
            configDir->publishChange(id, &name);
        }
    });
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(ClassifierStateSmTest, ignoresChangesWhileItIsAZombie) {
    start();
    sm->vexDoZombieReactors(true);
    fill();
    EXPECT_EQ(state(), "");
    sm->vexDoZombieReactors(false);
    sm->handleCmapTypeStatus(MapType::mapQos);
    EXPECT_EQ(state(), "cmap IPV4");
}

TEST_F(ClassifierStateSmTest, leavesTheStateWhenItIsDropped) {
    fill();
    start();
    heard.take();
    sm->hasNotificationActiveIs(false);
    sm = nullptr;
    EXPECT_EQ(state(), kFilledState);
    EXPECT_THAT(heard.take(), IsEmpty());
    EXPECT_EQ(live<CmapStatusSm>() + live<ClassifiersWithPmap>(), 0u);
}

TEST_F(ClassifierStateSmTest, writesNothingNewOverTheStateOfAnEarlierRun) {
    fill();
    start();
    sm = nullptr;
    heard.take();
    start();
    EXPECT_EQ(state(), kFilledState);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(ClassifierStateSmTest, needsNoCliConfiguration) {
    qosCliConfig = nullptr;
    fill();
    start();
    EXPECT_EQ(state(), kFilledState);
}

}  // namespace
}  // namespace QosOc
