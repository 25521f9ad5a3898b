#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/QosOc/Config/ClassifierConfig.h"

namespace QosOc::Config {
namespace {

using Type = Classifier::Type;

/// In ascending order.
const std::vector<ClassifierConfig> kConfigs{
    {"", std::nullopt},   {"", Type::IPV4},  {"", Type::IPV6},
    {"a", std::nullopt},  {"a", Type::IPV4}, {"a", Type::IPV6},
    {"ab", std::nullopt}, {"b", Type::IPV4}, {"\xC3\xA9", Type::IPV4},
};

std::string traced(const ClassifierConfig& config) {
    std::string text;
    static constinit Vex::TraceHandle handle("ClassifierConfigTest", true);
    Vex::traceSinkIs([&text](std::string_view line) { text = line; });
    Vex::trace(handle, {"source", 1, "function", "signature: "}, config);
    Vex::traceSinkIs(nullptr);
    return text.substr(text.find("signature: ") + 11);
}

TEST(ClassifierConfigTest, isOrderedByNameThenByType) {
    for (std::size_t a = 0; a < kConfigs.size(); ++a)
        for (std::size_t b = 0; b < kConfigs.size(); ++b)
            EXPECT_TRUE((kConfigs[a] <=> kConfigs[b]) == (a <=> b)) << a << " and " << b;
}

TEST(ClassifierConfigTest, isEqualWhereBothFieldsAre) {
    for (std::size_t a = 0; a < kConfigs.size(); ++a)
        for (std::size_t b = 0; b < kConfigs.size(); ++b)
            EXPECT_EQ(kConfigs[a].isEq(kConfigs[b]), a == b) << a << " and " << b;
}

TEST(ClassifierConfigTest, hashesEqualValuesAlike) {
    const ClassifierConfig first{"voice", Type::IPV6};
    const ClassifierConfig second{"voice", Type::IPV6};
    EXPECT_EQ(first.hash(7), second.hash(7));
}

TEST(ClassifierConfigTest, hashesBothFieldsWithTheSeed) {
    const ClassifierConfig config{"voice", Type::IPV4};
    EXPECT_NE(config.hash(1), (ClassifierConfig{"video", Type::IPV4}.hash(1)));
    EXPECT_NE(config.hash(1), (ClassifierConfig{"voice", Type::IPV6}.hash(1)));
    EXPECT_NE(config.hash(1), (ClassifierConfig{"voice", std::nullopt}.hash(1)));
    EXPECT_NE(config.hash(1), config.hash(2));
}

TEST(ClassifierConfigTest, spreadsItsHashes) {
    for (const std::uint32_t seed : {0U, 1U, 7U}) {
        std::set<std::uint32_t> hashes;
        for (int number = 0; number < 500; ++number)
            for (const std::optional<Type> type :
                 {std::optional<Type>(), {Type::IPV4}, {Type::IPV6}})
                hashes.insert(
                    ClassifierConfig{std::string_view("name-" + std::to_string(number)), type}.hash(
                        seed));
        EXPECT_GT(hashes.size(), 1495u) << seed;
    }
}

TEST(ClassifierConfigTest, isTracedAsNameAndType) {
    EXPECT_EQ(traced({"voice", Type::IPV6}), "voice (IPV6)");
    EXPECT_EQ(traced({"voice", Type::IPV4}), "voice (IPV4)");
}

TEST(ClassifierConfigTest, isTracedWithoutATypeAsItsName) {
    EXPECT_EQ(traced({"voice", std::nullopt}), "voice");
}

TEST(ClassifierConfigTest, isTracedOnOneLineWhateverItsName) {
    EXPECT_EQ(traced({"a\n\\b", Type::IPV4}), "a\\n\\\\b (IPV4)");
}

}  // namespace
}  // namespace QosOc::Config
