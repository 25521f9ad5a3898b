#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/RootTest.h"
#include "tests/support/Allocations.h"
#include "tests/support/TraceCapture.h"

namespace QosOc {
namespace {

enum class End : int {
    ranThrough,
    refused,        ///< `std::bad_alloc` came out, and nothing was told
    refusedInPart,  ///< it came out, and something had been told
    unnoticed,
    aborted,
    other,
};

/// Runs `act` in a process of its own, with its n-th allocation failing. `isUntouched` tells
/// whether what `act` changes first is as it was.
End endOf(std::size_t nth, const std::function<void()>& act,
          const std::function<bool()>& isUntouched) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(STDERR_FILENO);
        const auto ended = [](End end) { ::_exit(static_cast<int>(end)); };
        try {
            const TestSupport::FailingAllocation failing(nth);
            act();
            ended(failing.hasFailed() ? End::unnoticed : End::ranThrough);
        } catch (const std::bad_alloc&) {
            ended(isUntouched() ? End::refused : End::refusedInPart);
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) return WTERMSIG(status) == SIGABRT ? End::aborted : End::other;
    return WEXITSTATUS(status) < static_cast<int>(End::aborted)
               ? static_cast<End>(WEXITSTATUS(status))
               : End::other;
}

/// A device at work; each allocation of a change fails once. What fails before the change is told
/// of is refused; what fails while it is told of ends the process.
class DispatchAllocationTest : public StateTest, protected RootInputs {
protected:
    DispatchAllocationTest() {
        fill();
        machines = rootOver(root);
    }
    void expectRefusalOrAbort(const std::function<void()>& change) {
        const std::string before = state();
        std::map<End, int> ends;
        for (std::size_t nth = 0; ends[End::ranThrough] == 0; ++nth)
            ++ends[endOf(nth, change, [&] { return state() == before; })];
        EXPECT_GT(ends[End::aborted], 0);
        EXPECT_EQ(ends[End::unnoticed], 0);
        EXPECT_EQ(ends[End::refusedInPart], 0);
        EXPECT_EQ(ends[End::other], 0);
    }
    Orin::Ptr<ClassifierStateSm> machines;
};

TEST_F(DispatchAllocationTest, endsTheProcessWhereAClassMapComes) {
    const auto cmap = Qos::ClassMapStatus::create("openconfig:voice:10");
    cmap->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, "any");
    const auto cmaps = *qosStatus->cmapTypeStatus().find(Qos::MapType::mapQos);
    expectRefusalOrAbort([&] { cmaps->cmapStatusIs(cmap); });
}

TEST_F(DispatchAllocationTest, endsTheProcessWhereAnAccessListComes) {
    const Orin::String name = "openconfig:voice:10";
    const auto type = aclType(Acl::AclType::ipv4, "openconfig:voice:10");
    const auto lists = *aclCliConfig->aclTypeConfig().find(Acl::AclType::ipv4);
    expectRefusalOrAbort([&] { lists->aclConfigIs(name, *type->aclConfig().find(name)); });
}

TEST_F(DispatchAllocationTest, endsTheProcessWhereAClassifierIsConfigured) {
    expectRefusalOrAbort(
        [&] { configDir->classifierIs(classifier("voice", Classifier::Type::IPV6)); });
}

TEST_F(DispatchAllocationTest, endsTheProcessWhereATraceLineIsWritten) {
    const TestSupport::TraceCapture capture;
    expectRefusalOrAbort([&] { qosStatus->cmapTypeStatusDel(Qos::MapType::mapQos); });
}

}  // namespace
}  // namespace QosOc
