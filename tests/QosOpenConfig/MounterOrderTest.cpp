#include <cstdio>
#include <cstdlib>

#include "platform/Agent/Toggles.h"
#include "tests/QosOpenConfig/MounterTest.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/ReentrancyTest.h"

namespace QosOc {
namespace {

using ::testing::ExitedWithCode;

/// In which order the mounter and the root machine take their steps.
class MounterOrderTest : public MounterTest {
protected:
    MounterOrderTest() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        mounter->doPluginSpecificMountsComplete(Strata::mountSuccess_, manager);
    }
    /// For processes that end: trace lines go to standard error.
    static void traceToStandardError() {
        Vex::traceSinkIs([](std::string_view line) {
            std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
        });
        Vex::traceLevelsIs("*", Vex::kFunctionEntry + 1);
    }
    /// What can be seen of the root machine while a change of it is published.
    std::string seen(const ClassifierStateSm& machine) const {
        return std::string(mounter->classifierStateSm().get() == &machine ? "held" : "not held") +
               (machine.notificationActive() ? ", active" : ", silent");
    }
    void createOver(const Orin::Ptr<const Qos::Status>& qos,
                    const Orin::Ptr<const Acl::Input::Config>& acl,
                    const Orin::Ptr<const Config::ClassifiersDir>& config, const StateDir& tree) {
        mounter->classifierStateSmIs(qos, acl, nullptr, config, tree);
    }
};

TEST_F(MounterOrderTest, tracesAnEntryBeforeAnAssertionStopsIt) {
    EXPECT_DEATH((traceToStandardError(), mounter->doPluginSpecificMounts(nullptr)),
                 "StateSmMounter/8 .* doPluginSpecificMounts .*Assertion `mg' failed");
    EXPECT_DEATH((traceToStandardError(),
                  mounter->doPluginSpecificMountsComplete(Strata::mountFailed_, manager)),
                 "StateSmMounter/8 .* doPluginSpecificMountsComplete .*Assertion `mountStatus == ");
    EXPECT_DEATH((traceToStandardError(), createOver(nullptr, aclCliConfig, configDir, root)),
                 "ClfStateSm/8 .* handleInitialized .*Assertion `qosStatus' failed");
}

TEST_F(MounterOrderTest, missesTheFirstInputThatIsNotThere) {
    EXPECT_DEATH(createOver(nullptr, nullptr, nullptr, nullptr), "Assertion `qosStatus' failed");
    EXPECT_DEATH(createOver(qosStatus, nullptr, nullptr, nullptr),
                 "Assertion `aclCliConfig' failed");
    EXPECT_DEATH(createOver(qosStatus, aclCliConfig, nullptr, nullptr),
                 "Assertion `classifierConfigDir' failed");
}

TEST_F(MounterOrderTest, publishesARootMachineThatIsHeldAndActive) {
    std::string atChange;
    const Once once(mounter->publisher(), [&] { atChange = seen(*mounter->classifierStateSm()); });
    rootIs();
    EXPECT_EQ(atChange, "held, active");
}

TEST_F(MounterOrderTest, publishesThatTheRootMachineGoesBeforeItSilencesIt) {
    const auto machine = rootIs();
    std::string atChange;
    const Once once(mounter->publisher(), [&] { atChange = seen(*machine); });
    mounter->classifierStateSmDel();
    EXPECT_EQ(atChange, "not held, active");
    EXPECT_EQ(seen(*machine), "not held, silent");
}

TEST_F(MounterOrderTest, readsTheToggleAfterItTracedItsEntry) {
    const auto inChild = [this] {
        const TestSupport::TraceCapture capture;
        std::size_t linesBefore = 0;
        Agent::toggleReaderIs([&](std::string_view, std::string_view, bool) {
            linesBefore = capture.rawLines().size();
            return false;
        });
        mounter->createSm();
        std::_Exit(linesBefore == 1 ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    EXPECT_EXIT(inChild(), ExitedWithCode(EXIT_SUCCESS), "");
}

}  // namespace
}  // namespace QosOc
