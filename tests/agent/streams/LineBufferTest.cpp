#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "agent/streams/LineBuffer.h"

namespace QosAgent {
namespace {

using Texts = std::vector<std::string>;

/// The lines of a text that is read in pieces of so many bytes.
Texts linesOf(const std::string& text, std::size_t piece, std::size_t mostBytes = 100) {
    LineBuffer buffer(mostBytes, piece);
    Texts lines;
    std::size_t at = 0;
    for (;;) {
        while (buffer.next())
            lines.emplace_back(buffer.line());
        if (at == text.size()) break;
        const std::size_t count = std::min(piece, text.size() - at);
        std::copy_n(text.data() + at, count, buffer.room().data());
        buffer.filled(count);
        at += count;
    }
    if (buffer.last()) lines.emplace_back(buffer.line());
    EXPECT_FALSE(buffer.last());
    EXPECT_EQ(buffer.number(), lines.size());
    return lines;
}

TEST(LineBufferTest, splitsTextHoweverItIsCut) {
    for (const std::size_t piece : {1, 2, 3, 100}) {
        EXPECT_EQ(linesOf("a\n\nbc\r\nd", piece), (Texts{"a", "", "bc", "d"}));
        EXPECT_EQ(linesOf("a\nb\n", piece), (Texts{"a", "b"}));
        EXPECT_EQ(linesOf("", piece), Texts{});
        EXPECT_EQ(linesOf("\r", piece), Texts{""});
    }
}

TEST(LineBufferTest, keepsNoMoreOfALineThanShowsThatItIsTooLong) {
    EXPECT_EQ(linesOf("123456789\n123\r\nx\n", 2, 3), (Texts{"12345", "123", "x"}));
}

TEST(LineBufferTest, tellsHowMuchItHoldsOfALineThatHasNotEnded) {
    LineBuffer buffer(100, 8);
    std::copy_n("ab\ncde", 6, buffer.room().data());
    buffer.filled(6);
    EXPECT_TRUE(buffer.next());
    EXPECT_EQ(buffer.heldBytes(), 0u);
    EXPECT_EQ(buffer.take(), "ab");
    EXPECT_FALSE(buffer.next());
    EXPECT_EQ(buffer.heldBytes(), 3u);
}

}  // namespace
}  // namespace QosAgent
