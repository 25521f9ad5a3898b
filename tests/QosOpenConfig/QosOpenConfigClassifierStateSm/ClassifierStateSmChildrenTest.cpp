#include "platform/Vex/Errors.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/RootTest.h"

namespace QosOc {
namespace {

using Acl::AclType;
using Qos::MapType;
using ::testing::HasSubstr;
using TestSupport::live;

/// The child verbs of the root, one kind of child after the other.
class ClassifierStateSmChildrenTest : public StateTest, protected RootInputs {
protected:
    template <class Act>
    static std::string nullArgumentOf(Act act) {
        try {
            act();
        } catch (const Vex::MutatorArgNullPointerException& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    const StateDir& tree = root;
    const Orin::Ptr<ClassifierStateSm> sm = rootOver(tree);
    const Orin::Ptr<ClassifiersWithPmap> registry = ClassifiersWithPmap::ClassifiersWithPmapIs();
};

TEST_F(ClassifierStateSmChildrenTest, refusesANullInputByItsName) {
    EXPECT_THAT(nullArgumentOf([this] {
                    sm->pmapTypeStatusSmIs(nullptr, qosCliConfig, configDir, registry, tree);
                }),
                HasSubstr("pmapTypeStatus"));
    EXPECT_THAT(nullArgumentOf([this] { sm->cmapTypeStatusSmIs(nullptr, tree); }),
                HasSubstr("cmapTypeStatus"));
    EXPECT_THAT(nullArgumentOf([this] { sm->aclTypeStateSmIs(nullptr, tree); }),
                HasSubstr("aclTypeConfig"));
    EXPECT_THAT(nullArgumentOf([this] { sm->classifierConfigSmIs(nullptr, registry, tree); }),
                HasSubstr("classifierConfig"));
}

TEST_F(ClassifierStateSmChildrenTest, keepsAPolicyMapTypeFromTheSameInputs) {
    const auto input = pmapType(MapType::mapQos, "openconfig:voice:");
    const auto is = [&](const auto& pmaps, const auto& cli, const auto& config, const auto& uses,
                        const auto& state) {
        return sm->pmapTypeStatusSmIs(pmaps, cli, config, uses, state);
    };
    const auto child = is(input, qosCliConfig, configDir, registry, tree);
    EXPECT_EQ(is(input, qosCliConfig, configDir, registry, tree), child);
    using Again = Vex::MutatorReinstantiatingException;
    EXPECT_THROW(is(pmapType(MapType::mapQos, "x"), qosCliConfig, configDir, registry, tree),
                 Again);
    EXPECT_THROW(is(input, Qos::Input::Config::create(), configDir, registry, tree), Again);
    EXPECT_THROW(is(input, qosCliConfig, Config::ClassifiersDir::create(), registry, tree), Again);
    EXPECT_THROW(
        is(input, qosCliConfig, configDir, ClassifiersWithPmap::ClassifiersWithPmapIs(), tree),
        Again);
    EXPECT_THROW(is(input, qosCliConfig, configDir, registry, State::ClassifiersDir::create()),
                 Again);
    EXPECT_EQ(live<PmapTypeStatusSm>(), 1u);
}

TEST_F(ClassifierStateSmChildrenTest, keepsOtherChildrenFromTheSameInputs) {
    using Again = Vex::MutatorReinstantiatingException;
    const auto other = State::ClassifiersDir::create();
    const auto cmaps = cmapType(MapType::mapQos, "cmap");
    const auto cmapChild = sm->cmapTypeStatusSmIs(cmaps, tree);
    EXPECT_EQ(sm->cmapTypeStatusSmIs(cmaps, tree), cmapChild);
    EXPECT_THROW(sm->cmapTypeStatusSmIs(cmapType(MapType::mapQos, "cmap"), tree), Again);
    EXPECT_THROW(sm->cmapTypeStatusSmIs(cmaps, other), Again);
    const auto acls = aclType(AclType::ipv4, "acl");
    const auto aclChild = sm->aclTypeStateSmIs(acls, tree);
    EXPECT_EQ(sm->aclTypeStateSmIs(acls, tree), aclChild);
    EXPECT_THROW(sm->aclTypeStateSmIs(aclType(AclType::ipv4, "acl"), tree), Again);
    EXPECT_THROW(sm->aclTypeStateSmIs(acls, other), Again);
    const auto voice = classifier("voice", Classifier::Type::IPV4);
    const auto configChild = sm->classifierConfigSmIs(voice, registry, tree);
    EXPECT_EQ(sm->classifierConfigSmIs(voice, registry, tree), configChild);
    EXPECT_THROW(
        sm->classifierConfigSmIs(classifier("voice", Classifier::Type::IPV4), registry, tree),
        Again);
    EXPECT_THROW(sm->classifierConfigSmIs(voice, nullptr, tree), Again);
    EXPECT_THROW(sm->classifierConfigSmIs(voice, registry, other), Again);
}

TEST_F(ClassifierStateSmChildrenTest, givesOutAChildThatItRemoves) {
    const auto pmap = sm->pmapTypeStatusSmIs(pmapType(MapType::mapQos, "openconfig:pmap:"),
                                             qosCliConfig, configDir, registry, tree);
    EXPECT_EQ(sm->pmapTypeStatusSmDel(MapType::mapPbr), nullptr);
    EXPECT_EQ(sm->pmapTypeStatusSmDel(MapType::mapQos), pmap);
    EXPECT_EQ(sm->pmapTypeStatusSmDel(MapType::mapQos), nullptr);
    const auto cmap = sm->cmapTypeStatusSmIs(cmapType(MapType::mapQos, "cmap"), tree);
    EXPECT_EQ(sm->cmapTypeStatusSmDel(MapType::mapCopp), nullptr);
    EXPECT_EQ(sm->cmapTypeStatusSmDel(MapType::mapQos), cmap);
    EXPECT_EQ(sm->cmapTypeStatusSmDel(MapType::mapQos), nullptr);
    const auto acl = sm->aclTypeStateSmIs(aclType(AclType::ipv6, "openconfig:acl:10"), tree);
    EXPECT_EQ(sm->aclTypeStateSmDel(AclType::ipv4), nullptr);
    EXPECT_EQ(sm->aclTypeStateSmDel(AclType::ipv6), acl);
    EXPECT_EQ(sm->aclTypeStateSmDel(AclType::ipv6), nullptr);
    const auto config =
        sm->classifierConfigSmIs(classifier("config", Classifier::Type::IPV4), registry, tree);
    EXPECT_EQ(sm->classifierConfigSmDel("other"), nullptr);
    EXPECT_EQ(sm->classifierConfigSmDel("config"), config);
    EXPECT_EQ(sm->classifierConfigSmDel("config"), nullptr);
    EXPECT_EQ(state(), "acl IPV6 {10 when ipv6 46}; cmap IPV4; config IPV4 {10 to gold}; pmap IPV4")
        << "removing takes nothing back";
}

TEST_F(ClassifierStateSmChildrenTest, removesAllChildrenOfAKindAndLeavesTheirState) {
    fill();
    const std::string before = state();
    sm->pmapTypeStatusSmDelAll();
    EXPECT_EQ(live<PmapTypeStatusSm>(), 0u);
    EXPECT_EQ(live<CmapTypeStatusSm>(), 1u);
    sm->cmapTypeStatusSmDelAll();
    EXPECT_EQ(live<CmapTypeStatusSm>(), 0u);
    EXPECT_EQ(live<AclTypeStateSm>(), 2u);
    sm->aclTypeStateSmDelAll();
    EXPECT_EQ(live<AclTypeStateSm>(), 0u);
    EXPECT_EQ(live<ClassifierConfigSm>(), 1u);
    sm->classifierConfigSmDelAll();
    EXPECT_EQ(live<ClassifierConfigSm>(), 0u);
    EXPECT_EQ(state(), before);
}

}  // namespace
}  // namespace QosOc
