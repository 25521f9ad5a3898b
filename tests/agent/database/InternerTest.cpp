#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

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

/// Tells whether the text that it was made for is still there.
struct Witness : Orin::TextNote {
    static inline int count = 0;
    Witness() { ++count; }
    ~Witness() override { --count; }
};

TEST(InternerTest, remembersATextForAGenerationAfterItsLastUse) {
    Interner interner;
    interner("voice").note<Witness>(+[](std::string_view) { return std::make_unique<Witness>(); });
    for (std::size_t i = 0; i < Interner::kGeneration; ++i)
        interner(std::to_string(i));
    EXPECT_EQ(Witness::count, 1);
    interner("voice");
    for (std::size_t i = 0; i < Interner::kGeneration; ++i)
        interner(std::to_string(i) + "x");
    EXPECT_EQ(Witness::count, 1);
    for (std::size_t i = 0; i < Interner::kGeneration; ++i)
        interner(std::to_string(i) + "y");
    EXPECT_EQ(Witness::count, 0);
}

}  // namespace
}  // namespace QosAgent
