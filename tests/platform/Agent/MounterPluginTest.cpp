#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Agent/MounterPlugin.h"
#include "platform/QosOc/MounterBase.h"
#include "platform/Vex/Module.h"
#include "tests/support/Harbour.h"
#include "tests/support/Printers.h"
#include "tests/support/VtableLayout.h"

namespace Agent::MounterPlugin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the mounters were asked, in order.
std::vector<std::string> steps;

class HarbourMounter final : public QosOc::MounterBase {
public:
    HarbourMounter() : MounterBase("HarbourMounter") {}
    ~HarbourMounter() override {
        steps.emplace_back(context() == nullptr ? "destroyed without context" : "destroyed");
    }
    const Vex::TypeRecord& typeData() const override { return Harbour::Port::kTypeRecord; }
    void handleMountStatus(Strata::MountStatus status) override {
        steps.emplace_back("handleMountStatus");
        MounterBase::handleMountStatus(status);
    }
    void createPluginStatePhase1() override { steps.emplace_back("phase 1"); }
    void createPluginStatePhase2() override { steps.emplace_back("phase 2"); }
    void startPluginRunnabilitySm() override { steps.emplace_back("runnability"); }
    void doPluginSpecificMounts(const Orin::Ptr<Strata::MountGroup>& mountGroup) override {
        steps.emplace_back(mountGroup->mounts().empty() ? "mounts" : "mounts, not empty");
    }
    void doPluginSpecificMountsComplete(
        Strata::MountStatus status,
        const Orin::Ptr<Strata::EntityManager>& entityManager) override {
        steps.emplace_back("complete");
        EXPECT_EQ(status, Strata::mountSuccess_);
        EXPECT_EQ(mountStatus(), Strata::mountSuccess_);
        EXPECT_EQ(entityManager, context()->entityManager());
    }
    void createSm() override { steps.emplace_back("createSm"); }
};

constexpr const Vex::TypeRecord* kTypes[] = {&Harbour::Port::kTypeRecord};
constexpr Vex::Module kModule{"MounterPluginTest", kTypes};

class MounterPluginTest : public ::testing::Test {
protected:
    MounterPluginTest() { steps.clear(); }

    Orin::Ptr<Strata::EntityManager> entities =
        Orin::Ptr<Strata::EntityManager>::adopt(new Strata::EntityManager);
    Orin::Ptr<MounterContext> context =
        Orin::Ptr<MounterContext>::adopt(new MounterContext(entities));
    Plugin<HarbourMounter> plugin;

private:
    Vex::ModuleRegistration types_{kModule};
};

TEST_F(MounterPluginTest, drivesItsMounterOnceThroughInOrder) {
    plugin.init(context.get());
    EXPECT_THAT(steps, ElementsAre("mounts", "handleMountStatus", "complete", "phase 1", "phase 2",
                                   "createSm", "runnability"));
}

TEST_F(MounterPluginTest, leavesItsMounterToTheContext) {
    plugin.init(context.get());
    ASSERT_EQ(context->mounters().size(), 1u);
    EXPECT_EQ(context->mounters()[0]->name(), "HarbourMounter");
    EXPECT_EQ(context->mounters()[0]->userCount(), 1u);
    EXPECT_EQ(context->userCount(), 1u) << "a mounter does not keep the context";
}

TEST_F(MounterPluginTest, letsMountersGoWithTheContext) {
    plugin.init(context.get());
    steps.clear();
    context = nullptr;
    EXPECT_THAT(steps, ElementsAre("destroyed without context"));
}

TEST_F(MounterPluginTest, tellsAMounterThatOutlivesTheContext) {
    plugin.init(context.get());
    const Orin::Ptr<MounterBase> held = context->mounters()[0];
    steps.clear();
    context = nullptr;
    EXPECT_THAT(steps, IsEmpty());
    EXPECT_EQ(held->userCount(), 1u);
}

TEST_F(MounterPluginTest, letsGoOfTheLastMounterFirst) {
    static std::vector<int> gone;
    static int next = 0;
    gone.clear();
    next = 0;
    class Numbered final : public MounterBase {
    public:
        Numbered() : MounterBase("Numbered") {}
        ~Numbered() override { gone.push_back(number_); }
        const Vex::TypeRecord& typeData() const override { return Harbour::Port::kTypeRecord; }
        void doMountsComplete(Strata::MountStatus,
                              const Orin::Ptr<Strata::EntityManager>&) override {}
        void doMounts() override {}

    private:
        int number_ = next++;
    };
    Plugin<Numbered> numbered;
    numbered.init(context.get());
    numbered.init(context.get());
    context->mounterDelAll();
    EXPECT_EQ(gone, (std::vector<int>{1, 0}));
    EXPECT_TRUE(context->mounters().empty());
}

TEST_F(MounterPluginTest, beginsWithAnUnknownMountStatus) {
    const auto mounter = Orin::Ptr<HarbourMounter>::adopt(new HarbourMounter);
    EXPECT_EQ(mounter->mountStatus(), Strata::mountUnknown_);
    mounter->handleMountStatus(Strata::mountFailed_);
    EXPECT_EQ(mounter->mountStatus(), Strata::mountFailed_);
}

TEST_F(MounterPluginTest, makesNothingOfItsPlaceInAnotherEntity) {
    const auto mounter = Orin::Ptr<HarbourMounter>::adopt(new HarbourMounter);
    mounter->handleParent();
    EXPECT_THAT(steps, IsEmpty());
    EXPECT_EQ(mounter->mountStatus(), Strata::mountUnknown_);
}

/// Asks for one mount, and asserts that it was granted.
class AskingMounter final : public QosOc::MounterBase {
public:
    AskingMounter() : MounterBase("AskingMounter") {}
    const Vex::TypeRecord& typeData() const override { return Harbour::Port::kTypeRecord; }
    void doPluginSpecificMounts(const Orin::Ptr<Strata::MountGroup>& mountGroup) override {
        mountGroup->doMount(Strata::Mount(path, Harbour::Tide::kTypeName));
    }
    void doPluginSpecificMountsComplete(Strata::MountStatus status,
                                        const Orin::Ptr<Strata::EntityManager>&) override {
        completedAs = status;
    }
    void createSm() override {}

    static inline const char* path = "";
    static inline Strata::MountStatus completedAs = Strata::mountUnknown_;
};

TEST_F(MounterPluginTest, completesMountsThatTheDatabaseGrants) {
    entities->entityIs("harbour/tide", Harbour::Tide::create());
    AskingMounter::path = "harbour/tide";
    ::testing::internal::CaptureStderr();
    Plugin<AskingMounter>().init(context.get());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(AskingMounter::completedAs, Strata::mountSuccess_);
}

TEST_F(MounterPluginTest, failsMountsThatTheDatabaseRefusesAndNamesThePath) {
    AskingMounter::path = "harbour/tode";
    ::testing::internal::CaptureStderr();
    Plugin<AskingMounter>().init(context.get());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "AskingMounter: cannot mount \"harbour/tode\": there is no such path\n");
    EXPECT_EQ(AskingMounter::completedAs, Strata::mountFailed_);
}

TEST_F(MounterPluginTest, namesTheTypesThatAreInNoModule) {
    static constexpr Vex::TypeRecord kStray{"Harbour::Stray", {}, nullptr};
    class StrayMounter final : public MounterBase {
    public:
        StrayMounter() : MounterBase("StrayMounter") {}
        const Vex::TypeRecord& typeData() const override { return kStray; }
        void doMountsComplete(Strata::MountStatus,
                              const Orin::Ptr<Strata::EntityManager>&) override {}
        void doMounts() override {}
    };
    ::testing::internal::CaptureStderr();
    Plugin<StrayMounter>().init(context.get());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "StrayMounter: the type Harbour::Stray is in no registered module\n");
}

TEST_F(MounterPluginTest, placesTheSlotsOfAMounterAsPluginsExpectThem) {
    using TestSupport::slotOf;
    EXPECT_EQ(slotOf(&HarbourMounter::typeData), 4u);
    EXPECT_EQ(slotOf(&HarbourMounter::handleParent), 5u);
    EXPECT_EQ(slotOf(&HarbourMounter::doStrataMountsComplete), 6u);
    EXPECT_EQ(slotOf(&HarbourMounter::doMountsComplete), 7u);
    EXPECT_EQ(slotOf(&HarbourMounter::handleMountStatus), 8u);
    EXPECT_EQ(slotOf(&HarbourMounter::createPluginStatePhase1), 9u);
    EXPECT_EQ(slotOf(&HarbourMounter::createPluginStatePhase2), 10u);
    EXPECT_EQ(slotOf(&HarbourMounter::startPluginRunnabilitySm), 11u);
    EXPECT_EQ(slotOf(&HarbourMounter::doMounts), 12u);
    EXPECT_EQ(slotOf(&HarbourMounter::doPluginSpecificMounts), 13u);
    EXPECT_EQ(slotOf(&HarbourMounter::doPluginSpecificMountsComplete), 14u);
    EXPECT_EQ(slotOf(&HarbourMounter::createSm), 15u);
    const auto mounter = Orin::Ptr<HarbourMounter>::adopt(new HarbourMounter);
    EXPECT_EQ(TestSupport::virtualOperations(mounter.get()).size(), 16u);
}

TEST_F(MounterPluginTest, hasTwoDestructorsAndInitAsItsSlots) {
    EXPECT_EQ(TestSupport::slotOf(&Plugin<HarbourMounter>::init), 2u);
    EXPECT_EQ(TestSupport::virtualOperations(&plugin).size(), 3u);
}

}  // namespace
}  // namespace Agent::MounterPlugin
