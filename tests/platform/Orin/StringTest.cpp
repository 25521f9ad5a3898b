#include <gtest/gtest.h>

#include <functional>
#include <latch>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/Orin/String.h"
#include "tests/support/Allocations.h"

namespace Orin {
namespace {

using namespace std::string_view_literals;

TEST(StringTest, isEmptyByDefaultAndOwnsNothing) {
    const std::size_t before = TestSupport::allocations();
    const String none;
    const String empty("");
    EXPECT_EQ(TestSupport::allocations(), before);
    EXPECT_TRUE(none.empty());
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(none, empty);
    EXPECT_EQ(none.size(), 0u);
    EXPECT_EQ(none.view(), ""sv);
}

TEST(StringTest, keepsItsText) {
    const std::string longText(3'000, 'x');
    for (const std::string_view text :
         {"a"sv, "abc"sv, "abcd"sv, "abcde"sv, std::string_view(longText)}) {
        const String kept(text);
        EXPECT_EQ(kept.view(), text);
        EXPECT_EQ(kept.size(), text.size());
        EXPECT_FALSE(kept.empty());
    }
}

TEST(StringTest, keepsNul) {
    const String text("a\0b"sv);
    EXPECT_EQ(text.size(), 3u);
    EXPECT_EQ(text.view(), "a\0b"sv);
    EXPECT_NE(text, String("a"));
    EXPECT_NE(text, String("a\0c"sv));
}

TEST(StringTest, equalsTextOfTheSameBytes) {
    EXPECT_EQ(String("voice"), String("voice"));
    EXPECT_EQ(String("voice"), "voice"sv);
    EXPECT_EQ(String("voice"), "voice");
    EXPECT_NE(String("voice"), String("video"));
    EXPECT_NE(String("voice"), String("voic"));
    EXPECT_NE(String("voice"), String());
    EXPECT_NE(String("voice"), ""sv);
}

TEST(StringTest, isOrderedByUnsignedBytes) {
    EXPECT_LT(String(), String("a"));
    EXPECT_LT(String("a"), String("b"));
    EXPECT_LT(String("a"), String("aa"));
    EXPECT_LT(String("z"), String("\xC3\xA4"));
    EXPECT_GT(String("b"), String("abc"));
    EXPECT_EQ(String("a") <=> String("a"), std::strong_ordering::equal);
}

TEST(StringTest, sharesItsTextWithItsCopies) {
    const String text("shared by its copies");
    const std::size_t before = TestSupport::allocations();
    const String copy = text;  // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ(TestSupport::allocations(), before);
    EXPECT_EQ(copy.view().data(), text.view().data());
}

TEST(StringTest, isEmptyAfterAMove) {
    String text("gone");
    const String taken = std::move(text);
    EXPECT_TRUE(text.empty());  // NOLINT(bugprone-use-after-move): empty is what is promised
    EXPECT_EQ(taken, "gone");
}

TEST(StringTest, survivesItsAssignmentToItself) {
    String text("same");
    const String& itself = text;
    text = itself;
    EXPECT_EQ(text, "same");
}

TEST(StringTest, freesItsTextWithTheLastCopy) {
    const std::ptrdiff_t before = TestSupport::outstandingBlocks();
    {
        String text("text");
        const String copy = text;
        text = String("another");
        EXPECT_EQ(TestSupport::outstandingBlocks(), before + 2);
    }
    EXPECT_EQ(TestSupport::outstandingBlocks(), before);
}

TEST(StringTest, hashesLikeAnyOtherFormOfItsText) {
    const std::string all = "a text that is longer than two words of the machine";
    for (std::size_t size = 0; size <= all.size(); ++size) {
        const std::string_view text = std::string_view(all).substr(0, size);
        EXPECT_EQ(String(text).hash(), hashOf(text));
        EXPECT_EQ(std::hash<String>()(String(text)), String(text).hash());
    }
}

TEST(StringTest, hashesByEveryByteAndTheSize) {
    std::unordered_set<std::uint32_t> hashes;
    std::string text(20, 'a');
    hashes.insert(hashOf(text));
    for (std::size_t at = 0; at < text.size(); ++at) {
        text[at] = 'b';
        hashes.insert(hashOf(text));
        text[at] = 'a';
    }
    for (std::size_t zeros = 0; zeros <= 20; ++zeros)
        hashes.insert(hashOf(std::string(zeros, '\0')));
    EXPECT_EQ(hashes.size(), 1 + 20 + 21u);
}

/// Two texts with the same hash, which differ in each process.
std::pair<String, String> textsThatCollide() {
    std::unordered_map<std::uint32_t, std::string> texts;
    for (unsigned number = 0;; ++number) {
        const std::string text = "term-" + std::to_string(number);
        const auto [found, isNew] = texts.emplace(hashOf(text), text);
        if (!isNew) return {String(found->second), String(text)};
    }
}

TEST(StringTest, tellsTextsWithTheSameHashApart) {
    const auto [one, other] = textsThatCollide();
    EXPECT_NE(one, other);
    const String shared = String::shared(one);
    EXPECT_EQ(shared, one);
    EXPECT_NE(String::shared(other), shared);
}

/// With a single multiplication for each word, these would collide whatever the secret is.
TEST(StringTest, spreadsTheHashesOfTextsThatDifferInTheHighestBitsOfTheirWords) {
    constexpr std::uint64_t kTop = std::uint64_t{1} << 63;
    std::unordered_set<std::uint32_t> hashes;
    for (std::uint64_t number = 0; number != 1000; ++number) {
        const std::uint64_t words[2][2] = {{number, number}, {number ^ kTop, number ^ kTop >> 32}};
        for (const auto& text : words) {
            hashes.insert(hashOf({reinterpret_cast<const char*>(text), sizeof(text)}));
            const std::uint64_t both[2] = {text[0], text[1] ^ kTop};
            hashes.insert(hashOf({reinterpret_cast<const char*>(both), sizeof(both)}));
        }
    }
    EXPECT_GT(hashes.size(), 3990U);
}

TEST(StringTest, findsEachSharedTextWhileItIsOwned) {
    std::mt19937 random(7);
    std::vector<String> owned(400);
    for (unsigned step = 0; step != 40'000; ++step) {
        const std::size_t at = random() % owned.size();
        const std::string text = "shared-" + std::to_string(at);
        if (!owned[at].empty()) {
            ASSERT_EQ(String::shared(text).view().data(), owned[at].view().data()) << text;
        }
        owned[at] = random() % 2 == 0 ? String() : String::shared(text);
    }
}

TEST(StringTest, refusesTextOfTwoGibibytes) {
    EXPECT_THROW(String(std::string_view("x", std::size_t{1} << 31)), std::length_error);
}

TEST(StringTest, spreadsTheHashesOfNumberedNames) {
    std::unordered_set<std::uint32_t> hashes;
    std::set<std::uint32_t> lowBits;
    for (int i = 0; i < 10'000; ++i) {
        const std::uint32_t hash = String(std::string_view("acl-" + std::to_string(i))).hash();
        hashes.insert(hash);
        lowBits.insert(hash & 0xFFF);
    }
    EXPECT_GT(hashes.size(), 9'980u);
    EXPECT_GT(lowBits.size(), 3'500u) << "of 4096; random values reach about 3740";
}

TEST(StringTest, isWrittenAsItsText) {
    std::ostringstream out;
    out << String("one") << String() << String("two");
    EXPECT_EQ(out.str(), "onetwo");
}

/// The text's length, and how often such a note was made and destroyed.
class LengthNote : public TextNote {
public:
    explicit LengthNote(std::size_t size) : length(size) { ++made; }
    ~LengthNote() override { ++destroyed; }
    static std::unique_ptr<LengthNote> of(std::string_view text) {
        return std::make_unique<LengthNote>(text.size());
    }

    const std::size_t length;
    static inline std::atomic<int> made = 0;
    static inline std::atomic<int> destroyed = 0;
};

class StringNoteTest : public ::testing::Test {
protected:
    StringNoteTest() { LengthNote::made = LengthNote::destroyed = 0; }
};

TEST_F(StringNoteTest, isMadeAtTheFirstCallFromTheText) {
    const String text("four");
    EXPECT_EQ(LengthNote::made, 0);
    EXPECT_EQ(text.note(LengthNote::of).length, 4u);
    EXPECT_EQ(LengthNote::made, 1);
}

TEST_F(StringNoteTest, isMadeOnceForAllCopies) {
    const String text("four");
    const String copy = text;  // NOLINT(performance-unnecessary-copy-initialization)
    const LengthNote& note = text.note(LengthNote::of);
    EXPECT_EQ(&copy.note(LengthNote::of), &note);
    EXPECT_EQ(&text.note(LengthNote::of), &note);
    EXPECT_EQ(LengthNote::made, 1);
}

TEST_F(StringNoteTest, isTheFirstOneWhereItIsMadeWithinTheMaking) {
    // `note` takes a plain function, which can reach nothing but statics.
    static const String* asked = nullptr;
    static const LengthNote* inner = nullptr;
    const String text("four");
    asked = &text;
    const LengthNote& outer = text.note<LengthNote>([](std::string_view view) {
        inner = &asked->note(LengthNote::of);
        return LengthNote::of(view);
    });
    EXPECT_EQ(&outer, inner);
    EXPECT_EQ(LengthNote::made, 2);
    EXPECT_EQ(LengthNote::destroyed, 1);
}

TEST_F(StringNoteTest, livesAsLongAsAnyCopy) {
    String text("four");
    String copy = text;
    const LengthNote& note = text.note(LengthNote::of);
    text = String();
    EXPECT_EQ(note.length, 4u);
    EXPECT_EQ(LengthNote::destroyed, 0);
    copy = String();
    EXPECT_EQ(LengthNote::destroyed, 1);
}

TEST_F(StringNoteTest, isOneEvenWhenSeveralThreadsAskAtOnce) {
    ThreadControl::severalThreadsActiveIs(true);
    for (int i = 0; i < 500; ++i) {
        const String text("raced for");
        std::latch begin(2);
        const LengthNote* theirs = nullptr;
        std::thread other([&] {
            begin.arrive_and_wait();
            theirs = &text.note(LengthNote::of);
        });
        begin.arrive_and_wait();
        const LengthNote* ours = &text.note(LengthNote::of);
        other.join();
        ASSERT_EQ(ours, theirs);
    }
    ThreadControl::severalThreadsActiveIs(false);
    EXPECT_EQ(LengthNote::made, LengthNote::destroyed.load());
}

}  // namespace
}  // namespace Orin
