#include "platform/Vex/Errors.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/OnClassifier.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/PmapTypeMachineTest.h"

namespace QosOc {
namespace {

using ::testing::ElementsAre;

class PmapTypeStatusSmLifeTest : public PmapTypeMachineTest {};

TEST_F(PmapTypeStatusSmLifeTest, catchesUpInAscendingOrderOfNames) {
    for (const char* name : {"openconfig:c:", "openconfig:a:", "openconfig:b:"})
        add(name);
    TestSupport::StateRecorder heard(state);
    const auto sm = start();
    EXPECT_THAT(heard.take(),
                ElementsAre("a", "a/state IPV4", "b", "b/state IPV4", "c", "c/state IPV4"));
}

// Each policy map that comes during the walk is heard of as well; the walk comes to it once more
// only where it is still ahead.
TEST_F(PmapTypeStatusSmLifeTest, catchesUpWithPolicyMapsThatComeAndGoMeanwhile) {
    for (const char* name : {"openconfig:b:", "openconfig:c:", "openconfig:d:"})
        add(name);
    const OnClassifier change(state, [this](const Orin::String& name) {
        if (name != "b" || pmaps->pmapStatus().find(Orin::String("openconfig:a:")) != nullptr)
            return;
        pmaps->pmapStatusDel("openconfig:c:");
        add("openconfig:a:");
        add("openconfig:e:");
    });
    const TestSupport::TraceCapture capture;
    const auto sm = start();
    Lines handled;
    for (const std::string& line : linesOf(capture, {{sm.get(), "type"}}, "PmapTypeStatusSm"))
        if (line.find(" handlePmapStatus ") != line.npos) handled.push_back(line);
    EXPECT_THAT(
        handled,
        ElementsAre(handlePmapStatusLine("openconfig:b:"), handlePmapStatusLine("openconfig:c:"),
                    handlePmapStatusLine("openconfig:a:"), handlePmapStatusLine("openconfig:e:"),
                    handlePmapStatusLine("openconfig:d:"), handlePmapStatusLine("openconfig:e:")));
    EXPECT_EQ(uses(), (Uses{{"a (IPV4)", 1}, {"b (IPV4)", 1}, {"d (IPV4)", 1}, {"e (IPV4)", 2}}));
}

TEST_F(PmapTypeStatusSmLifeTest, takesBackInAscendingOrderWhileOthersLeave) {
    for (const char* name : {"openconfig:c:", "openconfig:a:", "openconfig:b:"})
        add(name);
    configured("a").terms()->termIs(configuredTerm("10", "gold"));
    const auto sm = start();
    sm->hasNotificationActiveIs(false);
    state->classifierDel("a");
    const OnClassifier change(state, [this](const Orin::String& name) {
        if (name == "a") pmaps->pmapStatusDel("openconfig:b:");
    });
    sm->doPrepareToDie();
    EXPECT_EQ(uses(), (Uses{{"b (IPV4)", 1}}));
    EXPECT_EQ(live<PmapStatusSm>(), 1u);
    EXPECT_NE(child(*sm, "openconfig:b:"), nullptr);
}

TEST_F(PmapTypeStatusSmLifeTest, refusesANullPolicyMap) {
    const auto sm = start();
    try {
        sm->pmapStatusSmIs(nullptr, cliConfig, configDir, state);
        FAIL() << "nothing thrown";
    } catch (const Vex::MutatorArgNullPointerException& error) {
        EXPECT_THAT(error.what(), ::testing::HasSubstr("pmapStatus"));
    }
}

TEST_F(PmapTypeStatusSmLifeTest, keepsAMachineThatIsAskedForAgain) {
    const auto sm = start();
    const auto pmap = add("openconfig:v4:v6");
    EXPECT_EQ(sm->pmapStatusSmIs(pmap, cliConfig, configDir, state).get(),
              child(*sm, "openconfig:v4:v6"));
}

TEST_F(PmapTypeStatusSmLifeTest, refusesToMakeAMachineAgainFromOtherInputs) {
    const auto sm = start();
    const auto pmap = add("openconfig:v4:v6");
    using Refused = Vex::MutatorReinstantiatingException;
    EXPECT_THROW(sm->pmapStatusSmIs(pmapOf("openconfig:v4:v6"), cliConfig, configDir, state),
                 Refused);
    EXPECT_THROW(sm->pmapStatusSmIs(pmap, Qos::Input::Config::create(), configDir, state), Refused);
    EXPECT_THROW(sm->pmapStatusSmIs(pmap, cliConfig, Config::ClassifiersDir::create(), state),
                 Refused);
    EXPECT_THROW(sm->pmapStatusSmIs(pmap, cliConfig, configDir, State::ClassifiersDir::create()),
                 Refused);
    EXPECT_EQ(live<PmapStatusSm>(), 1u);
}

TEST_F(PmapTypeStatusSmLifeTest, endsTheProcessWhenAPolicyMapIsSwappedUnderItsName) {
    const auto sm = start();
    add("openconfig:v4:v6");
    EXPECT_DEATH(add("openconfig:v4:v6"), "Vex::MutatorReinstantiatingException");
}

TEST_F(PmapTypeStatusSmLifeTest, removesMachinesByNameAndAllOfThem) {
    add("openconfig:a:");
    add("openconfig:b:");
    const auto sm = start();
    const auto* held = child(*sm, "openconfig:a:");
    EXPECT_EQ(sm->pmapStatusSmDel("openconfig:a:").get(), held);
    EXPECT_EQ(sm->pmapStatusSmDel("openconfig:a:"), nullptr);
    EXPECT_EQ(live<PmapStatusSm>(), 1u);
    sm->pmapStatusSmDelAll();
    EXPECT_EQ(live<PmapStatusSm>(), 0u);
    EXPECT_EQ(uses(), (Uses{{"a (IPV4)", 1}, {"b (IPV4)", 1}}));
}

TEST_F(PmapTypeStatusSmLifeTest, ignoresOtherAttributes) {
    const auto sm = start();
    add("openconfig:v4:v6");
    const Orin::String name("openconfig:v4:v6");
    pmaps->publishChange(258, &name);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 1}, {"v6 (IPV6)", 1}}));
}

TEST_F(PmapTypeStatusSmLifeTest, ignoresAllChangesWithTheZombieFlag) {
    const auto sm = start();
    sm->vexDoZombieReactors(true);
    add("openconfig:a:");
    EXPECT_EQ(uses(), Uses{});
    sm->vexDoZombieReactors(false);
    add("openconfig:b:");
    EXPECT_EQ(uses(), (Uses{{"b (IPV4)", 1}}));
}

TEST_F(PmapTypeStatusSmLifeTest, fallsSilentWithItsMachinesAndHearsEachChangeOnceAgain) {
    const auto pmap = add("openconfig:v4:");
    const auto sm = start();
    sm->hasNotificationActiveIs(false);
    touch("openconfig:v4:");
    pmap->classIs("openconfig:v4:10", toTc(0));
    raiseVersion(pmap);
    EXPECT_FALSE(pmaps->publisher()->hasSubscribers());
    EXPECT_FALSE(pmap->publisher()->hasSubscribers());
    EXPECT_EQ(written(), "v4 IPV4");
    sm->hasNotificationActiveIs(true);
    sm->hasNotificationActiveIs(true);
    touch("openconfig:v4:");
    raiseVersion(pmap);
    EXPECT_EQ(uses(), (Uses{{"v4 (IPV4)", 2}}));
    EXPECT_EQ(written(), "v4 IPV4 {10 to gold}");
}

TEST_F(PmapTypeStatusSmLifeTest, leavesNoMachineBehindWhenAnAllocationFails) {
    add("openconfig:a:b");
    add("openconfig:c:d");
    const auto attempt = [this] { start(); };
    const auto isClean = [this] {
        EXPECT_EQ(live<PmapTypeStatusSm>() + live<PmapStatusSm>(), 0u);
        EXPECT_FALSE(pmaps->publisher()->hasSubscribers());
        EXPECT_FALSE(cliConfig->publisher()->hasSubscribers());
        EXPECT_FALSE(groups->publisher()->hasSubscribers());
    };
    EXPECT_GT(TestSupport::failEachAllocation(attempt, isClean), 5u);
}

TEST_F(PmapTypeStatusSmLifeTest, describesItself) {
    EXPECT_EQ(PmapTypeStatusSm::kTypeRecord.fullName, "QosOc::PmapTypeStatusSm");
    EXPECT_THAT(attributesOf(PmapTypeStatusSm::kTypeRecord),
                ElementsAre("pmapTypeStatus 1 input watched Qos::PolicyMapTypeStatus",
                            "cliConfig 2 input Qos::Input::Config",
                            "classifierConfigDir 3 input QosOc::Config::ClassifiersDir",
                            "classifiersWithPmap 4 input QosOc::ClassifiersWithPmap",
                            "classifierStateDir 5 input QosOc::State::ClassifiersDir",
                            "pmapStatusSm 6 child by key QosOc::PmapStatusSm"));
    const auto sm = start();
    EXPECT_EQ(&sm->typeData(), &PmapTypeStatusSm::kTypeRecord);
}

TEST_F(PmapTypeStatusSmLifeTest, isMadeAndTakenApartThroughItsTypeRecord) {
    add("openconfig:v4:v6");
    const auto sm = PmapTypeStatusSm::kTypeRecord.construct(std::vector<Vex::Value>{
        Vex::NodeRef(pmaps), Vex::NodeRef(cliConfig), Vex::NodeRef(configDir),
        Vex::NodeRef(registry), Vex::NodeRef(state)});
    EXPECT_EQ(written(), "v4 IPV4; v6 IPV6");
    const auto* children = Vex::attributeNamed(sm->typeData(), "pmapStatusSm")->collection;
    const Orin::String name("openconfig:v4:v6");
    EXPECT_EQ(children->size(sm.get()), 1u);
    std::vector<Vex::Value> keys;
    children->walk(sm.get(),
                   [&](const Vex::Value& key, const Vex::Value&) { keys.push_back(key); });
    EXPECT_THAT(keys, ElementsAre(Vex::Value(name)));
    EXPECT_FALSE(children->del(sm.get(), name).isAbsent());
    EXPECT_EQ(live<PmapStatusSm>(), 0u);
    EXPECT_EQ(children->put, nullptr);
}

}  // namespace
}  // namespace QosOc
