#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <numeric>

#include "platform/Qos/Status.h"
#include "tests/fuzz/Corpus.h"
#ifdef QOS_FUZZ_GNMI
#include "tests/fuzz/GnmiEntries.h"
#endif
#include "tests/fuzz/Property.h"

namespace QosAgent {
namespace {

/// Each byte deleted, and at each place a byte inserted and put for another: all bytes, or by turns
/// one of those that mean something to what is read.
class ByteEdits {
public:
    enum class Form { quick, whole };
    explicit ByteEdits(Form form) : form_(form) {}

    template <class Visit>
    void of(const std::string& text, Visit visit) const {
        for (std::size_t at = 0; at <= text.size(); ++at) {
            const std::string before = text.substr(0, at);
            const std::string from = text.substr(at);
            const std::string behind = text.substr(std::min(at + 1, text.size()));
            if (!from.empty()) visit(before + behind);
            for (const char byte : bytesFor(at)) {
                visit(before + byte + from);
                if (!from.empty()) visit(before + byte + behind);
            }
        }
    }

private:
    std::string bytesFor(std::size_t at) const {
        constexpr std::string_view kMeaningful("\"0\0}\n\xff,", 7);
        if (form_ == Form::quick) return {kMeaningful[at % kMeaningful.size()]};
        std::string all(256, '\0');
        std::iota(all.begin(), all.end(), '\0');
        return all;
    }

    Form form_;
};

class EntriesTest : public ::testing::TestWithParam<FuzzEntry> {
protected:
    ~EntriesTest() override { fuzzEnd(); }

    /// Why the entry does not take these bytes; empty if it does.
    static std::string brokenBy(const std::string& bytes) {
        try {
            GetParam().run(bytes);
        } catch (const std::exception& broken) {
            return broken.what();
        }
        return {};
    }
};

TEST_P(EntriesTest, holdForTheCorpus) {
    const auto files = corpusOf(GetParam());
    ASSERT_GT(files.size(), 2u);
    for (const CorpusFile& file : files)
        EXPECT_EQ(brokenBy(file.bytes), "") << file.name;
}

TEST_P(EntriesTest, holdForEveryByteThatIsWrong) {
    const auto files = corpusOf(GetParam(), "good");
    ASSERT_FALSE(files.empty());
    const ByteEdits edits(std::getenv("QOS_ALL_BYTES") == nullptr ? ByteEdits::Form::quick
                                                                  : ByteEdits::Form::whole);
    for (const CorpusFile& file : files)
        edits.of(file.bytes, [&](const std::string& bytes) {
            ASSERT_EQ(brokenBy(bytes), "") << file.name << " became\n" << bytes;
        });
}

INSTANTIATE_TEST_SUITE_P(All, EntriesTest, ::testing::ValuesIn(kFuzzEntries),
                         [](const auto& entry) { return std::string(entry.param.name); });

#ifdef QOS_FUZZ_GNMI
INSTANTIATE_TEST_SUITE_P(Gnmi, EntriesTest, ::testing::ValuesIn(kGnmiFuzzEntries),
                         [](const auto& entry) { return std::string(entry.param.name); });
#endif

TEST(ByteEditsTest, areAllThatDifferInOneByte) {
    std::vector<std::string> edits;
    ByteEdits(ByteEdits::Form::whole).of("ab", [&](const std::string& text) {
        edits.push_back(text);
    });
    EXPECT_EQ(edits.size(), 2u + 3 * 256 + 2 * 256);
    for (const char* edit : {"a", "b", "xab", "axb", "abx", "xb", "ax"})
        EXPECT_THAT(edits, ::testing::Contains(edit));
}

TEST(ByteEditsTest, insertAndReplaceByOneByteEachWhenShort) {
    std::vector<std::string> edits;
    ByteEdits(ByteEdits::Form::quick).of("ab", [&](const std::string& text) {
        edits.push_back(text);
    });
    EXPECT_THAT(edits, ::testing::ElementsAre("b", "\"ab", "\"b", "a", "a0b", "a0",
                                              std::string("ab\0", 3)));
}

class PropertyTest : public ::testing::Test {
protected:
    static constexpr const char* kCmap = "qos/status/cmapTypeStatus/mapQos/cmapStatus/c";
    bool isAllOrNothing(const Load& load) { return requireAllOrNothing(db, "text", load); }
    TextDatabase db;
};

TEST_F(PropertyTest, seesWhatIsRefusedAndChangesSomething) {
    const auto refuse = [](auto) { return Fault{4, "no"}; };
    EXPECT_FALSE(isAllOrNothing(refuse));
    EXPECT_THROW(isAllOrNothing([this](auto) {
                     EXPECT_EQ(db.update(kCmap, "{}"), "");
                     return Fault{4, "no"};
                 }),
                 BrokenProperty);
}

TEST_F(PropertyTest, seesAFaultBehindTheText) {
    EXPECT_THROW(isAllOrNothing([](auto) { return Fault{5, "no"}; }), BrokenProperty);
}

TEST_F(PropertyTest, seesAFaultThatIsNotOneLine) {
    for (const char* message : {"", "a\nb", "a\rb", "a\x7f"})
        EXPECT_THROW(requireFault({0, message}, "text"), BrokenProperty) << message;
    EXPECT_THROW(requireFault({0, std::string(1000, 'x')}, "text"), BrokenProperty);
}

TEST_F(PropertyTest, seesWhatDoesNotReadBack) {
    EXPECT_EQ(db.update(kCmap, "{}"), "");
    EXPECT_NO_THROW(requireReadsBack(db));
    // No document can say this.
    const auto status = Vex::entityCast<Qos::Status>(db.database.subtreeAt("qos/status")->root);
    const auto nameless = Qos::ClassMapTypeStatus::create(Qos::MapType::mapPbr);
    nameless->cmapStatusIs(Qos::ClassMapStatus::create(""));
    status->cmapTypeStatusIs(nameless);
    EXPECT_THROW(requireReadsBack(db), BrokenProperty);
}

}  // namespace
}  // namespace QosAgent
