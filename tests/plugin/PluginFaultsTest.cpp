#include <cstdlib>

#include "tests/agent/support/Program.h"

namespace QosAgent {
namespace {

const std::string kFile = FAILING_PLUGIN_FILE;

/// A plug-in that throws what it likes, when it likes.
class PluginFaultsTest : public ProgramTest {
protected:
    ~PluginFaultsTest() override { ::unsetenv("FAILS"); }
    Ended runFailing(const std::string& whenAndHow, const std::string& lines = "") {
        ::setenv("FAILS", whenAndHow.c_str(), 1);
        return run(
            {"--output", "none", "--trace-file", path("t"), "--keep-going", "--plugin", kFile, "-"},
            lines);
    }
    void expectNotStarted(const std::string& whenAndHow, const std::string& fault) {
        EXPECT_EQ(runFailing(whenAndHow),
                  (Ended{2, "", kFile + ": cannot be started: " + fault + '\n'}))
            << whenAndHow;
    }
};

TEST_F(PluginFaultsTest, areNoneWhereItThrowsNothing) {
    EXPECT_EQ(runFailing("never", R"({"restart":"Failing"})"), (Ended{0, "", ""}));
}

TEST_F(PluginFaultsTest, areOneLineWhereItFailsToInitialise) {
    expectNotStarted("init own", "the queue\\u000ais stuck");
    expectNotStarted("init runtime", "no such queue");
    expectNotStarted("init int", "an exception of type int");
    expectNotStarted("init silent", "an exception of type (anonymous namespace)::SilentFailure");
}

TEST_F(PluginFaultsTest, areOneLineWhereAStaticObjectFails) {
    expectNotStarted("load own", "the queue\\u000ais stuck");
    expectNotStarted("load runtime", "no such queue");
    expectNotStarted("load int", "an exception of type int");
}

TEST_F(PluginFaultsTest, areMemoryThatRanOut) {
    for (const char* when : {"load memory", "init memory"})
        EXPECT_EQ(runFailing(when), (Ended{2, "", "qos-agent: out of memory\n"})) << when;
}

TEST_F(PluginFaultsTest, refuseTheLineThatRestartsIt) {
    EXPECT_EQ(runFailing("restart own", "{\"restart\":\"Failing\"}\n{\"echo\":\"on\"}\n"),
              (Ended{1, "# on\n", "-:1:12: cannot be started: the queue\\u000ais stuck\n"}));
}

}  // namespace
}  // namespace QosAgent
