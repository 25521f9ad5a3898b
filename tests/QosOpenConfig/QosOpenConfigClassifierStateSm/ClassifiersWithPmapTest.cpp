#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifiersWithPmap.h"
#include "tests/QosOpenConfig/MachineContract.h"
#include "tests/support/RecordingSubscriber.h"

namespace QosOc {
namespace {

using Config::ClassifierConfig;
using ::testing::ElementsAre;
using Type = Classifier::Type;

const ClassifierConfig kVoice4{"voice", Type::IPV4};
const ClassifierConfig kVoice6{"voice", Type::IPV6};

class ClassifiersWithPmapTest : public ::testing::Test {
protected:
    /// All members, by their keys.
    std::map<ClassifierConfig, unsigned> counts() const {
        std::map<ClassifierConfig, unsigned> all;
        for (const auto& member : registry->classifier())
            EXPECT_TRUE(all.emplace(member.key, member.value).second) << "a key is there twice";
        return all;
    }
    using Counts = std::map<ClassifierConfig, unsigned>;

    const Orin::Ptr<ClassifiersWithPmap> registry = ClassifiersWithPmap::ClassifiersWithPmapIs();
};

TEST_F(ClassifiersWithPmapTest, isMadeEmptyWithOneOwner) {
    EXPECT_EQ(counts(), Counts());
    EXPECT_EQ(registry->userCount(), 1u);
    EXPECT_EQ(classifiersWithPmapFactory()->userCount(), 1u);
    EXPECT_NE(classifiersWithPmapFactory(), registry);
}

TEST_F(ClassifiersWithPmapTest, isTrackedUnderItsType) {
    EXPECT_EQ(TestSupport::live<ClassifiersWithPmap>(), 1u);
}

TEST_F(ClassifiersWithPmapTest, entersAClassifierWithItsCount) {
    registry->classifierIs(kVoice4, 3);
    EXPECT_EQ(counts(), (Counts{{kVoice4, 3}}));
}

TEST_F(ClassifiersWithPmapTest, keepsACopyOfTheKey) {
    {
        const ClassifierConfig shortLived{"data", Type::IPV6};
        registry->classifierIs(shortLived, 0);
    }
    EXPECT_EQ(counts(), (Counts{{ClassifierConfig{"data", Type::IPV6}, 0}}));
}

TEST_F(ClassifiersWithPmapTest, givesAPresentClassifierAnotherCount) {
    registry->classifierIs(kVoice4, 3);
    registry->classifierIs(kVoice4, 0);
    registry->classifierIs(kVoice4, 7);
    EXPECT_EQ(counts(), (Counts{{kVoice4, 7}}));
}

TEST_F(ClassifiersWithPmapTest, tellsTypesOfOneNameApart) {
    registry->classifierIs(kVoice4, 1);
    registry->classifierIs(kVoice6, 2);
    EXPECT_EQ(counts(), (Counts{{kVoice4, 1}, {kVoice6, 2}}));
}

TEST_F(ClassifiersWithPmapTest, removesAClassifierAndReturnsItsCount) {
    registry->classifierIs(kVoice4, 1);
    registry->classifierIs(kVoice6, 2);
    EXPECT_EQ(registry->classifierDel(kVoice6), 2u);
    EXPECT_EQ(counts(), (Counts{{kVoice4, 1}}));
}

TEST_F(ClassifiersWithPmapTest, returnsZeroForAnAbsentClassifier) {
    registry->classifierIs(kVoice4, 1);
    EXPECT_EQ(registry->classifierDel(kVoice6), 0u);
    EXPECT_EQ(counts(), (Counts{{kVoice4, 1}}));
}

TEST_F(ClassifiersWithPmapTest, countsLikeAnUnsignedNumber) {
    registry->classifierIs(kVoice4, 0u - 1);
    EXPECT_EQ(registry->classifierDel(kVoice4), 4294967295u);
}

TEST_F(ClassifiersWithPmapTest, removesAllClassifiers) {
    registry->classifierIs(kVoice4, 1);
    registry->classifierIs(kVoice6, 2);
    registry->classifierDelAll();
    EXPECT_EQ(counts(), Counts());
    registry->classifierDelAll();
    registry->classifierIs(kVoice6, 4);
    EXPECT_EQ(counts(), (Counts{{kVoice6, 4}}));
}

TEST_F(ClassifiersWithPmapTest, publishesNothing) {
    TestSupport::RecordingSubscriber heard(*registry);
    registry->classifierIs(kVoice4, 1);
    registry->classifierIs(kVoice4, 2);
    registry->classifierDel(kVoice4);
    registry->classifierDelAll();
    EXPECT_EQ(heard.take(), TestSupport::Changes());
}

TEST_F(ClassifiersWithPmapTest, isLookedUpByKey) {
    registry->classifierIs(kVoice4, 5);
    ASSERT_NE(registry->classifier().find(kVoice4), nullptr);
    EXPECT_EQ(*registry->classifier().find(kVoice4), 5u);
    EXPECT_EQ(registry->classifier().find(kVoice6), nullptr);
}

TEST_F(ClassifiersWithPmapTest, keepsWhatItHasWhenAClassifierCannotBeEntered) {
    registry->classifierIs(kVoice4, 5);
    const std::size_t failures =
        TestSupport::failEachAllocation([this] { registry->classifierIs(kVoice6, 1); },
                                        [this] {
                                            EXPECT_EQ(counts(), (Counts{{kVoice4, 5}}));
                                        });
    EXPECT_GT(failures, 0u);
    EXPECT_EQ(counts(), (Counts{{kVoice4, 5}, {kVoice6, 1}}));
}

TEST(ClassifiersWithPmapFactoryTest, leavesNothingBehindWhenItFails) {
    const auto before = TestSupport::liveCounts();
    EXPECT_GT(
        TestSupport::failEachAllocation([] { classifiersWithPmapFactory(); },
                                        [&] { EXPECT_EQ(TestSupport::liveCounts(), before); }),
        0u);
}

TEST_F(ClassifiersWithPmapTest, describesItself) {
    EXPECT_EQ(registry->typeData().fullName, "QosOc::ClassifiersWithPmap");
    EXPECT_THAT(attributesOf(registry->typeData()), ElementsAre("classifier 1 plain by key"));
    registry->classifierIs(kVoice6, 5);
    const auto& ops = *registry->typeData().attributes[0].collection;
    const Vex::Value key = Vex::RecordValue{{Orin::String("voice"), std::uint64_t{1}}};
    EXPECT_EQ(ops.get(registry.get(), key), Vex::Value(std::uint64_t{5}));
}

TEST_F(ClassifiersWithPmapTest, takesAndGivesItsMembersThroughItsRecord) {
    const auto& ops = *registry->typeData().attributes[0].collection;
    Vex::TypedNode* const node = registry.get();
    const Vex::Value key = Vex::RecordValue{{Orin::String("voice"), std::uint64_t{0}}};
    ops.put(node, key, std::uint64_t{5});
    EXPECT_EQ(counts(), (Counts{{kVoice4, 5}}));
    ops.put(node, key, std::uint64_t{6});
    EXPECT_EQ(counts(), (Counts{{kVoice4, 6}}));
    EXPECT_EQ(ops.del(node, key), Vex::Value(std::uint64_t{6}));
    EXPECT_EQ(counts(), Counts());
    EXPECT_EQ(ops.del(node, key), Vex::Value());
}

}  // namespace
}  // namespace QosOc
