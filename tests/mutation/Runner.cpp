// The main program of tests that are run with mutants: either runs all tests once and tells to
// which mutants each comes, or forks once for each mutant and runs some tests in the child.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

#include "tests/mutation/Mutant.h"
#include "tests/mutation/Planted.h"
#include "tests/support/LiveCounts.h"

namespace {

/// Makes each test fail when it notices a planted mutant. With a path it writes a line for each
/// test: its name, its milliseconds, and the numbers of the mutants that it came to.
class Watch : public ::testing::EmptyTestEventListener {
public:
    explicit Watch(const char* path) : file_(path == nullptr ? nullptr : std::fopen(path, "w")) {}

    void OnTestStart(const ::testing::TestInfo&) override {
        std::memset(qosAskedMutants, 0, kMostMutants);
        EXPECT_TRUE(Planted::holds());
    }
    void OnTestEnd(const ::testing::TestInfo& test) override {
        if (file_ == nullptr) return;
        std::fprintf(file_, "%s.%s %lld", test.test_suite_name(), test.name(),
                     static_cast<long long>(test.result()->elapsed_time()));
        for (unsigned number = 0; number < kMostMutants; ++number)
            if (qosAskedMutants[number] != 0) std::fprintf(file_, " %u", number);
        std::fputc('\n', file_);
        std::fflush(file_);
    }

private:
    std::FILE* file_;
};

[[noreturn]] void runMutant(unsigned mutant, unsigned seconds, const std::string& filter) {
    ::setpgid(0, 0);
    ::alarm(seconds);
    const rlimit limit{seconds, seconds};
    ::setrlimit(RLIMIT_CPU, &limit);
    const int nowhere = ::open("/dev/null", O_RDWR);
    ::dup2(nowhere, STDIN_FILENO);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    GTEST_FLAG_SET(filter, filter);
    GTEST_FLAG_SET(fail_fast, true);
    qosChosenMutant = mutant;
    ::setenv("QOS_MUTANT", std::to_string(mutant).c_str(), 1);  // for death tests that start anew
    std::exit(RUN_ALL_TESTS());
}

/// Reads lines of a mutant, seconds and a filter, and answers each with how the tests ended.
void serve() {
    unsigned mutant = 0;
    unsigned seconds = 0;
    std::string filter;
    while (std::cin >> mutant >> seconds >> filter) {
        const pid_t child = ::fork();
        if (child == 0) runMutant(mutant, seconds, filter);
        int status = 0;
        ::waitpid(child, &status, 0);
        ::kill(-child, SIGKILL);  // what its death tests may have left behind
        std::cout << status << std::endl;
    }
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    const bool isServing = std::getenv("QOS_SERVE_MUTANTS") != nullptr;
    auto& listeners = ::testing::UnitTest::GetInstance()->listeners();
    listeners.Append(std::make_unique<TestSupport::LiveCountsListener>().release());
    listeners.Append(std::make_unique<Watch>(std::getenv("QOS_RECORD_MUTANTS")).release());
    // Death tests that start this program anew do neither.
    ::unsetenv("QOS_SERVE_MUTANTS");
    ::unsetenv("QOS_RECORD_MUTANTS");
    if (!isServing) return RUN_ALL_TESTS();
    serve();
    return 0;
}
