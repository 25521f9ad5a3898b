#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "agent/streams/LineReader.h"

namespace QosAgent {
namespace {

class LineReaderTest : public ::testing::Test {
protected:
    LineReaderTest() { EXPECT_EQ(::pipe(ends.data()), 0); }
    ~LineReaderTest() override {
        ::close(ends[0]);
        finish();
    }
    void write(const std::string& text) {
        EXPECT_EQ(::write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void finish() {
        if (ends[1] >= 0) ::close(ends[1]);
        ends[1] = -1;
    }
    std::vector<std::string> rest(LineReader& reader) {
        std::vector<std::string> lines;
        while (reader.next())
            lines.push_back(std::to_string(reader.number()) + ':' + std::string(reader.line()));
        return lines;
    }

    std::array<int, 2> ends{-1, -1};
    StopSignals stop;
};

using Lines = std::vector<std::string>;

TEST_F(LineReaderTest, endsLinesAtEitherLineEnd) {
    write("a\r\n\nb\r\r\nc\n");
    finish();
    LineReader reader(ends[0], 10, stop);
    EXPECT_EQ(rest(reader), (Lines{"1:a", "2:", "3:b\r", "4:c"}));
    EXPECT_EQ(reader.error(), 0);
}

TEST_F(LineReaderTest, readsALastLineWithoutEnd) {
    write("a\nb");
    finish();
    LineReader reader(ends[0], 10, stop);
    EXPECT_EQ(rest(reader), (Lines{"1:a", "2:b"}));
}

TEST_F(LineReaderTest, findsNoLineInAnEmptyFile) {
    finish();
    LineReader reader(ends[0], 10, stop);
    EXPECT_FALSE(reader.next());
}

TEST_F(LineReaderTest, givesALineAsSoonAsItIsThere) {
    LineReader reader(ends[0], 10, stop);
    write("first\nsec");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), "first");
    write("ond\n");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), "second");
}

TEST_F(LineReaderTest, joinsALineOfSeveralReads) {
    const std::string line(50'000, 'x');
    LineReader reader(ends[0], 200'000, stop);
    write(line);
    write("y\n");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), line + 'y');
}

TEST_F(LineReaderTest, keepsOfATooLongLineOnlyWhatShowsThat) {
    write(std::string(1000, 'x') + "\nnext\n");
    finish();
    LineReader reader(ends[0], 10, stop);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), std::string(12, 'x'));
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), "next");
    EXPECT_EQ(reader.number(), 2u);
}

TEST_F(LineReaderTest, countsNoLineEndIntoTheLength) {
    write("0123456789\r\n");
    finish();
    LineReader reader(ends[0], 10, stop);
    EXPECT_EQ(rest(reader), Lines{"1:0123456789"});
}

TEST_F(LineReaderTest, stopsAtASignalBetweenLines) {
    write("a\nb\n");
    LineReader reader(ends[0], 10, stop);
    ASSERT_TRUE(reader.next());
    std::raise(SIGTERM);
    EXPECT_FALSE(reader.next());
    EXPECT_EQ(reader.error(), 0);
}

TEST_F(LineReaderTest, tellsOfAnError) {
    const int folder = ::open("/", O_RDONLY | O_CLOEXEC);
    LineReader reader(folder, 10, stop);
    EXPECT_FALSE(reader.next());
    EXPECT_EQ(reader.error(), EISDIR);
    ::close(folder);
}

}  // namespace
}  // namespace QosAgent
