#include <gtest/gtest.h>

#include <string>

#include "agent/database/Interner.h"

namespace QosAgent {
namespace {

const char* bytesOf(const Orin::String& text) {
    return text.view().data();
}

TEST(InternerTest, givesOutOneTextForEqualTexts) {
    Interner interner;
    const Orin::String first = interner("voice");
    EXPECT_EQ(bytesOf(interner(std::string("voi") + "ce")), bytesOf(first));
    EXPECT_NE(bytesOf(interner("data")), bytesOf(first));
}

TEST(InternerTest, keepsTheEmptyText) {
    Interner interner;
    EXPECT_EQ(interner(""), Orin::String());
}

TEST(InternerTest, remembersATextForAGenerationAfterItsLastUse) {
    Interner interner;
    const Orin::String voice = interner("voice");
    for (std::size_t i = 0; i < Interner::kGeneration; ++i)
        interner(std::to_string(i));
    EXPECT_EQ(bytesOf(interner("voice")), bytesOf(voice));
    for (std::size_t i = 0; i < 2 * Interner::kGeneration; ++i)
        interner(std::to_string(i) + "x");
    EXPECT_NE(bytesOf(interner("voice")), bytesOf(voice));
}

}  // namespace
}  // namespace QosAgent
