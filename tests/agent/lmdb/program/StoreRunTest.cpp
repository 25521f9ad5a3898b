#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <random>

#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/SocketClient.h"

namespace QosAgent {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string kPassedOver =
    "qos-agent: warning: documents were passed over, as the store holds a database; "
    "--apply-documents applies them\n";
const std::string kDatabase = "{\"print\":\"database\"}\n";

std::string classMap(const std::string& name) {
    return R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus/)" + name +
           R"(/match/matchIpAccessGroup","value":""})";
}

/// The program with a store in a folder of the test's own.
class StoreRunTest : public ProgramTest {
protected:
    std::string url() const { return "lmdb:" + path("store"); }
    std::string socket() const { return path("socket"); }
    static std::string configuration(const std::string& classifier, unsigned dscp) {
        return documentOf({{}, {{classifier, "", {{"T", {dscp}}}}}, {}});
    }
    Ended runStored(std::vector<std::string> arguments, const std::string& input = "") {
        arguments.insert(arguments.begin(), {"--store", url(), "--output", "none"});
        return run(arguments, input);
    }
    std::unique_ptr<Process> serve() {
        std::filesystem::remove(socket());
        auto service = std::make_unique<Process>(std::vector<std::string>{
            program(), "--store", url(), "--listen", socket(), "--trace-file", "/dev/null"});
        EXPECT_EQ(service->errLine(), "qos-agent: listening on " + socket());
        return service;
    }
    static Ended stop(Process& service) {
        service.signal(SIGTERM);
        return service.end();
    }
};

TEST_F(StoreRunTest, publishesNothingForEqualStateAfterARestart) {
    const std::string document = file("c.json", configuration("C", 46));
    const Ended first = runStored({"--follow=json", document, "-"}, kDatabase);
    EXPECT_EQ(first.status, 0);
    EXPECT_THAT(first.out, HasSubstr("C/terms/term/T"));
    const std::string database = first.out.substr(first.out.rfind("\n", first.out.size() - 2) + 1);
    EXPECT_EQ(runStored({"--follow=json", "-"}, kDatabase), (Ended{0, database, ""}));
}

TEST_F(StoreRunTest, passesDocumentsOverWhereTheStoreHoldsSomething) {
    const std::string c = file("c.json", configuration("C", 46));
    const std::string d = file("d.json", configuration("D", 8));
    const Ended first = runStored({c, "-"}, kDatabase);
    EXPECT_EQ(runStored({d, "-"}, kDatabase), (Ended{0, first.out, kPassedOver}));
}

TEST_F(StoreRunTest, appliesDocumentsAllTheSameIfToldTo) {
    runStored({file("c.json", configuration("C", 46))});
    const std::string d = file("d.json", configuration("D", 8));
    const Ended applied =
        runStored({"--apply-documents", d, "-"}, "{\"print\":\"configuration\"}\n");
    EXPECT_EQ(applied, (Ended{0, configuration("D", 8) + "\n", ""}));
}

TEST_F(StoreRunTest, keepsTheConfigurationAsItWasGiven) {
    const std::string document =
        R"({"openconfig-qos:qos":{"unknown":[1,{"x":null}],"classifiers":{"classifier":[)"
        R"({"name":"z","config":{"name":"z"}},{"name":"a","config":{"name":"a"},"more":{}}]}}})";
    runStored({"-"}, "{\"openconfig\":" + document + "}\n");
    EXPECT_EQ(runStored({"-"}, "{\"print\":\"configuration\"}\n"), (Ended{0, document + "\n", ""}));
}

TEST_F(StoreRunTest, removesWhatIsLeftOfTheStateByThePlugInsOwnRules) {
    runStored({"-"}, classMap("gone") + "\n" + classMap("there") + "\n");
    const std::string path = "qos/openconfig/state/classifiers/classifier/gone";
    const Ended gone = runStored(
        {"--follow=json", "-"},
        R"({"delete":"qos/status/cmapTypeStatus/mapQos/cmapStatus/gone"})" + std::string("\n"));
    EXPECT_EQ(gone, (Ended{0, R"({"delete":")" + path + "\"}\n", ""}));
}

TEST_F(StoreRunTest, refusesAStoreInUse) {
    const auto service = serve();
    EXPECT_EQ(
        runStored({}),
        (Ended{2, "", "qos-agent: --store " + path("store") + " is in use by another program\n"}));
}

TEST_F(StoreRunTest, refusesAFolderThatCannotBeWrittenTo) {
    file("store", "a file");
    EXPECT_EQ(runStored({}), (Ended{2, "",
                                    "qos-agent: --store " + path("store") +
                                        " cannot be written to: Not a directory\n"}));
}

TEST_F(StoreRunTest, refusesADamagedStoreAndLeavesItAlone) {
    runStored({"-"}, classMap("a") + "\n");
    file("store/data.mdb", "");
    const std::string refused =
        "qos-agent: --store " + path("store/data.mdb") + " is damaged: it is empty\n";
    EXPECT_EQ(runStored({}), (Ended{2, "", refused}));
    EXPECT_EQ(runStored({}), (Ended{2, "", refused}));
}

TEST_F(StoreRunTest, answersInOrder) {
    const auto service = serve();
    SocketClient client(socket());
    std::string lines;
    std::string expected;
    for (int i = 0; i < 200; ++i) {
        const std::string number = std::to_string(i);
        lines += classMap(number) + "\n{\"echo\":\"" + number + "\"}\nx\n";
        expected += "# " + number + '\n';
        expected += R"({"refused":{"line":)" + std::to_string(3 * i + 3) +
                    R"(,"column":1,"message":"expected a value, found 'x'"}})" + '\n';
    }
    EXPECT_TRUE(client.send(lines));
    client.closeSending();
    EXPECT_EQ(client.rest(), expected);
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(StoreRunTest, leavesNoGapBetweenAPrintAndWhatIsFollowed) {
    const auto service = serve();
    SocketClient client(socket());
    client.sendLine(classMap("a"));
    client.sendLine(R"({"print":"state"})");
    client.sendLine(R"({"follow":true})");
    client.sendLine(classMap("b"));
    client.sendLine(R"({"echo":"end"})");
    const std::string head = R"({"update":"qos/openconfig/state/classifiers/classifier/)";
    EXPECT_EQ(client.line(), R"({"classifier":{"a":{"state":{"name":"a","type":"IPV4"}}}})");
    EXPECT_THAT(client.line(), StartsWith(head + "b/state\""));
    EXPECT_EQ(client.line(), "# end");
}

/// The program is killed, and started anew.
class KilledServiceTest : public StoreRunTest {
protected:
    static std::string pair(const std::string& number) {
        return R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus","value":{"a)" + number +
               R"(":{"match":{"matchIpAccessGroup":""}},"b)" + number +
               R"(":{"match":{"matchIpAccessGroup":""}}}})";
    }
    /// Sends lines, and kills the program after some of their answers. Returns how many of all
    /// lines were answered.
    int answeredBefore(std::mt19937& random, int sent, int count) {
        const auto service = serve();
        SocketClient client(socket());
        std::string lines;
        for (int i = sent; i < sent + count; ++i)
            lines += pair(std::to_string(i)) + "\n{\"echo\":\"" + std::to_string(i) + "\"}\n";
        EXPECT_TRUE(client.send(lines));
        int answered = sent;
        for (auto more = random() % static_cast<unsigned>(count); more > 0; --more)
            EXPECT_EQ(client.line(), "# " + std::to_string(answered++));
        service->signal(SIGKILL);
        EXPECT_EQ(service->end().status, 128 + SIGKILL);
        return answered;
    }

    std::vector<bool> wasKept_;
};

TEST_F(KilledServiceTest, hasAllThatWasAnsweredAndNoHalf) {
    const char* const asked = std::getenv("QOS_KILLS");
    const int rounds = asked == nullptr ? 6 : std::atoi(asked);
    constexpr int kLines = 40;
    constexpr int kRoundsOfAStore = 8;
    std::mt19937 random(asked == nullptr ? 7 : std::random_device()());
    for (int round = 0; round < rounds; ++round) {
        if (round % kRoundsOfAStore == 0) std::filesystem::remove_all(path("store"));
        const int first = round * kLines;
        const int answered = answeredBefore(random, first, kLines);
        const std::string database = runStored({"--follow=json", "-"}, kDatabase).out;
        // Nothing is published: the kept state is that of the kept inputs.
        EXPECT_THAT(database, StartsWith("{\"qos/status\""));
        const auto has = [&](char letter, int number, const char* what) {
            return database.find('"' + (letter + std::to_string(number)) + what) !=
                   std::string::npos;
        };
        const int firstOfStore = first - round % kRoundsOfAStore * kLines;
        for (int i = firstOfStore; i < first + kLines; ++i) {
            const bool isKept = has('a', i, "\":{\"cmapName");
            EXPECT_EQ(has('b', i, "\":{\"cmapName"), isKept) << i;
            EXPECT_EQ(has('a', i, "\":{\"state"), isKept) << i;
            EXPECT_TRUE(isKept || i < first || i >= answered) << i;
            wasKept_.resize(static_cast<std::size_t>(first + kLines));
            EXPECT_TRUE(isKept || !wasKept_[static_cast<std::size_t>(i)]) << i;
            wasKept_[static_cast<std::size_t>(i)] = isKept;
        }
    }
}

/// Writes fail, as on a full disk, while files may not grow.
class FullDiskTest : public StoreRunTest {
protected:
    FullDiskTest() : before_(std::signal(SIGXFSZ, SIG_IGN)) {}
    ~FullDiskTest() override { std::signal(SIGXFSZ, before_); }
    static void limit(const Process& service, rlim_t bytes) {
        const rlimit limit{bytes, RLIM_INFINITY};
        EXPECT_EQ(::prlimit(service.pid(), RLIMIT_FSIZE, &limit, nullptr), 0);
    }

    void (*before_)(int);
};

TEST_F(FullDiskTest, refusesWhatCannotBeKeptAndGoesBackToWhatIs) {
    const auto service = serve();
    SocketClient client(socket());
    EXPECT_EQ(client.ask(classMap("kept")), "");
    const std::string kept = client.ask(R"({"print":"database"})");
    client.sendLine(R"({"follow":true})");
    limit(*service, 4096);
    const std::string path = "qos/openconfig/state/classifiers/classifier/lost";
    EXPECT_EQ(
        client.ask(classMap("lost")),
        R"({"update":")" + path + R"(/state","value":{"name":"lost","type":"IPV4"}})" + "\n" +
            R"({"refused":{"line":6,"column":1,"message":"the store failed: File too large"}})" +
            "\n" + R"({"delete":")" + path + "\"}\n");
    EXPECT_EQ(client.ask(R"({"print":"database"})"), kept);
    limit(*service, RLIM_INFINITY);
    EXPECT_THAT(client.ask(classMap("more")), HasSubstr("classifier/more/state"));
    const std::string after = client.ask(R"({"print":"database"})");
    service->signal(SIGKILL);
    EXPECT_EQ(service->end().err, "qos-agent: --store: File too large; back to what is kept\n");
    EXPECT_EQ(runStored({"-"}, kDatabase).out, after);
}

}  // namespace
}  // namespace QosAgent
