#include <gtest/gtest.h>

#include <ostream>

#include "agent/json/TextPlace.h"

namespace QosAgent {

void PrintTo(const TextPlace& place, std::ostream* out) {
    *out << place.line << ':' << place.column;
}

namespace {

TEST(TextPlaceTest, countsLinesAndColumnsFromOne) {
    EXPECT_EQ(placeOf("abc", 0), (TextPlace{1, 1}));
    EXPECT_EQ(placeOf("abc", 2), (TextPlace{1, 3}));
    EXPECT_EQ(placeOf("a\nbc\nd", 3), (TextPlace{2, 2}));
    EXPECT_EQ(placeOf("a\nbc\nd", 5), (TextPlace{3, 1}));
}

TEST(TextPlaceTest, countsALineEndToItsLine) {
    EXPECT_EQ(placeOf("a\nb", 1), (TextPlace{1, 2}));
    EXPECT_EQ(placeOf("\n\n", 0), (TextPlace{1, 1}));
    EXPECT_EQ(placeOf("\n\n", 1), (TextPlace{2, 1}));
}

TEST(TextPlaceTest, takesACarriageReturnForAnyByte) {
    EXPECT_EQ(placeOf("a\r\nb\rc", 5), (TextPlace{2, 3}));
}

TEST(TextPlaceTest, countsBytesNotCharacters) {
    EXPECT_EQ(placeOf("\xc3\xa4\xe2\x82\xac!", 5), (TextPlace{1, 6}));
}

TEST(TextPlaceTest, placesTheEndAfterTheLastByte) {
    EXPECT_EQ(placeOf("", 0), (TextPlace{1, 1}));
    EXPECT_EQ(placeOf("ab", 2), (TextPlace{1, 3}));
    EXPECT_EQ(placeOf("ab\n", 3), (TextPlace{2, 1}));
}

TEST(TextPlaceTest, takesAnOffsetPastTheEndForTheEnd) {
    EXPECT_EQ(placeOf("ab\ncd", 99), (TextPlace{2, 3}));
}

TEST(TextPlaceTest, goesOnFromAPlace) {
    EXPECT_EQ(placeAfter({3, 5}, ""), (TextPlace{3, 5}));
    EXPECT_EQ(placeAfter({3, 5}, "ab"), (TextPlace{3, 7}));
    EXPECT_EQ(placeAfter({3, 5}, "ab\n\nc"), (TextPlace{5, 2}));
}

}  // namespace
}  // namespace QosAgent
