#include "platform/Vex/Errors.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/RootTest.h"

namespace QosOc {
namespace {

using Acl::AclType;
using Qos::MapType;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using TestSupport::live;

const std::string kClass = "void QosOc::ClassifierStateSm::";

class ClassifierStateSmLifeTest : public StateTest, protected RootInputs {
protected:
    void start() { sm = rootOver(root); }
    std::string line(const char* function, unsigned number, const std::string& body) const {
        return lineOf(sm.get(), function, number, kClass + body);
    }
    /// Every entity of the inputs that a machine below the root watches, and the root's own.
    std::vector<Orin::Ptr<const Vex::TypedNode>> watched() const {
        std::vector<Orin::Ptr<const Vex::TypedNode>> all{qosStatus, aclCliConfig, configDir};
        for (const auto& member : qosStatus->cmapTypeStatus()) {
            all.emplace_back(member.value);
            for (const auto& cmap : member.value->cmapStatus())
                all.emplace_back(cmap.value);
        }
        for (const auto& member : qosStatus->pmapTypeStatus()) {
            all.emplace_back(member.value);
            for (const auto pmap : member.value->pmapStatus())
                all.emplace_back(pmap.value);
        }
        for (const auto& member : aclCliConfig->aclTypeConfig()) {
            all.emplace_back(member.value);
            for (const auto list : member.value->aclConfig()) {
                all.emplace_back(list.value);
                all.emplace_back(list.value->aclSubConfig());
            }
        }
        for (const auto& member : configDir->classifier()) {
            all.emplace_back(member.value);
            all.emplace_back(member.value->terms());
        }
        return all;
    }
    void expectSubscribers(bool expected) const {
        for (const auto& entity : watched())
            EXPECT_EQ(hasSubscribers(*entity), expected) << entity->typeData().fullName;
    }

    Orin::Ptr<ClassifierStateSm> sm;
};

TEST_F(ClassifierStateSmLifeTest, silencesItsWholeTree) {
    fill();
    start();
    expectSubscribers(true);
    sm->hasNotificationActiveIs(false);
    expectSubscribers(false);
    EXPECT_FALSE(hasSubscribers(*qosCliConfig));
    sm->hasNotificationActiveIs(true);
    expectSubscribers(true);
}

TEST_F(ClassifierStateSmLifeTest, subscribesEachMachineOnceHoweverOftenItIsTurnedOn) {
    fill();
    start();
    for (const bool active : {true, false, false, true, true})
        sm->hasNotificationActiveIs(active);
    const auto cmap = *qosStatus->cmapTypeStatus().find(MapType::mapQos);
    EXPECT_THAT(traced([&] { cmap->cmapStatusDel("cmap"); }),
                ElementsAre(HasSubstr(":434 "), HasSubstr(":408 "), HasSubstr("deleteClassifier")));
    EXPECT_THAT(traced([&] { qosStatus->cmapTypeStatusDel(MapType::mapQos); }),
                ElementsAre(HasSubstr(":847 "), HasSubstr(":460 ")));
}

TEST_F(ClassifierStateSmLifeTest, releasesEverythingWhenItIsDropped) {
    fill();
    start();
    sm = nullptr;
    expectSubscribers(false);
    for (const auto& input :
         {Orin::Ptr<const Vex::TypedNode>(qosStatus), Orin::Ptr<const Vex::TypedNode>(aclCliConfig),
          Orin::Ptr<const Vex::TypedNode>(qosCliConfig)})
        EXPECT_EQ(input->userCount(), 2u) << "the fixture's and the loop's";
}

TEST_F(ClassifierStateSmLifeTest, tracesItsStart) {
    const Lines lines = traced([this] { start(); });
    EXPECT_THAT(lines, ElementsAre(line("handleInitialized", 907, "handleInitialized()")));
}

TEST_F(ClassifierStateSmLifeTest, tracesTheMapTypeOfPolicyMaps) {
    start();
    const Lines lines = traced([this] {
        sm->handlePmapTypeStatus(MapType::mapQos);
        sm->handlePmapTypeStatus(MapType::mapPbr);
        sm->handlePmapTypeStatus(static_cast<MapType>(200));
    });
    const auto other = [this](unsigned number, const char* rest) {
        return line("handlePmapTypeStatus", number,
                    std::string("handlePmapTypeStatus(Qos::MapType), pmapType = ") + rest);
    };
    EXPECT_THAT(lines, ElementsAre(other(821, "mapQos"), other(821, "mapPbr"),
                                   other(824, "mapPbr is not mapQos, skipping"), other(821, "200"),
                                   other(824, "200 is not mapQos, skipping")));
}

TEST_F(ClassifierStateSmLifeTest, tracesTheMapTypeOfClassMaps) {
    start();
    const Lines lines = traced([this] {
        sm->handleCmapTypeStatus(MapType::mapQos);
        sm->handleCmapTypeStatus(MapType::mapCopp);
    });
    const auto other = [this](unsigned number, const char* rest) {
        return line("handleCmapTypeStatus", number,
                    std::string("handleCmapTypeStatus(Qos::MapType), cmapType = ") + rest);
    };
    EXPECT_THAT(lines, ElementsAre(other(847, "mapQos"), other(847, "mapCopp"),
                                   other(850, "mapCopp is not mapQos, skipping")));
}

TEST_F(ClassifierStateSmLifeTest, tracesTypesOfAccessListsWithoutTheirName) {
    start();
    const Lines lines = traced([this] {
        sm->handleAclTypeConfig(AclType::ipv6);
        sm->handleAclTypeConfig(AclType::mac);
    });
    const std::string signature = "handleAclTypeConfig(Acl::AclType)";
    EXPECT_THAT(lines, ElementsAre(line("handleAclTypeConfig", 869, signature),
                                   line("handleAclTypeConfig", 869, signature),
                                   line("handleAclTypeConfig", 872,
                                        signature + ", ACL should be of the type IPV4 or IPV6")));
}

TEST_F(ClassifierStateSmLifeTest, tracesTheNameOfAConfiguredClassifier) {
    start();
    const Lines lines = traced([this] { sm->handleClassifierConfig("vo\nice"); });
    EXPECT_THAT(lines, ElementsAre(line("handleClassifierConfig", 891,
                                        "handleClassifierConfig(const String&), classifierName = "
                                        "vo\\nice")));
}

using ClassifierStateSmDeathTest = ClassifierStateSmLifeTest;

TEST_F(ClassifierStateSmDeathTest, stopsTheProcessWithoutAWatchedInput) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string where =
        "QosOpenConfig/QosOpenConfigClassifierStateSm:907: void "
        "QosOc::ClassifierStateSm::handleInitialized\\(\\): Assertion `";
    const auto make = [this](const auto& qos, const auto& acl, const auto& config) {
        ClassifierStateSm::ClassifierStateSmIs(qos, acl, qosCliConfig, config, root);
    };
    EXPECT_DEATH(make(nullptr, aclCliConfig, configDir), where + "qosStatus' failed");
    EXPECT_DEATH(make(qosStatus, nullptr, configDir), where + "aclCliConfig' failed");
    EXPECT_DEATH(make(qosStatus, aclCliConfig, nullptr), where + "classifierConfigDir' failed");
}

TEST_F(ClassifierStateSmDeathTest, stopsTheProcessWhenAnInputIsSwappedUnderItsKey) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    fill();
    start();
    EXPECT_DEATH(qosStatus->cmapTypeStatusIs(cmapType(MapType::mapQos, "cmap")),
                 "already instantiated from other inputs: cmapTypeStatus");
}

TEST_F(ClassifierStateSmLifeTest, leavesNothingBehindWhenItCannotBeMade) {
    fill();
    const auto all = watched();
    std::vector<const Vex::TypedNode*> inputs{qosCliConfig.get()};
    for (const auto& entity : all)
        inputs.push_back(entity.get());
    expectLeavesNothingBehind(inputs, [this](const StateDir& tree) {
        classifierStateSmFactory(qosStatus, aclCliConfig, qosCliConfig, configDir, tree);
    });
}

TEST_F(ClassifierStateSmLifeTest, hasTheOperationsOfAMachine) {
    start();
    EXPECT_THAT(TestSupport::virtualOperations(sm.get()),
                ElementsAreArray(machineOperations("ClassifierStateSm")));
}

TEST_F(ClassifierStateSmLifeTest, describesItself) {
    EXPECT_EQ(ClassifierStateSm::kTypeRecord.fullName, "QosOc::ClassifierStateSm");
    EXPECT_THAT(attributesOf(ClassifierStateSm::kTypeRecord),
                ElementsAre("qosStatus 1 input watched Qos::Status",
                            "aclCliConfig 2 input watched Acl::Input::Config",
                            "qosCliConfig 3 input Qos::Input::Config",
                            "classifierConfigDir 4 input watched QosOc::Config::ClassifiersDir",
                            "classifierStateDir 5 input QosOc::State::ClassifiersDir",
                            "classifiersWithPmap 6 plain QosOc::ClassifiersWithPmap",
                            "pmapTypeStatusSm 7 child by key QosOc::PmapTypeStatusSm",
                            "cmapTypeStatusSm 8 child by key QosOc::CmapTypeStatusSm",
                            "aclTypeStateSm 9 child by key QosOc::AclTypeStateSm",
                            "classifierConfigSm 10 child by key QosOc::ClassifierConfigSm"));
}

}  // namespace
}  // namespace QosOc
