#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include "platform/Vex/Trace.h"
#include "tests/support/Allocations.h"
#include "tests/support/Harbour.h"
#include "tests/support/TraceCapture.h"

namespace Vex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using TestSupport::TraceCapture;

constinit TraceHandle handle("Harbour", false);
constexpr TracePoint kPoint{"tests/Harbour", 42, "handleShip", "void handleShip(const String&)"};

class TraceTest : public ::testing::Test {
protected:
    /// The body of a line that consists of one piece.
    template <class Piece>
    static std::string bodyOf(const Piece& piece) {
        const TraceCapture capture;
        writeTrace<PassedToTrace<Piece>>(handle, kPoint, piece);
        const std::string prefix = "Harbour/8 tests/Harbour:42 handleShip ";
        const std::string line = capture.rawLines().at(0);
        const std::size_t at = line.find(prefix);
        EXPECT_NE(at, std::string::npos) << line;
        return line.substr(at + prefix.size());
    }
    static std::string pointer(const void* at) {
        std::ostringstream out;
        out << at;
        return out.str();
    }

    TraceRegistration registration{handle};
};

TEST_F(TraceTest, writesHandleLevelPlaceAndFunctionThenTheSignatureAndThePieces) {
    const TraceCapture capture;
    trace(handle, kPoint, ", name = ", Orin::String("Anna"));
    EXPECT_THAT(capture.lines(), ElementsAre("Harbour/8 tests/Harbour:42 handleShip "
                                             "void handleShip(const String&), name = Anna"));
}

TEST_F(TraceTest, writesTheSubjectFirst) {
    const TraceCapture capture;
    const int machine = 0;
    traceOf(static_cast<const void*>(&machine), handle, kPoint);
    EXPECT_THAT(capture.rawLines(),
                ElementsAre(::testing::EndsWith(" handleShip " + pointer(&machine) +
                                                "void handleShip(const String&)")));
}

TEST_F(TraceTest, beginsWithTheTimeInUniversalTimeToTheMicrosecond) {
    const TraceCapture capture;
    trace(handle, kPoint);
    trace(handle, kPoint);
    ASSERT_EQ(capture.rawLines().size(), 2u);
    const std::string time = capture.rawLines()[0].substr(0, 27);
    EXPECT_THAT(time, MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}"
                                   "\\.[0-9]{6}Z"));
    EXPECT_LE(time, capture.rawLines()[1].substr(0, 27));
}

/// Early in a second, where its fraction begins with zeros.
TEST_F(TraceTest, writesAllSixDigitsOfAFraction) {
    using namespace std::chrono;
    const TraceCapture capture;
    std::this_thread::sleep_until(ceil<seconds>(system_clock::now()));
    trace(handle, kPoint);
    EXPECT_THAT(capture.rawLines().at(0), MatchesRegex("[^.]*\\.[0-9]{6}Z .*"));
}

TEST_F(TraceTest, tellsTheTimeThatItIs) {
    using namespace std::chrono;
    const auto secondsNow = [] { return system_clock::to_time_t(system_clock::now()); };
    const TraceCapture capture;
    const std::time_t before = secondsNow();
    trace(handle, kPoint);
    std::tm utc{};
    ASSERT_NE(strptime(capture.rawLines().at(0).c_str(), "%Y-%m-%dT%H:%M:%S.", &utc), nullptr);
    EXPECT_GE(timegm(&utc), before);
    EXPECT_LE(timegm(&utc), secondsNow());
}

TEST_F(TraceTest, writesValuesInTheirForms) {
    EXPECT_EQ(bodyOf(true), "true");
    EXPECT_EQ(bodyOf(false), "false");
    EXPECT_EQ(bodyOf(std::uint32_t{4'294'967'295}), "4294967295");
    EXPECT_EQ(bodyOf("a piece\n"), "a piece\n");
    EXPECT_EQ(bodyOf(std::string_view("b\\piece")), "b\\piece");
}

TEST_F(TraceTest, writesNamesOfEnumeratorsAndTheNumbersOfOthers) {
    EXPECT_EQ(bodyOf(Harbour::Signal::danger), "danger");
    EXPECT_EQ(bodyOf(Harbour::Signal{77}), "77");
}

TEST_F(TraceTest, writesAddresses) {
    const int object = 0;
    EXPECT_EQ(bodyOf(static_cast<const void*>(&object)), pointer(&object));
    EXPECT_EQ(bodyOf(static_cast<const void*>(nullptr)), "0x0");
}

TEST_F(TraceTest, writesEntitiesByTypeAndAddress) {
    const auto tide = Harbour::Tide::create();
    EXPECT_EQ(bodyOf(*tide), "Harbour::Tide@" + pointer(tide.get()));
}

TEST_F(TraceTest, keepsInsertedTextsOnOneLine) {
    using namespace std::string_view_literals;
    EXPECT_EQ(bodyOf(Orin::String("\a\b\t\n\v\f\r\\"sv)), R"(\a\b\t\n\v\f\r\\)");
    EXPECT_EQ(bodyOf(Orin::String("\0\1\x1B\x1F\x7F"sv)), R"(\000\001\033\037\177)");
    EXPECT_EQ(bodyOf(Orin::String("a \"b\" '\xC3\xA4' ~"sv)), "a \"b\" '\xC3\xA4' ~");
}

TEST_F(TraceTest, isSilentWhileItsLevelIsDisabled) {
    const TraceCapture capture("Harbour", 7);
    trace(handle, kPoint);
    EXPECT_THAT(capture.lines(), IsEmpty());
    EXPECT_TRUE(handle.isEnabled(7));
    EXPECT_FALSE(handle.isEnabled(8));
}

/// A piece that counts how often it was written.
struct Counted {
    static inline int written = 0;
    friend TraceHelper& operator<<(TraceHelper& line, const Counted&) {
        ++written;
        return line;
    }
};

TEST_F(TraceTest, buildsNoTextWhileItIsDisabled) {
    Counted::written = 0;
    const std::size_t before = TestSupport::allocations();
    trace(handle, kPoint, Counted());
    traceOf(Counted(), handle, kPoint, Counted());
    EXPECT_EQ(TestSupport::allocations(), before);
    EXPECT_EQ(Counted::written, 0);
    const TraceCapture capture;
    trace(handle, kPoint, Counted());
    EXPECT_EQ(Counted::written, 1);
}

TEST_F(TraceTest, goesNowhereWithoutASink) {
    Counted::written = 0;
    traceSinkIs(nullptr);
    handle.enabledLevelsIs(9);
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    trace(handle, kPoint, Counted());
    handle.enabledLevelsIs(0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(Counted::written, 1) << "the line was composed";
    const TraceCapture capture;
    EXPECT_THAT(capture.rawLines(), IsEmpty()) << "it was not kept for the next sink";
}

class TraceLevelsTest : public ::testing::Test {
protected:
    ~TraceLevelsTest() override { traceLevelsIs("*", 0); }
    /// The highest enabled level plus one.
    static unsigned levelsOf(const TraceHandle& asked) {
        unsigned levels = 0;
        while (levels < kTraceLevels && asked.isEnabled(levels))
            ++levels;
        return levels;
    }

    TraceHandle pilot{"Pilot", false};
    TraceHandle sailor{"Sailor", false};
};

TEST_F(TraceLevelsTest, areAllOrNoneFromTheStart) {
    EXPECT_EQ(levelsOf(pilot), 0u);
    EXPECT_EQ(levelsOf(TraceHandle("on", true)), 10u);
}

TEST_F(TraceLevelsTest, reachTheHandlesOfTheirName) {
    const TraceRegistration first(pilot);
    const TraceRegistration second(sailor);
    traceLevelsIs("Pilot", 9);
    EXPECT_EQ(levelsOf(pilot), 9u);
    EXPECT_EQ(levelsOf(sailor), 0u);
}

TEST_F(TraceLevelsTest, reachHandlesThatAreRegisteredLater) {
    traceLevelsIs("Pilot", 9);
    const TraceRegistration registration(pilot);
    EXPECT_EQ(levelsOf(pilot), 9u);
}

TEST_F(TraceLevelsTest, reachAllHandlesByAStar) {
    const TraceRegistration first(pilot);
    traceLevelsIs("*", 4);
    const TraceRegistration second(sailor);
    EXPECT_EQ(levelsOf(pilot), 4u);
    EXPECT_EQ(levelsOf(sailor), 4u);
}

TEST_F(TraceLevelsTest, areThoseOfTheLatestSetting) {
    traceLevelsIs("Pilot", 9);
    traceLevelsIs("*", 2);
    traceLevelsIs("Sailor", 5);
    const TraceRegistration first(pilot);
    const TraceRegistration second(sailor);
    EXPECT_EQ(levelsOf(pilot), 2u);
    EXPECT_EQ(levelsOf(sailor), 5u);
    traceLevelsIs("Sailor", 0);
    EXPECT_EQ(levelsOf(sailor), 0u);
}

TEST_F(TraceLevelsTest, reachEveryHandleOfOneName) {
    TraceHandle twin("Pilot", false);
    const TraceRegistration first(pilot);
    const TraceRegistration second(twin);
    traceLevelsIs("Pilot", 3);
    EXPECT_EQ(levelsOf(pilot), 3u);
    EXPECT_EQ(levelsOf(twin), 3u);
}

TEST_F(TraceLevelsTest, areForHandlesThatAreListedByName) {
    TraceHandle twin("Pilot", false);
    const std::vector<std::string_view> before = traceHandleNames();
    {
        const TraceRegistration first(sailor);
        const TraceRegistration second(pilot);
        const TraceRegistration third(twin);
        EXPECT_EQ(traceHandleNames(), (std::vector<std::string_view>{"Pilot", "Sailor"}));
    }
    EXPECT_EQ(traceHandleNames(), before);
}

TEST_F(TraceLevelsTest, leaveAHandleAloneThatIsNoLongerRegistered) {
    { const TraceRegistration registration(pilot); }
    traceLevelsIs("Pilot", 9);
    EXPECT_EQ(levelsOf(pilot), 0u);
}

}  // namespace
}  // namespace Vex
