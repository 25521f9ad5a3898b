#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "agent/options/Options.h"
#include "agent/options/ServiceArguments.h"

namespace QosAgent {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

std::variant<Options, ExitStatus> parsed(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "qos-agent");
    return parseOptions(static_cast<int>(arguments.size()), arguments.data());
}
Options options(const std::vector<const char*>& arguments) {
    return std::get<Options>(parsed(arguments));
}
/// The line that a command line is refused with.
std::string refusalOf(const std::vector<const char*>& arguments) {
    CaptureStderr();
    EXPECT_TRUE(std::holds_alternative<ExitStatus>(parsed(arguments)));
    return GetCapturedStderr();
}

TEST(ServiceArgumentsTest, asksForNoServiceByItself) {
    const ServiceOptions given = options({"--record", "r", "a.jsonl"}).service;
    EXPECT_EQ(given.record, "r");
    EXPECT_FALSE(given.isService());
    EXPECT_TRUE(given.doors.empty());
}

TEST(ServiceArgumentsTest, letsAServicePrintNothingAtTheEndUnlessAsked) {
    EXPECT_EQ(options({"--listen", "s"}).output, OutputFormat::none);
    EXPECT_EQ(options({"--listen", "s", "--output", "table"}).output, OutputFormat::table);
    EXPECT_EQ(options({"--connect", "s"}).output, OutputFormat::openconfig);
}

TEST(ServiceArgumentsTest, handsADoorItsOwnOptionsAndNoOthers) {
    const ServiceOptions given = options({"--tls-key", "k", "--gnmi", "[::1]:0", "--gnmi-insecure",
                                          "--http", ":80", "--http-open"})
                                     .service;
    ASSERT_EQ(given.doors.size(), 2u);
    EXPECT_EQ(given.doors[0].option, "--gnmi");
    EXPECT_EQ(given.doors[0].library.file, std::string("libqos-agent-gnmi.so"));
    EXPECT_EQ(given.doors[0].library.package, std::string("qos-agent-gnmi"));
    EXPECT_EQ(given.doors[0].options,
              (DoorOptions{{"gnmi", "[::1]:0"}, {"tls-key", "k"}, {"gnmi-insecure", ""}}));
    EXPECT_EQ(given.doors[1].option, "--http");
    EXPECT_EQ(given.doors[1].options, (DoorOptions{{"http", ":80"}, {"http-open", ""}}));
    EXPECT_TRUE(given.isService());
}

TEST(ServiceArgumentsTest, findsTheStoreByItsAddress) {
    const auto package = [](const char* url) {
        return std::string(options({"--store", url}).service.store->library.package);
    };
    EXPECT_FALSE(options({"--store", "lmdb:/x"}).service.isService());
    EXPECT_EQ(package("lmdb:/var/lib/x"), "qos-agent-lmdb");
    for (const char* url : {"redis://h/0?name=n", "rediss://h?name=n", "redis+unix:///s?name=n"})
        EXPECT_EQ(package(url), "qos-agent-redis");
    EXPECT_EQ(refusalOf({"--store", "file:x"}),
              "qos-agent: --store: expected lmdb:DIR or redis://HOST:PORT/DB?name=NAME, found "
              "\"file:x\"\n");
}

TEST(ServiceArgumentsTest, refusesOptionsOfADoorThatIsNotAskedFor) {
    EXPECT_EQ(refusalOf({"--tls-cert", "c"}), "qos-agent: --tls-cert: needs --gnmi\n");
    EXPECT_EQ(refusalOf({"--http-open"}), "qos-agent: --http-open: needs --http\n");
    EXPECT_EQ(refusalOf({"--apply-documents"}), "qos-agent: --apply-documents: needs --store\n");
}

TEST(ServiceArgumentsTest, refusesWhatAClientCannotDo) {
    EXPECT_EQ(refusalOf({"--connect", "s", "a.json"}),
              "qos-agent: --connect: takes change streams, and no documents\n");
    for (const std::string option :
         {"--plugin", "--toggle-dir", "--trace-file", "--listen", "--record", "--gnmi", "--http"})
        EXPECT_EQ(refusalOf({"--connect", "s", option.c_str(), "/"}),
                  "qos-agent: --connect: cannot be combined with " + option + '\n');
}

TEST(ServiceArgumentsTest, refusesValuesThatAreMissingOrTwice) {
    EXPECT_EQ(refusalOf({"--gnmi"}), "qos-agent: \"--gnmi\" needs an ADDRESS\n");
    EXPECT_EQ(refusalOf({"--listen", "a", "--listen", "b"}),
              "qos-agent: \"--listen\" is given more than once\n");
}

}  // namespace
}  // namespace QosAgent
