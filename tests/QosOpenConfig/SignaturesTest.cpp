#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "QosOpenConfig/QosOpenConfigClassifierStateSmMounter.h"
#include "platform/Agent/MounterPlugin.h"
#include "platform/Agent/Toggles.h"
#include "platform/Plugin/Loader.h"
#include "platform/Qos/DefaultPluginLoader.h"
#include "platform/QosOc/ClassifierMetaData.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/Errors.h"
#include "platform/Vex/TraceHelper.h"
#include "tests/support/StateTree.h"

// Each name that others build against, with the arguments and results they expect: this file is
// compiled, and each is called.
namespace QosOc {
namespace {

using Orin::String;
using Context = Agent::MounterPlugin::MounterContext;
using StateRoot = Orin::Ptr<QosOc::State::ClassifiersDir>;

static_assert(std::is_base_of_v<PluginBase<Context>,
                                Agent::MounterPlugin::Plugin<QosOc::ClassifierStateSmMounter>>);
static_assert(std::is_base_of_v<Agent::MounterPlugin::MounterBase, QosOc::MounterBase>);
static_assert(std::is_base_of_v<Strata::Mounter, Agent::MounterPlugin::MounterBase>);
static_assert(std::is_base_of_v<Acl::RuleConfig, Acl::IpRuleConfig>);
static_assert(std::is_base_of_v<Acl::RuleConfig, Acl::Ip6RuleConfig>);
static_assert(std::is_base_of_v<Acl::IpFilterBase, Acl::IpFilter>);
static_assert(std::is_base_of_v<Acl::IpFilterBase, Acl::Ip6Filter>);
static_assert(std::is_same_v<decltype(Acl::IpRuleConfig::filter), Acl::IpFilter>);
static_assert(std::is_same_v<decltype(Acl::Ip6RuleConfig::filter), Acl::Ip6Filter>);
static_assert(static_cast<int>(Strata::mountSuccess_) == 4);

/// Counts its initialisations.
class CountedPlugin : public PluginBase<Context> {
public:
    void init(Context*) override { ++count; }
    int count = 0;
};

TEST(SignaturesTest, holdForTheLoader) {
    CountedPlugin plugin;
    Plugin::Loader<Context> loader;
    const PluginBase<Context>::PluginBaseInitCaller initCaller(plugin);
    const Plugin::Loader<Context>::LoaderInitCallerWithContext withContext(initCaller);
    loader.initCallers().push_front(&withContext);
    Plugin::Impl::LoaderImpl::registerPlugin("Counted", loader.registry(), "", "", &withContext);
    loader.init(nullptr);
    EXPECT_EQ(plugin.count, 1);
    EXPECT_NE(&Qos::defaultPluginLoader(), &loader);
}

TEST(SignaturesTest, holdForToggles) {
    bool (*const get)(std::string_view, std::string_view, bool) = &getToggleState;
    EXPECT_TRUE(get("OCQosClassifierStatePath", "QosOpenConfig.json", true));
    EXPECT_FALSE(getToggleState("OCQosClassifierStatePath", "QosOpenConfig.json", false));
}

TEST(SignaturesTest, holdForMounts) {
    const auto manager = Orin::Ptr<Strata::EntityManager>::adopt(new Strata::EntityManager);
    manager->entityIs("qos/status", Qos::Status::create());
    const auto group = Orin::Ptr<Strata::MountGroup>::adopt(new Strata::MountGroup(manager));
    Strata::Mount mount("qos/status", "Qos::Status");
    mount.flags().valIs(0);
    mount.handleFlags("r");
    group->doMount(mount);
    EXPECT_EQ(group->status(), Strata::mountSuccess_);
    EXPECT_NE(manager->getEntity("qos/status"), nullptr);
}

TEST(SignaturesTest, holdForEveryNode) {
    const Orin::Ptr<Orin::Node> node = Qos::Status::create();
    EXPECT_EQ(&node->typeData(), &Qos::Status::kTypeRecord);
    EXPECT_EQ(Vex::modules()[node->fwkType().module]->types[node->fwkType().type],
              &Qos::Status::kTypeRecord);
}

TEST(SignaturesTest, holdForErrors) {
    EXPECT_THROW(Vex::throwMutatorArgNullPointerException("cmapStatus"), std::exception);
    EXPECT_THROW(Vex::Impl::throwMutatorReinstantiating("cmapStatus"), std::exception);
}

TEST(SignaturesTest, holdForTraces) {
    constinit static Vex::TraceHandle handle("SignaturesTest", false);
    EXPECT_FALSE(handle.isEnabled(8));
    Vex::TraceHelper(handle, 8, "source", 1, "function") << "text" << String("value") << true << 7U;
}

TEST(SignaturesTest, holdForNames) {
    const ClassifierKey& (*const key)(const String&) = &QosOc::classifierKeyFromConfigObjName;
    String (*const className)(const String&) = &QosOc::classifierNameFromClassName;
    const PmapClassifiers& (*const pmap)(const String&) = &QosOc::classifiersFromPmapName;
    const String name("openconfig:voice:10");
    EXPECT_EQ(key(name).classifierName, "voice");
    EXPECT_EQ(key(name).termId, "10");
    EXPECT_EQ(className("voice"), "voice");
    EXPECT_EQ(pmap(name).ipv4ClassifierName, "voice");
    EXPECT_EQ(pmap(name).ipv6ClassifierName, "10");
}

TEST(SignaturesTest, letNoResultOutliveATemporaryName) {
    const ClassifierKey& key = classifierKeyFromConfigObjName(String("openconfig:voice:10"));
    EXPECT_EQ(key, (ClassifierKey{"voice", "10"}));
    const PmapClassifiers& pmap = classifiersFromPmapName("openconfig:voice:video");
    EXPECT_EQ(pmap, (PmapClassifiers{"voice", "video"}));
}

TEST(SignaturesTest, holdForTypes) {
    Classifier::Type (*const ofOption)(Qos::ClassMapMatchOption) noexcept =
        &QosOc::classifierTypeFromMatchOption;
    Classifier::Type (*const ofAcl)(Acl::AclType) noexcept = &QosOc::classifierTypeFromAclType;
    EXPECT_EQ(ofOption(Qos::ClassMapMatchOption::matchIpv6AccessGroup), Classifier::Type::IPV6);
    EXPECT_EQ(ofAcl(Acl::AclType::ipv4), Classifier::Type::IPV4);
}

TEST(SignaturesTest, holdForTargetGroups) {
    using Map = Qos::ForwardingGroupNameToTcMap;
    String (*const group)(unsigned int, Orin::Ptr<const Map>) = &QosOc::targetGroupFromTc;
    const auto map = Map::create();
    map->tcIs("gold", 5);
    EXPECT_EQ(group(5, map), "gold");
    EXPECT_EQ(QosOc::targetGroupFromTc(5, map), "gold");
    EXPECT_EQ(QosOc::targetGroupFromTc(5, Orin::Ptr<const Map>(map)), "gold");
    EXPECT_EQ(QosOc::targetGroupFromTc(5, nullptr), "");
}

TEST(SignaturesTest, holdForRecords) {
    const QosOc::ClassifierMetaData::Ptr metaData =
        QosOc::ClassifierMetaData::Ptr::adopt(new QosOc::ClassifierMetaData());
    QosOc::ClassifierInfo& info = metaData->classifierInfoIs(String("voice"));
    const QosOc::TermActionInfo action(String("10"), String("voice"), String("gold"));
    info.termActionInfoIs(action);
    EXPECT_TRUE(QosOc::TermActionInfo::isEq(&action, info.termActionInfo("10")));
    const QosOc::TermActionInfo none;
    EXPECT_FALSE(QosOc::TermActionInfo::isEq(&action, &none));
    const Orin::Ptr<const QosOc::AclNameAndType> list =
        Orin::Ptr<const QosOc::AclNameAndType>::adopt(
            new QosOc::AclNameAndType(String("list"), Acl::AclType::ipv6));
    EXPECT_EQ(list->aclName(), "list");
}

TEST(SignaturesTest, holdForTheStateWriter) {
    using Type = QosOc::Classifier::Type;
    void (*const addOne)(const StateRoot&, const String&, Type) = &QosOc::addClassifier;
    void (*const deleteOne)(const StateRoot&, const String&) = &QosOc::deleteClassifier;
    void (*const addTerm)(const StateRoot&, const String&, Type, const String&) =
        &QosOc::addClassifierTerm;
    void (*const deleteTerm)(const StateRoot&, const String&, const String&) =
        &QosOc::deleteClassifierTerm;
    void (*const addCondition)(const StateRoot&, const String&, Type, const String&,
                               Orin::Vector<unsigned char>&) = &QosOc::addClassifierTermCondition;
    void (*const deleteCondition)(const StateRoot&, const String&, const String&, bool) =
        &QosOc::deleteClassifierTermCondition;
    void (*const addAction)(const StateRoot&, const String&, Type, const String&, const String&) =
        &QosOc::addClassifierTermAction;
    void (*const deleteAction)(const StateRoot&, const String&, const String&) =
        &QosOc::deleteClassifierTermAction;

    const StateRoot root = State::ClassifiersDir::create();
    Orin::Vector<unsigned char> values{46};
    addOne(root, "video", Type::IPV6);
    addTerm(root, "voice", Type::IPV4, "10");
    addCondition(root, "voice", Type::IPV4, "20", values);
    addAction(root, "voice", Type::IPV4, "30", "gold");
    EXPECT_EQ(TestSupport::textOf(*root),
              "video IPV6; voice IPV4 {10, 20 when ipv4 46, 30 to gold}");
    deleteOne(root, "video");
    deleteTerm(root, "voice", "10");
    deleteCondition(root, "voice", "20", true);
    deleteAction(root, "voice", "30");
    EXPECT_EQ(TestSupport::textOf(*root), "voice IPV4 {20, 30 to ''}");
}

TEST(SignaturesTest, holdForFactories) {
    using Orin::Ptr;
    const Ptr<Qos::Input::Config> cli = Qos::Input::Config::create();
    const Ptr<Config::ClassifiersDir> configured = Config::ClassifiersDir::create();
    const StateRoot root = State::ClassifiersDir::create();
    const Ptr<ClassifiersWithPmap> registry = classifiersWithPmapFactory();
    const auto nameAndType = AclNameAndType::create(String("list"), Acl::AclType::ipv4);
    EXPECT_TRUE(classifierStateSmFactory(Qos::Status::create(), Acl::Input::Config::create(), cli,
                                         configured, root));
    EXPECT_TRUE(pmapTypeStatusSmFactory(Qos::PolicyMapTypeStatus::create(Qos::MapType::mapQos), cli,
                                        configured, registry, root));
    EXPECT_TRUE(
        pmapStatusSmFactory(Qos::PolicyMapStatus::create(String("pmap")), cli, configured, root));
    EXPECT_TRUE(
        cmapTypeStatusSmFactory(Qos::ClassMapTypeStatus::create(Qos::MapType::mapQos), root));
    EXPECT_TRUE(cmapStatusSmFactory(Qos::ClassMapStatus::create(String("cmap")), root));
    EXPECT_TRUE(aclTypeStateSmFactory(Acl::Input::AclTypeConfig::create(Acl::AclType::ipv4), root));
    EXPECT_TRUE(
        aclStateSmFactory(Acl::AclConfig::create(String("list"), Acl::AclType::ipv4), root));
    EXPECT_TRUE(aclSubStateSmFactory(Acl::AclSubConfig::create(), nameAndType, root));
    EXPECT_TRUE(
        classifierConfigSmFactory(Config::Classifier::create(String("voice")), registry, root));
    EXPECT_TRUE(classifierTermsSmFactory(Config::Terms::create(), String("voice"),
                                         Classifier::Type::IPV4, registry, root));
}

}  // namespace
}  // namespace QosOc
