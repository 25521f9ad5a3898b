#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <variant>

#include "platform/Vex/NodeTraits.h"
#include "platform/Vex/Value.h"
#include "platform/Vex/ValueTraits.h"
#include "tests/support/Harbour.h"
#include "tests/support/Printers.h"

namespace Vex {
namespace {

using Harbour::Cargo;
using Harbour::Signal;

TEST(ValueTest, isAbsentByDefault) {
    EXPECT_TRUE(Value().isAbsent());
    EXPECT_FALSE(Value(false).isAbsent());
}

TEST(ValueTest, givesTheAlternativeThatItHolds) {
    EXPECT_EQ(Value(std::uint64_t{7}).as<std::uint64_t>(), 7u);
    EXPECT_THROW((void)Value(true).as<std::uint64_t>(), std::bad_variant_access);
}

TEST(ValueTest, comparesDeeply) {
    const Value list = ListValue{{true, Orin::String("a")}};
    EXPECT_EQ(list, Value(ListValue{{true, Orin::String("a")}}));
    EXPECT_NE(list, Value(ListValue{{true, Orin::String("b")}}));
    EXPECT_NE(Value(MapValue{{{true, false}}}), Value(MapValue{{{true, true}}}));
    EXPECT_NE(Value(RecordValue{{true}}), Value(ListValue{{true}}));
}

/// What a type of C++ looks like as a value, and back.
template <class T>
Value toValue(const T& value) {
    return ValueTraits<T>::to(value);
}
template <class T>
T fromValue(const Value& value) {
    return ValueTraits<T>::from(value);
}

TEST(ValueTraitsTest, holdNumbersToTheirRange) {
    EXPECT_EQ(fromValue<std::uint8_t>(std::uint64_t{255}), 255);
    EXPECT_THROW(fromValue<std::uint8_t>(std::uint64_t{256}), std::out_of_range);
    EXPECT_EQ(fromValue<std::uint32_t>(std::uint64_t{0xFFFFFFFF}), 0xFFFFFFFFU);
    EXPECT_THROW(fromValue<std::uint32_t>(std::uint64_t{0x100000000}), std::out_of_range);
    EXPECT_EQ(fromValue<std::uint64_t>(~std::uint64_t{0}), ~std::uint64_t{0});
    EXPECT_EQ(toValue(Ovk::UniqueId{~std::uint64_t{0}}), Value(~std::uint64_t{0}));
}

TEST(ValueTraitsTest, readEnumerationsAsNumbersNamedOrNot) {
    EXPECT_EQ(toValue(Signal::danger), Value(std::uint64_t{2}));
    EXPECT_EQ(fromValue<Signal>(std::uint64_t{200}), Signal{200});
    EXPECT_THROW(fromValue<Signal>(std::uint64_t{256}), std::out_of_range);
    EXPECT_EQ(typeOf<Signal>.maximum, 255u);
    EXPECT_EQ(typeOf<Signal>.names.size(), 3u);
    EXPECT_FALSE(typeOf<Signal>.isNamedOnly);
}

TEST(ValueTraitsTest, readNothingAsAbsence) {
    EXPECT_EQ(toValue(std::optional<Signal>()), Value());
    EXPECT_EQ(fromValue<std::optional<Signal>>(Value()), std::nullopt);
    EXPECT_EQ(fromValue<std::optional<Signal>>(std::uint64_t{1}), Signal::caution);
    EXPECT_TRUE(typeOf<std::optional<Signal>>.isOptional);
    EXPECT_FALSE(typeOf<Signal>.isOptional);
}

TEST(ValueRecordTest, isReadAndWrittenThroughItsTypeRecord) {
    Cargo cargo{.kind = "coal"};
    const AttributeRecord& tons = *attributeNamed(Cargo::kTypeRecord, "tons");
    tons.write(&cargo, std::uint64_t{7});
    EXPECT_EQ(cargo, (Cargo{.kind = "coal", .tons = 7}));
    EXPECT_EQ(tons.read(&cargo), Value(std::uint64_t{7}));
}

TEST(ValueTraitsTest, carryWholeRecordsThereAndBack) {
    Cargo cargo{.kind = "coal", .tons = 4, .isSealed = true, .hazard = Signal::danger};
    cargo.holds = {3, 1, 2};
    cargo.crates.is(9, 90);
    cargo.crates.is(5, 50);
    const Value value = toValue(cargo);
    EXPECT_EQ(TestSupport::textOf(value), R"(("coal", 4, true, 2, [3, 1, 2], {5: 50, 9: 90}))");
    EXPECT_EQ(fromValue<Cargo>(value), cargo);
}

TEST(ValueTraitsTest, makeRoomForTheFieldsOfARecordOnce) {
    EXPECT_EQ(toValue(Cargo()).as<RecordValue>().fields.capacity(), 6u);
}

TEST(ValueTraitsTest, refuseRecordsWithFieldsTooFewOrTooMany) {
    auto record = toValue(Cargo()).as<RecordValue>();
    record.fields.emplace_back();
    EXPECT_THROW(fromValue<Cargo>(record), std::out_of_range);
    record.fields.resize(record.fields.size() - 2);
    EXPECT_THROW(fromValue<Cargo>(record), std::out_of_range);
}

class EntityValueTest : public ::testing::Test {};

TEST_F(EntityValueTest, isTheEntityItself) {
    const auto tide = Harbour::Tide::create();
    const Value value = toValue(tide);
    EXPECT_EQ(value.as<NodeRef>(), tide);
    EXPECT_EQ(fromValue<Orin::Ptr<Harbour::Tide>>(value), tide);
    EXPECT_EQ(fromValue<Orin::Ptr<const Harbour::Tide>>(value), tide);
}

TEST_F(EntityValueTest, mayBeNull) {
    EXPECT_EQ(toValue(Orin::Ptr<Harbour::Tide>()), Value(NodeRef()));
    EXPECT_EQ(fromValue<Orin::Ptr<Harbour::Tide>>(NodeRef()), nullptr);
}

TEST_F(EntityValueTest, isOfTheTypeThatIsAskedFor) {
    const Value value = toValue(Harbour::Tide::create());
    EXPECT_THROW(fromValue<Orin::Ptr<Harbour::Ship>>(value), std::bad_cast);
}

TEST_F(EntityValueTest, isCastOnlyToItsOwnType) {
    const Orin::Ptr<TypedNode> tide = Harbour::Tide::create();
    EXPECT_EQ(entityCast<Harbour::Tide>(tide), tide);
    EXPECT_EQ(entityCast<const Harbour::Tide>(tide).get(), tide.get());
    EXPECT_EQ(entityCast<Harbour::Ship>(tide), nullptr);
    EXPECT_EQ(entityCast<Harbour::Ship>(nullptr), nullptr);
    EXPECT_EQ(tide->userCount(), 1u);
}

}  // namespace
}  // namespace Vex
