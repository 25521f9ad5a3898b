#include <string>
#include <vector>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapStatusSm.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/PmapMachineTest.h"

namespace QosOc {
namespace {

/// Two policy maps over one map of forwarding groups.
class PmapStatusSmOrderTest : public PmapMachineTest {
protected:
    Orin::Ptr<PmapStatusSm> start(const char* name) {
        return pmapStatusSmFactory(pmapOf(name), cliConfig, configDir, state);
    }
    /// The policy maps that compute because the groups change, in their order.
    std::vector<std::string> computed() {
        const TestSupport::TraceCapture capture;
        groups->tcIs("spare", 9);
        std::vector<std::string> names;
        for (const std::string& line : capture.rawLines()) {
            const std::size_t at = line.find("pmapName = ");
            if (at != line.npos) names.push_back(line.substr(at));
        }
        return names;
    }
};

TEST_F(PmapStatusSmOrderTest, staysAsItIsWhereOneIsGivenTheMapAgain) {
    const auto first = start("openconfig:a:");
    const auto second = start("openconfig:b:");
    first->vex_CliConfig_ForwardingGroupNameToTcMapInIs(groups);
    EXPECT_THAT(computed(),
                ::testing::ElementsAre("pmapName = openconfig:a:", "pmapName = openconfig:b:"));
}

TEST_F(PmapStatusSmOrderTest, changesWhereOneForgetsTheMapMeanwhile) {
    const auto first = start("openconfig:a:");
    const auto second = start("openconfig:b:");
    first->vex_CliConfig_ForwardingGroupNameToTcMapInDel();
    first->vex_CliConfig_ForwardingGroupNameToTcMapInIs(groups);
    EXPECT_THAT(computed(),
                ::testing::ElementsAre("pmapName = openconfig:b:", "pmapName = openconfig:a:"));
}

}  // namespace
}  // namespace QosOc
