#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "agent/output/NaturalOrder.h"

namespace QosAgent {
namespace {

TEST(NaturalOrderTest, comparesDigitsByValueAndTheRestByBytes) {
    const std::vector<std::string> ascending{"",
                                             "002",
                                             "02",
                                             "2",
                                             "2a",
                                             "10",
                                             "99999999999999999999",
                                             "100000000000000000000",
                                             "T",
                                             "a",
                                             "a0",
                                             "a1b2",
                                             "a1b10",
                                             "a2",
                                             "a10",
                                             "a10x",
                                             "b",
                                             "\xc3\xa9"};
    for (std::size_t i = 0; i < ascending.size(); ++i)
        for (std::size_t j = 0; j < ascending.size(); ++j)
            EXPECT_EQ(naturallyBelow(ascending[i], ascending[j]), i < j)
                << ascending[i] << " and " << ascending[j];
}

}  // namespace
}  // namespace QosAgent
