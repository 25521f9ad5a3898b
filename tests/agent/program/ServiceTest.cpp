#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <memory>
#include <regex>

#include "tests/agent/support/SocketClient.h"

namespace QosAgent {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string kTree = "qos/openconfig/state/classifiers/classifier/";

std::string classMap(const std::string& name) {
    return R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus/)" + name +
           R"(/match/matchIpAccessGroup","value":""})";
}
std::string noClassMap(const std::string& name) {
    return R"({"delete":"qos/status/cmapTypeStatus/mapQos/cmapStatus/)" + name + "\"}";
}
std::string created(const std::string& name) {
    return R"({"update":")" + kTree + name + R"(/state","value":{"name":")" + name +
           R"(","type":"IPV4"}})";
}
std::string removed(const std::string& name) {
    return R"({"delete":")" + kTree + name + "\"}";
}
std::string refused(int line, int column, const std::string& message) {
    return R"({"refused":{"line":)" + std::to_string(line) + R"(,"column":)" +
           std::to_string(column) + R"(,"message":")" + message + "\"}}";
}

/// Runs the program as a service on a socket in a folder of its own.
class ServiceTest : public ProgramTest {
protected:
    std::string socket() const { return path("socket"); }
    std::unique_ptr<Process> start(std::vector<std::string> arguments = {}) {
        std::vector<std::string> command{program(), "--listen", socket()};
        // An echo is a trace line, too.
        if (!std::ranges::count(arguments, "--trace-file"))
            command.insert(command.end(), {"--trace-file", "/dev/null"});
        command.insert(command.end(), arguments.begin(), arguments.end());
        auto service = std::make_unique<Process>(command);
        EXPECT_EQ(service->errLine(), "qos-agent: listening on " + socket());
        return service;
    }
    static Ended stop(Process& service) {
        service.signal(SIGTERM);
        return service.end();
    }
};

TEST_F(ServiceTest, goesOnUntilItIsToldToStop) {
    for (const int signal : {SIGTERM, SIGINT}) {
        const auto service = start({"-"});
        service->write(R"({"echo":"read"})"
                       "\n");
        EXPECT_EQ(service->outLine(), "# read");
        service->closeIn();
        EXPECT_EQ(SocketClient(socket()).ask(R"({"print":"state"})"), "{}\n");
        service->signal(signal);
        EXPECT_EQ(service->end(), (Ended{0, "", ""}));
        EXPECT_FALSE(std::filesystem::exists(socket()));
        EXPECT_FALSE(std::filesystem::exists(socket() + ".lock"));
    }
}

TEST_F(ServiceTest, letsNobodyElseIn) {
    const auto service = start();
    struct stat there {};
    ASSERT_EQ(::stat(socket().c_str(), &there), 0);
    EXPECT_EQ(there.st_mode & 0777U, 0600U);
    EXPECT_EQ(stop(*service).status, 0);
}

TEST_F(ServiceTest, printsAtTheEndWhatItWasAskedFor) {
    const auto service = start({"--output", "table"});
    SocketClient(socket()).ask(classMap("edge"));
    EXPECT_EQ(stop(*service), (Ended{0,
                                     "CLASSIFIER  TYPE  TERM  MATCH  TARGET GROUP\n"
                                     "edge        IPV4  -     -      -\n",
                                     ""}));
}

TEST_F(ServiceTest, answersEachConnectionByItself) {
    const auto service = start();
    SocketClient one(socket());
    SocketClient other(socket());
    EXPECT_EQ(one.ask(classMap("a")), "");
    EXPECT_EQ(other.ask(R"({"print":"state"})"),
              R"({"classifier":{"a":{"state":{"name":"a","type":"IPV4"}}}})"
              "\n");
    EXPECT_EQ(one.ask(R"({"print":"table"})"),
              "CLASSIFIER  TYPE  TERM  MATCH  TARGET GROUP\na           IPV4  -     -      -\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, answersRefusalsAndWarningsAndGoesOn) {
    const auto service = start();
    SocketClient client(socket());
    EXPECT_EQ(client.ask(R"( {"delte":1})"),
              refused(1, 3, R"(unknown operation \"delte\", did you mean \"delete\"?)") + '\n');
    EXPECT_EQ(client.ask(R"({"openconfig":{"x:y":1}})"),
              R"({"warning":{"line":3,"column":16,"message":"passed over: x:y"}})"
              "\n");
    EXPECT_EQ(client.ask(R"({"print":"state"})"), "{}\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, answersAClientThatHasClosedItsSendingSide) {
    const auto service = start();
    SocketClient client(socket());
    client.send(R"({"echo":"a"})"
                "\n"
                R"({"print":"state"})");
    client.closeSending();
    EXPECT_EQ(client.rest(), "# a\n{}\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, appliesWhatAClientSentBeforeItVanished) {
    const auto service = start();
    {
        SocketClient client(socket());
        std::string lines;
        for (int i = 0; i < 2000; ++i)
            lines += classMap("c" + std::to_string(i)) + '\n' +
                     noClassMap("c" + std::to_string(i)) + '\n';
        client.send(lines + classMap("kept") + "\n{\"update\":\"qos/sta");
    }
    SocketClient other(socket());
    // The other's lines were sent before this one's.
    std::string state;
    for (int i = 0; i < 10'000 && !state.ends_with("\"kept\",\"type\":\"IPV4\"}}}}\n"); ++i)
        state = other.ask(R"({"print":"state"})");
    EXPECT_EQ(state, R"({"classifier":{"kept":{"state":{"name":"kept","type":"IPV4"}}}})"
                     "\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, tellsEachFollowerEachChange) {
    const auto service = start();
    SocketClient follower(socket());
    SocketClient editor(socket());
    EXPECT_EQ(follower.ask(R"({"follow":true})"), "");
    editor.sendLine(classMap("a"));
    editor.sendLine(noClassMap("a"));
    editor.sendLine(classMap("a"));
    EXPECT_EQ(follower.line(), created("a"));
    EXPECT_EQ(follower.line(), removed("a"));
    EXPECT_EQ(follower.line(), created("a"));
    EXPECT_EQ(follower.ask(classMap("b")), created("b") + '\n');
    EXPECT_EQ(follower.ask(R"({"follow":false})"), "");
    EXPECT_EQ(follower.ask(classMap("c")), "");
    EXPECT_EQ(editor.ask(R"({"echo":"x"})"), "# x\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

/// The names of the classifiers that a follower's lines leave.
std::string left(const std::string& lines) {
    std::vector<std::string> names;
    std::istringstream text(lines);
    const std::regex update(R"re(.*"update":"[^"]*/classifier/([^/"]+)/state".*)re");
    const std::regex remove(R"re(.*"delete":"[^"]*/classifier/([^/"]+)".*)re");
    std::smatch match;
    for (std::string line; std::getline(text, line);) {
        if (std::regex_match(line, match, update) &&
            !std::count(names.begin(), names.end(), match[1]))
            names.push_back(match[1]);
        else if (std::regex_match(line, match, remove))
            std::erase(names, match[1]);
    }
    std::sort(names.begin(), names.end());
    std::string all;
    for (const std::string& name : names)
        all += name + ' ';
    return all;
}

TEST_F(ServiceTest, mergesForAFollowerThatDoesNotKeepUpAndNobodyWaits) {
    const auto service = start();
    SocketClient slow(socket());
    SocketClient editor(socket());
    slow.ask(R"({"follow":true})");
    std::string lines = classMap("always") + '\n';
    constexpr int kRounds = 4000;
    for (int i = 0; i < kRounds; ++i) {
        const std::string name = "brief" + std::to_string(i);
        lines += classMap(name) + '\n' + noClassMap(name) + '\n';
        lines += noClassMap("toggled") + '\n' + classMap("toggled") + '\n';
    }
    editor.send(lines);
    EXPECT_EQ(editor.ask(R"({"echo":"applied"})"), "# applied\n");
    const std::string told = slow.ask(R"({"echo":"here"})");
    EXPECT_THAT(told, EndsWith("# here\n"));
    EXPECT_EQ(left(told), "always toggled ");
    EXPECT_LT(std::count(told.begin(), told.end(), '\n'), kRounds * 3);
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, closesAClientThatTakesNoneOfItsAnswers) {
    std::string document = R"({"qos/status":{"cmapTypeStatus":{"mapQos":{"cmapStatus":{)";
    for (int i = 0; i < 20'000; ++i)
        document +=
            (i ? ",\"c" : "\"c") + std::to_string(i) + R"(":{"match":{"matchIpAccessGroup":""}})";
    const auto service = start({file("d.json", document + "}}}}}")});
    SocketClient greedy(socket());
    bool isOpen = true;
    for (int i = 0; i < 1000 && isOpen; ++i)
        isOpen = greedy.send(R"({"print":"database"})"
                             "\n");
    for (int i = 0; i < 100'000 && isOpen; ++i)
        isOpen = greedy.send(R"({"print":"database"})"
                             "\n");
    EXPECT_FALSE(isOpen);
    EXPECT_EQ(SocketClient(socket()).ask(R"({"echo":"x"})"), "# x\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, answersWithMoreThanItLetsWait) {
    std::string document =
        R"({"qos/status":{"cmapTypeStatus":{"mapQos":{"cmapStatus":{"c":{"match":{)";
    const std::string text(60'000, 'x');
    for (int i = 10; i < 310; ++i)
        document += (i > 10 ? ",\"" : "\"") + std::to_string(i) + "\":\"" + text + '"';
    const auto service = start({file("d.json", document + "}}}}}}}")});
    SocketClient client(socket());
    EXPECT_GT(client.ask(R"({"print":"database"})").size(), std::size_t{17} << 20);
    EXPECT_GT(client.ask(R"({"print":"database"})").size(), std::size_t{17} << 20);
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, survivesRubbish) {
    const auto service = start();
    SocketClient rubbish(socket());
    std::string bytes(1'000'000, '\0');
    unsigned value = 1;
    for (char& byte : bytes)
        byte = static_cast<char>((value = value * 1103515245 + 12345) >> 16);
    rubbish.send(bytes);
    rubbish.closeSending();
    EXPECT_THAT(rubbish.rest(), StartsWith(R"({"refused":{"line":1,)"));
    EXPECT_EQ(SocketClient(socket()).ask(R"({"print":"state"})"), "{}\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, takes256ConnectionsAndTurnsTheOthersAway) {
    const auto service = start();
    std::vector<SocketClient> clients;
    std::size_t turnedAway = 0;
    for (int i = 0; i < 1000; ++i)
        clients.emplace_back(socket());
    for (std::size_t i = 0; i < clients.size(); ++i) {
        clients[i].send(R"({"echo":"x"})"
                        "\n");
        const std::string line = clients[i].line();
        if (line == "# x") continue;
        EXPECT_EQ(line, refused(1, 1, "too many connections are open: at most 256"));
        EXPECT_EQ(clients[i].rest(), "");
        ++turnedAway;
    }
    EXPECT_EQ(turnedAway, clients.size() - 256);
    clients.clear();
    // Places of clients that left are free again.
    std::string answer;
    for (int i = 0; i < 1000 && answer != "# y\n"; ++i) {
        SocketClient again(socket());
        again.send(R"({"echo":"y"})"
                   "\n");
        answer = again.line() + '\n';
    }
    EXPECT_EQ(answer, "# y\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, givesTheMemoryOfALongLineBack) {
    // The address sanitizer, too.
    ::setenv("ASAN_OPTIONS", "quarantine_size_mb=1:thread_local_quarantine_size_kb=1", 1);
    const auto service = start();
    ::unsetenv("ASAN_OPTIONS");
    const auto resident = [&] {
        std::ifstream status("/proc/" + std::to_string(service->pid()) + "/statm");
        std::size_t all = 0;
        std::size_t pages = 0;
        status >> all >> pages;
        return pages * 4096;
    };
    SocketClient client(socket());
    client.ask(R"({"echo":"warm"})");
    const std::size_t before = resident();
    std::string line = R"({"openconfig":{)";
    for (int i = 0; i < 500; ++i)
        line +=
            (i ? ",\"x:" : "\"x:") + std::to_string(i) + R"(":")" + std::string(60'000, 'y') + '"';
    client.send(line + "}}\n");
    // The agent keeps a configuration whole, so an empty one must take the place of the long one.
    client.send("{\"openconfig\":{}}\n");
    EXPECT_THAT(client.ask(R"({"echo":"done"})"), EndsWith("# done\n"));
    EXPECT_LT(resident(), before + (std::size_t{16} << 20));
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, refusesALineOfMoreThan256MiB) {
    const auto service = start();
    SocketClient client(socket());
    const std::string mebibyte(1 << 20, 'x');
    for (int i = 0; i < 257; ++i)
        ASSERT_TRUE(client.send(mebibyte));
    client.sendLine("");
    EXPECT_EQ(client.line(), refused(1, 1, "text longer than 268435456 bytes"));
    EXPECT_EQ(client.ask(R"({"echo":"x"})"), "# x\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, limitsTheMemoryOfLinesThatDoNotEnd) {
    const auto service = start();
    std::vector<SocketClient> clients;
    for (int i = 0; i < 3; ++i)
        clients.emplace_back(socket());
    const std::string mebibyte(1 << 20, ' ');
    for (int i = 0; i < 200; ++i)
        for (SocketClient& client : clients)
            client.send(mebibyte);
    const std::string why =
        refused(1, 1, "too much memory is taken by lines that have not ended") + '\n';
    std::size_t closed = 0;
    for (SocketClient& client : clients) {
        client.send("\n{\"echo\":\"x\"}\n");
        const std::string line = client.line() + '\n';
        if (line == why)
            ++closed;
        else
            EXPECT_EQ(line, "# x\n");
    }
    EXPECT_EQ(closed, 1u);
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, finishesTheRequestInWhichItIsToldToStop) {
    const auto service = start({"--output", "entities"});
    SocketClient client(socket());
    std::string line = R"({"update":"qos/status/cmapTypeStatus/mapQos/cmapStatus","value":{)";
    for (int i = 0; i < 30'000; ++i)
        line +=
            (i ? ",\"c" : "\"c") + std::to_string(i) + R"(":{"match":{"matchIpAccessGroup":""}})";
    client.send(line +
                "}}\n"
                R"({"echo":"never begun"})"
                "\n");
    const Ended ended = stop(*service);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.err, "");
    const bool hasFirst = ended.out.find("\"c0\"") != std::string::npos;
    const bool hasLast = ended.out.find("\"c29999\"") != std::string::npos;
    EXPECT_EQ(hasFirst, hasLast);
}

TEST_F(ServiceTest, readsItsInputBesideTheSockets) {
    const std::string first = file("first.jsonl", classMap("first") + '\n' + R"({"echo":"one"})");
    const auto service = start({first, "-"});
    EXPECT_EQ(service->outLine(), "# one");
    SocketClient client(socket());
    EXPECT_EQ(client.ask(R"({"print":"state"})"),
              R"({"classifier":{"first":{"state":{"name":"first","type":"IPV4"}}}})"
              "\n");
    service->write(R"({"follow":true})"
                   "\n"
                   R"({"echo":"two"})"
                   "\n");
    EXPECT_EQ(service->outLine(), "# two");
    client.sendLine(classMap("second"));
    EXPECT_EQ(service->outLine(), created("second"));
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, waitsForNoWriterOfAPipe) {
    const std::string pipe = path("pipe.jsonl");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto service = start({pipe});
    EXPECT_EQ(SocketClient(socket()).ask(R"({"echo":"x"})"), "# x\n");
    std::ofstream(pipe) << R"({"echo":"from the pipe"})" << std::endl;
    EXPECT_EQ(service->outLine(), "# from the pipe");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, endsWhereALineOfItsInputIsRefused) {
    const std::string bad = file("bad.jsonl", "{}\n");
    {
        const auto service = start({bad});
        const Ended ended = service->end();
        EXPECT_EQ(ended.status, 2);
        EXPECT_THAT(ended.err, StartsWith(bad + ":1:1: no operation"));
    }
    const auto service = start({"--keep-going", bad});
    EXPECT_THAT(service->errLine(), StartsWith(bad + ":1:1: no operation"));
    EXPECT_EQ(stop(*service), (Ended{1, "", ""}));
}

TEST_F(ServiceTest, doesNotCountRefusalsOnSockets) {
    const auto service = start();
    EXPECT_THAT(SocketClient(socket()).ask("[]"), StartsWith(R"({"refused")"));
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, refusesASocketThatIsServed) {
    const auto service = start();
    EXPECT_EQ(
        run({"--listen", socket()}),
        (Ended{2, "", socket() + ": cannot be listened on: another program is serving it\n"}));
    EXPECT_EQ(SocketClient(socket()).ask(R"({"echo":"x"})"), "# x\n");
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, replacesASocketThatWasAbandoned) {
    start()->signal(SIGKILL);
    EXPECT_EQ(stop(*start()), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, leavesAloneWhatIsNoSocket) {
    file("socket", "precious");
    EXPECT_EQ(
        run({"--listen", socket()}),
        (Ended{2, "",
               socket() + ": cannot be listened on: something else than a socket is there\n"}));
    EXPECT_EQ(read("socket"), "precious");
    const std::string nowhere = path("no/socket");
    EXPECT_EQ(run({"--listen", nowhere}),
              (Ended{2, "", nowhere + ": cannot be listened on: No such file or directory\n"}));
    const std::string longPath = path(std::string(200, 'x'));
    EXPECT_EQ(
        run({"--listen", longPath}),
        (Ended{2, "", longPath + ": cannot be listened on: the path is too long for a socket\n"}));
}

TEST_F(ServiceTest, namesThePackageOfADoorThatIsNotInstalled) {
    // A copy of the program alone, as if nothing else were installed.
    const std::string alone = path("bin");
    std::filesystem::create_directory(alone);
    for (const char* name :
         {"qos-agent", "libqos-agent-loop.so", "libQosOpenConfig.so", "libqosplatform.so.0"})
        std::filesystem::copy(std::filesystem::path(program()).parent_path() / name, alone);
    const auto said = [&](const std::vector<std::string>& arguments) {
        std::vector<std::string> command{alone + "/qos-agent"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return Process(command).end();
    };
    const auto missing = [](const std::string& option, const std::string& package) {
        return Ended{2, "",
                     "qos-agent: " + option + " needs the package " + package +
                         ", which is not installed\n"};
    };
    EXPECT_EQ(said({"--gnmi", "127.0.0.1:0", "--gnmi-insecure"}),
              missing("--gnmi", "qos-agent-gnmi"));
    EXPECT_EQ(said({"--http", "127.0.0.1:0"}), missing("--http", "qos-agent-http"));
    EXPECT_EQ(said({"--store", "lmdb:/x"}), missing("--store", "qos-agent-lmdb"));
    EXPECT_EQ(said({"--store", "redis://localhost/0?name=a"}),
              missing("--store", "qos-agent-redis"));
}

TEST_F(ServiceTest, recordsWhatIsAppliedSoThatItReplays) {
    const std::string record = path("record.jsonl");
    const std::string input =
        file("in.jsonl", classMap("a") + "\n# a comment\n" + R"({"echo":"read"})" + '\n');
    const auto service = start({"--record", record, "--output", "entities", input});
    EXPECT_EQ(service->outLine(), "# read");
    SocketClient client(socket());
    client.ask(classMap("b"));
    client.ask("{}");
    client.ask(R"({"print":"state"})");
    client.ask(classMap("b"));
    const Ended ended = stop(*service);
    const std::string time = "# \\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{6}Z ";
    const std::string recorded = read("record.jsonl");
    std::vector<std::string> lines;
    std::istringstream text(recorded);
    for (std::string line; std::getline(text, line);)
        lines.push_back(std::regex_replace(line, std::regex(time), "# TIME "));
    EXPECT_EQ(lines, (std::vector<std::string>{"# TIME " + input, classMap("a"), "# TIME socket",
                                               classMap("b"), "# TIME socket", classMap("b")}));
    struct stat there {};
    ASSERT_EQ(::stat(record.c_str(), &there), 0);
    EXPECT_EQ(there.st_mode & 0777U, 0600U);
    EXPECT_EQ(run({"--output", "entities", record}), (Ended{0, ended.out, ""}));
}

TEST_F(ServiceTest, recordsWithoutAServiceToo) {
    const std::string record = path("record.jsonl");
    EXPECT_EQ(run({"--record", record, "--output", "none", "-"}, classMap("a")).status, 0);
    EXPECT_THAT(read("record.jsonl"), EndsWith("Z -\n" + classMap("a") + '\n'));
    EXPECT_EQ(run({"--record", path("no/record")}),
              (Ended{2, "", path("no/record") + ": No such file or directory\n"}));
    EXPECT_EQ(run({"--record", "/dev/full", "--output", "none", "-"},
                  classMap("a") + '\n' + classMap("b") + '\n'),
              (Ended{0, "", "/dev/full: No space left on device\n"}));
}

TEST_F(ServiceTest, opensItsFilesAnewWhenToldTo) {
    const std::string record = path("record");
    const std::string trace = path("trace");
    const auto service = start({"--record", record, "--trace-file", trace});
    SocketClient client(socket());
    client.ask(classMap("a"));
    std::filesystem::rename(record, record + ".1");
    std::filesystem::rename(trace, trace + ".1");
    service->signal(SIGHUP);
    while (!std::filesystem::exists(trace))
        client.ask(R"({"echo":"waiting"})");
    client.ask(classMap("b"));
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
    EXPECT_THAT(read("record.1"), EndsWith(classMap("a") + '\n'));
    EXPECT_THAT(read("record"), EndsWith("socket\n" + classMap("b") + '\n'));
    EXPECT_THAT(read("trace"), HasSubstr("# end of answer\n"));
}

/// How often the threads of a process have gone to sleep.
std::size_t sleepsOf(pid_t pid) {
    std::size_t sleeps = 0;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
        std::ifstream status(task.path() / "status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("voluntary_ctxt_switches:")) sleeps += std::stoul(line.substr(24));
    }
    return sleeps;
}

TEST_F(ServiceTest, makesNoWakeUpsWhileItIsIdle) {
    const auto service = start({"-"});
    SocketClient client(socket());
    client.ask(R"({"follow":true})");
    bool isIdle = false;
    for (int i = 0; i < 10 && !isIdle; ++i) {
        const std::size_t before = sleepsOf(service->pid());
        pollfd nothing{client.fd(), POLLIN, 0};
        ASSERT_EQ(::poll(&nothing, 1, 1500), 0);
        isIdle = sleepsOf(service->pid()) == before;
    }
    EXPECT_TRUE(isIdle);
    EXPECT_EQ(stop(*service), (Ended{0, "", ""}));
}

TEST_F(ServiceTest, tellsTheServiceManagerHowItFares) {
    const std::string name = path("manager");
    const int manager = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const auto address = unixAddress(name);
    ASSERT_EQ(::bind(manager, reinterpret_cast<const sockaddr*>(&*address), sizeof *address), 0);
    const auto told = [manager] {
        std::array<char, 200> text{};
        pollfd waited{manager, POLLIN, 0};
        if (::poll(&waited, 1, kPatience) <= 0) return std::string("nothing");
        const ssize_t count = ::recv(manager, text.data(), text.size(), 0);
        return std::string(text.data(), static_cast<std::size_t>(count));
    };
    ::setenv("NOTIFY_SOCKET", name.c_str(), 1);
    ::setenv("WATCHDOG_USEC", "200000", 1);
    const auto service = start();
    ::unsetenv("NOTIFY_SOCKET");
    ::unsetenv("WATCHDOG_USEC");
    EXPECT_EQ(told(), "READY=1");
    EXPECT_EQ(told(), "WATCHDOG=1");
    EXPECT_EQ(told(), "WATCHDOG=1");
    service->signal(SIGTERM);
    std::string last = told();
    while (last == "WATCHDOG=1")
        last = told();
    EXPECT_EQ(last, "STOPPING=1");
    EXPECT_EQ(service->end(), (Ended{0, "", ""}));
    ::close(manager);
}

}  // namespace
}  // namespace QosAgent
