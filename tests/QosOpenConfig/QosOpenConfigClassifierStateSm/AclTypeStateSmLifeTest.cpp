#include "platform/Vex/Errors.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/AclMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AclTypeStateSmLifeTest : public AclTypeMachineTest {};

TEST_F(AclTypeStateSmLifeTest, leavesTheStateWhenItIsDropped) {
    add("openconfig:v4:10", rulesFor({46}));
    start();
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    EXPECT_EQ(live<AclTypeStateSm>() + live<AclStateSm>() + live<AclSubStateSm>(), 0u);
    EXPECT_FALSE(lists->publisher()->hasSubscribers());
}

TEST_F(AclTypeStateSmLifeTest, refusesANullListAndOneMadeFromOtherInputs) {
    const auto sm = start();
    const auto list = add("openconfig:v4:10");
    EXPECT_EQ(sm->aclStateSmIs(list, state).get(), child(*sm, "openconfig:v4:10"));
    try {
        sm->aclStateSmIs(nullptr, state);
        FAIL() << "nothing thrown";
    } catch (const Vex::MutatorArgNullPointerException& error) {
        EXPECT_THAT(error.what(), ::testing::HasSubstr("aclConfig"));
    }
    using Refused = Vex::MutatorReinstantiatingException;
    EXPECT_THROW(sm->aclStateSmIs(listOf("openconfig:v4:10", nullptr), state), Refused);
    EXPECT_THROW(sm->aclStateSmIs(list, State::ClassifiersDir::create()), Refused);
}

TEST_F(AclTypeStateSmLifeTest, removesMachinesByNameAndAllOfThem) {
    add("openconfig:a:1");
    add("openconfig:b:1");
    const auto sm = start();
    const auto* held = child(*sm, "openconfig:a:1");
    EXPECT_EQ(sm->aclStateSmDel("openconfig:a:1").get(), held);
    EXPECT_EQ(sm->aclStateSmDel("openconfig:a:1"), nullptr);
    sm->aclStateSmDelAll();
    EXPECT_EQ(live<AclStateSm>(), 0u);
}

TEST_F(AclTypeStateSmLifeTest, ignoresOtherAttributesAndEverythingWithTheZombieFlag) {
    const auto sm = start();
    const TestSupport::TraceCapture capture;
    const Orin::String name("openconfig:v4:10");
    lists->publishChange(258, &name);
    sm->vexDoZombieReactors(true);
    add(name);
    EXPECT_THAT(capture.rawLines(), IsEmpty());
    sm->vexDoZombieReactors(false);
    touch(name);
    EXPECT_EQ(written(), "v4 IPV4 {10}");
}

TEST_F(AclTypeStateSmLifeTest, fallsSilentWithItsMachinesAndHearsEachChangeOnceAgain) {
    const auto rules = rulesFor({46});
    const auto list = add("openconfig:v4:10", rules);
    const auto sm = start();
    sm->hasNotificationActiveIs(false);
    EXPECT_FALSE(lists->publisher()->hasSubscribers());
    EXPECT_FALSE(list->publisher()->hasSubscribers());
    EXPECT_FALSE(rules->publisher()->hasSubscribers());
    addRule(rules, 20, Acl::IpFilter{8, true});
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 46}");
    sm->hasNotificationActiveIs(true);
    const TestSupport::TraceCapture capture;
    addRule(rules, 30, Acl::IpFilter{9, true});
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 [46, 8, 9]}");
    EXPECT_EQ(linesOf(capture, {}, "AclSubStateSm").size(), 1u);
}

TEST_F(AclTypeStateSmLifeTest, leavesNothingBehindWhenAnAllocationFails) {
    const auto rules = rulesFor({46, 8});
    const auto list = add("openconfig:v4:10", rules);
    add("openconfig:v4:20", rules);
    const auto isClean = [&] {
        EXPECT_EQ(live<AclTypeStateSm>() + live<AclStateSm>() + live<AclSubStateSm>() +
                      live<AclNameAndType>(),
                  0u);
        EXPECT_FALSE(lists->publisher()->hasSubscribers());
        EXPECT_FALSE(list->publisher()->hasSubscribers());
        EXPECT_FALSE(rules->publisher()->hasSubscribers());
        state = State::ClassifiersDir::create();
        writeCondition("v4", "90", 9);
    };
    EXPECT_GT(TestSupport::failEachAllocation([this] { start(); }, isClean), 10u);
    EXPECT_EQ(written(), "v4 IPV4 {10 when ipv4 [46, 8], 20 when ipv4 [46, 8], 90}");
}

TEST_F(AclTypeStateSmLifeTest, describesItself) {
    EXPECT_THAT(attributesOf(AclTypeStateSm::kTypeRecord),
                ElementsAre("aclTypeConfig 1 input watched Acl::Input::AclTypeConfig",
                            "classifierStateDir 2 input QosOc::State::ClassifiersDir",
                            "aclStateSm 3 child by key QosOc::AclStateSm"));
    add("openconfig:v4:10");
    const auto sm = AclTypeStateSm::kTypeRecord.construct(
        std::vector<Vex::Value>{Vex::NodeRef(lists), Vex::NodeRef(state)});
    EXPECT_EQ(sm->typeData().fullName, "QosOc::AclTypeStateSm");
    EXPECT_EQ(Vex::attributeNamed(sm->typeData(), "aclStateSm")->collection->size(sm.get()), 1u);
}

}  // namespace
}  // namespace QosOc
