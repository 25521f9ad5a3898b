#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/Orin/Node.h"
#include "platform/Orin/Ptr.h"
#include "platform/Orin/String.h"
#include "platform/Orin/ThreadControl.h"
#include "platform/OvSlab/Slab.h"
#include "platform/Vex/Trace.h"

/// The parts of the runtime that several threads may use at once, under the thread sanitizer.
namespace {

using Orin::Ptr;
using Orin::String;
using Orin::ThreadControl;

#if defined(__SANITIZE_THREAD__)
constexpr bool kSeesRaces = true;
#elif defined(__has_feature)
constexpr bool kSeesRaces = __has_feature(thread_sanitizer);
#else
constexpr bool kSeesRaces = false;
#endif

/// 2000, or what the environment variable `QOS_RACES_ROUNDS` says.
int rounds() {
    const char* rounds = std::getenv("QOS_RACES_ROUNDS");
    return rounds == nullptr ? 2'000 : std::atoi(rounds);
}

/// Runs `act` with the number of each round in several threads at once.
template <class Act>
void together(Act act) {
    std::atomic<int> waiting{4};
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads)
        thread = std::thread([&] {
            --waiting;
            while (waiting != 0)
                std::this_thread::yield();
            for (int round = 0; round < rounds(); ++round)
                act(round);
        });
    for (std::thread& thread : threads)
        thread.join();
}

class RacesTest : public ::testing::Test {
protected:
    RacesTest() { ThreadControl::severalThreadsActiveIs(true); }
    ~RacesTest() override { ThreadControl::severalThreadsActiveIs(false); }
};

class Buoy final : public Orin::Node, public OvSlab::Slabbed<Buoy> {
public:
    static constexpr std::string_view kTypeName = "Toy::Buoy";
    explicit Buoy(int number) : number(number) { ++made; }
    ~Buoy() override { ++gone; }
    const int number;
    static inline std::atomic<int> made{0};
    static inline std::atomic<int> gone{0};
};

Ptr<Buoy> newBuoy(int number) {
    return Ptr<Buoy>::adopt(new Buoy(number));
}

TEST_F(RacesTest, areNotAmongOwnersOfOneNode) {
    const auto buoy = newBuoy(7);
    together([&](int) {
        const Ptr<Buoy> first = buoy;
        const Ptr<const Buoy> second = first;
        ASSERT_EQ(second->number, 7);
    });
    EXPECT_EQ(buoy->userCount(), 1u);
}

TEST_F(RacesTest, areNotWhereTheLastOwnerDestroysTheNode) {
    Buoy::made = Buoy::gone = 0;
    std::mutex mutex;
    std::vector<Ptr<Buoy>> shared(8);
    together([&](int round) {
        Ptr<Buoy> taken;
        {
            const std::lock_guard lock(mutex);
            Ptr<Buoy>& place = shared[static_cast<std::size_t>(round) % shared.size()];
            taken = place ? place : newBuoy(round);
            place = round % 3 == 0 ? nullptr : taken;
        }
        ASSERT_GE(taken->number, 0);
    });
    shared.clear();
    EXPECT_EQ(Buoy::gone, Buoy::made);
}

TEST_F(RacesTest, areNotInTheSlab) {
    together([](int round) {
        std::array<Ptr<Buoy>, 5> held;
        for (Ptr<Buoy>& buoy : held)
            buoy = newBuoy(round);
        for (const Ptr<Buoy>& buoy : held)
            ASSERT_EQ(buoy->number, round);
    });
    EXPECT_EQ(OvSlab::Tracker::find("Toy::Buoy")->live(), 0u);
}

TEST_F(RacesTest, areNotAmongCopiesOfOneText) {
    const String text("a text of several threads");
    together([&](int) {
        const String copy = text;  // NOLINT(performance-unnecessary-copy-initialization)
        ASSERT_EQ(copy.hash(), text.hash());
    });
    EXPECT_EQ(text, "a text of several threads");
}

TEST_F(RacesTest, areNotAmongSharedTexts) {
    together([](int round) {
        const std::string name = "name " + std::to_string(round % 3);
        const String shared = String::shared(name);
        const String again = String::shared(name);
        ASSERT_EQ(shared.view(), name);
        ASSERT_EQ(shared.view().data(), again.view().data());
    });
}

struct Length : Orin::TextNote {
    explicit Length(std::size_t l) : length(l) {}
    std::size_t length;
};

TEST_F(RacesTest, areNotWhereANoteIsMadeByAll) {
    std::vector<String> texts;
    for (int round = 0; round < rounds(); ++round)
        texts.emplace_back(std::string_view("text " + std::to_string(round)));
    const auto make = [](std::string_view text) { return std::make_unique<Length>(text.size()); };
    together([&](int round) {
        const String& text = texts[static_cast<std::size_t>(round)];
        ASSERT_EQ(text.note<Length>(make).length, text.size());
    });
}

constinit Vex::TraceHandle handle("RacesTest", false);

TEST_F(RacesTest, areNotAmongLinesOfOneHandle) {
    constexpr Vex::TracePoint point{"tests/memory", 1, "race", "void race()"};
    const Vex::TraceRegistration registration(handle);
    std::mutex mutex;
    int lines = 0;
    Vex::traceSinkIs([&](std::string_view) {
        const std::lock_guard lock(mutex);
        ++lines;
    });
    for (const unsigned levels : {0U, Vex::kTraceLevels}) {
        Vex::traceLevelsIs("RacesTest", levels);
        const String name("a name");
        together([&](int round) {
            Vex::trace(handle, point, ", name = ", name, static_cast<std::uint32_t>(round));
        });
        EXPECT_EQ(lines, levels == 0 ? 0 : 4 * rounds());
    }
    Vex::traceSinkIs(nullptr);
    Vex::traceLevelsIs("*", 0);
}

/// Without the flag a count is plain: the sanitizer has to see what that leads to.
TEST_F(RacesTest, areReportedWhereTheFlagWasForgotten) {
    if (!kSeesRaces) GTEST_SKIP() << "built without the thread sanitizer";
    ThreadControl::severalThreadsActiveIs(false);
    const auto raceAndEnd = [] {
        const auto buoy = newBuoy(7);
        together([&](int) { const Ptr<Buoy> copy = buoy; });
        std::exit(0);
    };
    EXPECT_DEATH(raceAndEnd(), "ThreadSanitizer: data race");
}

}  // namespace
