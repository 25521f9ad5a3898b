#include <optional>
#include <string>

#include "agent/host/PluginHost.h"
#include "platform/Qos/Status.h"
#include "platform/Vex/Assert.h"
#include "tests/plugin/PluginTest.h"

namespace QosAgent {
namespace {

using Registration = Plugin::PluginRegistration<Context>;

/// A mounter without machines that asks for one mount, and stops the process if it is refused.
template <class Plan>
class PlanMounter final : public QosOc::MounterBase {
public:
    PlanMounter() : MounterBase("PlanMounter") { ++made; }
    const Vex::TypeRecord& typeData() const override { return Qos::Status::kTypeRecord; }
    void doPluginSpecificMounts(const Orin::Ptr<Strata::MountGroup>& mountGroup) override {
        Strata::Mount mount(Plan::kPath, Plan::kType);
        mount.flags().valIs(0);
        mount.handleFlags(Plan::kFlags);
        mountGroup->doMount(mount);
    }
    void doPluginSpecificMountsComplete(Strata::MountStatus mountStatus,
                                        const Orin::Ptr<Strata::EntityManager>&) override {
        Vex::assertThat(mountStatus == Strata::mountSuccess_,
                        "mountStatus == Strata::mountSuccess_", "PlanMounter", 1, "complete");
    }
    void createSm() override {}

    static inline int made = 0;
};
template <class Plan>
using PlanPlugin = Agent::MounterPlugin::Plugin<PlanMounter<Plan>>;

struct Sound {
    static constexpr const char* kPath = "qos/status";
    static constexpr const char* kType = "Qos::Status";
    static constexpr const char* kFlags = "r";
};
struct NoSuchPath : Sound {
    static constexpr const char* kPath = "qos/statu";
};
struct OtherType : Sound {
    static constexpr const char* kType = "Qos::Statue";
};
struct WritesInput : Sound {
    static constexpr const char* kFlags = "rw";
};

class PluginHostTest : public PluginTest {
protected:
    PluginHostTest() { PlanMounter<Sound>::made = 0; }
    std::optional<std::string> load() { return host.load(kPluginFile); }
    /// Loads the library beside another plug-in, whose mount is refused.
    template <class Plan>
    void loadBeside() {
        PlanPlugin<Plan> plugin;
        const Registration registration("Other", Qos::defaultPluginLoader(), plugin);
        load();
    }

    PluginHost host{db.database.entityManager()};
};

TEST_F(PluginHostTest, restartsNoOtherPluginThanTheOneThatIsNamed) {
    PlanPlugin<Sound> plugin;
    const Registration registration("Other", Qos::defaultPluginLoader(), plugin);
    ASSERT_EQ(load(), std::nullopt);
    const auto before = host.mounters();
    ASSERT_EQ(before.size(), 2u);
    EXPECT_EQ(host.restart("Other"), std::nullopt);
    EXPECT_EQ(PlanMounter<Sound>::made, 2);
    EXPECT_EQ(host.mounters()[0], before[0]);
    EXPECT_NE(host.mounters()[1], before[1]);
    EXPECT_EQ(host.restart("ClassifierStateSmPlugin"), std::nullopt);
    EXPECT_EQ(PlanMounter<Sound>::made, 2);
    EXPECT_NE(host.mounters()[0], before[0]);
    EXPECT_EQ(written(), kWritten);
}

TEST_F(PluginHostTest, restartsNothingForAnotherName) {
    ASSERT_EQ(load(), std::nullopt);
    const auto before = host.mounters();
    EXPECT_EQ(host.restart("Nobody"), "no plug-in is called \"Nobody\"");
    EXPECT_EQ(host.mounters(), before);
}

TEST_F(PluginHostTest, namesThePathOfAMountThatItRefuses) {
    const std::string assertion = ".*\n.*Assertion `mountStatus == Strata::mountSuccess_' failed";
    EXPECT_DEATH(loadBeside<NoSuchPath>(),
                 "PlanMounter: cannot mount \"qos/statu\": there is no such path" + assertion);
    EXPECT_DEATH(loadBeside<OtherType>(),
                 "PlanMounter: cannot mount \"qos/status\": its type is Qos::Status, not "
                 "Qos::Statue" +
                     assertion);
    EXPECT_DEATH(loadBeside<WritesInput>(),
                 "PlanMounter: cannot mount \"qos/status\": it must not be written" + assertion);
}

}  // namespace
}  // namespace QosAgent
