#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "tests/agent/support/SocketClient.h"

namespace QosAgent {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

const char* const kConfiguration = R"({"openconfig-qos:qos": {
  "forwarding-groups": {"forwarding-group": [{"name": "EF", "config": {"name": "EF"}}]},
  "classifiers": {"classifier": [{"name": "edge", "config": {"name": "edge", "type": "IPV4"},
    "terms": {"term": [{"id": "voice", "config": {"id": "voice"},
      "conditions": {"ipv4": {"config": {"dscp": 46}}},
      "actions": {"config": {"target-group": "EF"}}}]}}]}}})";

std::string classMap(const std::string& name) {
    return R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus/)" + name +
           R"(/match/matchIpAccessGroup","value":""})";
}
std::string created(const std::string& name) {
    return R"({"update":"qos/openconfig/state/classifiers/classifier/)" + name +
           R"(/state","value":{"name":")" + name + R"(","type":"IPV4"}})";
}

/// Runs the program as a client of itself.
class ConnectTest : public ProgramTest {
protected:
    ConnectTest()
        : service_({program(), "--listen", socket(), "--trace-file", "/dev/null",
                    file("d.json", kConfiguration)}) {
        EXPECT_EQ(service_.errLine(), "qos-agent: listening on " + socket());
    }
    ~ConnectTest() override { service_.signal(SIGTERM); }

    std::string socket() const { return path("socket"); }
    std::vector<std::string> connecting(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--connect", socket()});
        return arguments;
    }
    Ended connected(const std::vector<std::string>& arguments, const std::string& input = "") {
        return run(connecting(arguments), input);
    }
    Process& service() { return service_; }

private:
    Process service_;
};

TEST_F(ConnectTest, showsWhatTheServiceHoldsAsTheServiceItselfWould) {
    for (const char* format : {"table", "openconfig", "entities", "none"})
        EXPECT_EQ(connected({"--machines", "--output", format}),
                  run({"--machines", "--output", format, path("d.json")}))
            << format;
}

TEST_F(ConnectTest, sendsItsStreamsAndPrintsWhatTheyPrint) {
    const std::string stream =
        file("s.jsonl", "# a comment\n\n" + classMap("a") + "\n{\"echo\":\"x\"}\n");
    const std::string print = R"({"print":"state"})";
    const Ended hosted =
        run({"--output", "table", "--trace-file", "/dev/null", path("d.json"), stream, "-"}, print);
    EXPECT_EQ(hosted.status, 0);
    EXPECT_THAT(hosted.out, HasSubstr("# x\n{"));
    EXPECT_EQ(connected({"--output", "table", stream, "-"}, print), hosted);
}

TEST_F(ConnectTest, refusesWithThePlacesOfItsOwnFiles) {
    const std::string slips = file("slips.jsonl",
                                   "# first\n{\"delte\":1}\n{\"echo\":\"between\"}\n"
                                   "{\"openconfig\":{\"x:y\":1}}\n [\n");
    const std::vector<std::string> options{"--output", "none", "--keep-going", slips};
    std::vector<std::string> hosting = options;
    hosting.insert(hosting.end(), {"--trace-file", "/dev/null"});
    const Ended hosted = run(hosting);
    EXPECT_EQ(hosted.status, 1);
    EXPECT_EQ(connected(options), hosted);
    const Ended stopped = connected({"--output", "none", slips});
    EXPECT_EQ(stopped.status, 2);
    EXPECT_EQ(stopped.out, "");
    EXPECT_THAT(stopped.err, EndsWith("did you mean \"delete\"?\n"));
}

TEST_F(ConnectTest, followsUntilItIsStopped) {
    Process client([&] {
        auto command = connecting({"--follow", "--output", "none"});
        command.insert(command.begin(), program());
        return command;
    }());
    SocketClient editor(socket());
    // It follows once it says so: until then its own changes are not to be seen.
    std::string line;
    for (int i = 0; line.empty(); ++i) {
        editor.ask(classMap("c" + std::to_string(i)));
        pollfd shown{client.outFd(), POLLIN, 0};
        if (::poll(&shown, 1, 1) > 0) line = client.outLine();
    }
    EXPECT_THAT(line, HasSubstr(R"("update":"qos/openconfig/state/classifiers/classifier/c)"));
    client.signal(SIGINT);
    EXPECT_EQ(client.end().status, 0);
}

TEST_F(ConnectTest, followsWhatItsOwnLinesChange) {
    EXPECT_EQ(
        connected({"--follow", "--output", "none", "-"}, classMap("a") + '\n' + classMap("b")),
        (Ended{0, created("a") + '\n' + created("b") + '\n', ""}));
}

TEST_F(ConnectTest, saysInOneLineWhyItHasNoService) {
    const std::string nowhere = path("nowhere");
    EXPECT_EQ(run({"--connect", nowhere}),
              (Ended{2, "", nowhere + ": No such file or directory\n"}));
    EXPECT_EQ(connected({path("d.json")}),
              (Ended{2, "", "qos-agent: --connect: takes change streams, and no documents\n"}));
    EXPECT_EQ(connected({"--listen", "x"}),
              (Ended{2, "", "qos-agent: --connect: cannot be combined with --listen\n"}));
}

TEST_F(ConnectTest, saysThatTheServiceHasGone) {
    Process client([&] {
        auto command = connecting({"--output", "none", "-"});
        command.insert(command.begin(), program());
        return command;
    }());
    client.write("{\"echo\":\"here\"}\n");
    EXPECT_EQ(client.outLine(), "# here");
    service().signal(SIGTERM);
    EXPECT_EQ(client.end(), (Ended{2, "", socket() + ": the service closed the connection\n"}));
}

TEST_F(ConnectTest, sendsALineAsLongAsADocument) {
    std::string line =
        R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus/c/match","value":{)";
    const std::string text(60'000, 'x');
    for (int i = 10; i < 500; ++i)
        line += (i > 10 ? ",\"" : "\"") + std::to_string(i) + "\":\"" + text + '"';
    EXPECT_EQ(connected({"--output", "none", "-"}, line + "}}\n{\"echo\":\"x\"}\n"),
              (Ended{0, "# x\n", ""}));
}

}  // namespace
}  // namespace QosAgent
