#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <set>
#include <string_view>
#include <vector>

#include "platform/Acl/Input/Config.h"
#include "platform/Qos/Input/Config.h"
#include "platform/Qos/Status.h"
#include "platform/QosOc/AclNameAndType.h"
#include "platform/QosOc/Config/ClassifiersDir.h"
#include "platform/QosOc/State/ClassifiersDir.h"
#include "platform/Vex/Module.h"
#include "platform/Vex/Table.h"
#include "tests/support/HarbourMachines.h"

namespace Vex {
namespace {

/// What holds for the table of every class of the platform's schemas, and of the toys.
template <class T>
class TableTest : public ::testing::Test {
protected:
    /// Where the rows' members lie in an object, in the order of the rows.
    static std::vector<std::ptrdiff_t> offsets() {
        std::vector<std::ptrdiff_t> result;
        eachRow<T>([&]<std::size_t I>() {
            result.push_back(std::bit_cast<std::ptrdiff_t>(row<T, I>.member));
        });
        return result;
    }
};

using AllTypes = ::testing::Types<
    Acl::Input::Config, Acl::Input::AclTypeConfig, Acl::AclConfig, Acl::AclSubConfig,
    Acl::IpRuleConfig, Acl::IpFilter, Acl::Ip6RuleConfig, Acl::Ip6Filter, Qos::Status,
    Qos::PolicyMapTypeStatus, Qos::PolicyMapStatus, Qos::PolicyMapClass, Qos::ClassMapTypeStatus,
    Qos::ClassMapStatus, Qos::ForwardingGroupNameToTcMap, Qos::Input::Config,
    QosOc::Config::ClassifiersDir, QosOc::Config::Classifier, QosOc::Config::ClassifierConfig,
    QosOc::Config::Terms, QosOc::Config::Term, QosOc::Config::TermConditions,
    QosOc::Config::TermConditionsIpConfig, QosOc::Config::TermActions, QosOc::AclNameAndType,
    QosOc::State::ClassifiersDir, QosOc::State::Classifier, QosOc::State::ClassifierState,
    QosOc::State::Terms, Harbour::Cargo, Harbour::Tide, Harbour::Ship, Harbour::Port,
    Harbour::Board, Harbour::ShipSm, Harbour::TideSm, Harbour::PortSm>;

struct TypeNames {
    template <class T>
    static std::string GetName(int) {
        std::string name(T::kTypeName);
        return name;
    }
};
TYPED_TEST_SUITE(TableTest, AllTypes, TypeNames);

TYPED_TEST(TableTest, listsTheMembersAsTheyLieInMemory) {
    std::vector<std::ptrdiff_t> offsets = this->offsets();
    EXPECT_THAT(offsets, ::testing::WhenSorted(::testing::ElementsAreArray(offsets)));
    EXPECT_EQ(std::set(offsets.begin(), offsets.end()).size(), offsets.size());
}

TYPED_TEST(TableTest, agreesWithTheTypeRecord) {
    const TypeRecord& record = TypeParam::kTypeRecord;
    EXPECT_EQ(record.fullName, TypeParam::kTypeName);
    ASSERT_EQ(record.attributes.size(), fieldCount<TypeParam>);
    eachRow<TypeParam>([&]<std::size_t I>() {
        const AttributeRecord& attribute = record.attributes[I];
        EXPECT_EQ(attribute.name, (row<TypeParam, I>.name));
        EXPECT_EQ(attribute.id, (row<TypeParam, I>.id));
        EXPECT_EQ(attribute.role, (row<TypeParam, I>.role));
    });
}

template <class... T>
std::set<std::string_view> namesOf(::testing::Types<T...>) {
    return {T::kTypeName...};
}

TEST(AllTypesTest, areTheOnesThatAreRegistered) {
    std::set<std::string_view> registered;
    for (const Module* module : modules()) {
        if (module == nullptr) continue;
        for (const TypeRecord* type : module->types)
            registered.insert(type->fullName);
    }
    EXPECT_EQ(namesOf(AllTypes()), registered);
}

TEST(AllTypesTest, tellWhatAMachineWatchesItselfOrThroughANestedReactor) {
    std::vector<std::string_view> watched;
    for (const AttributeRecord& attribute : Harbour::PortSm::kTypeRecord.attributes)
        if (attribute.isWatched) watched.push_back(attribute.name);
    EXPECT_EQ(watched, (std::vector<std::string_view>{"port", "weather", "beacon"}));
}

/// A table that leaves a member out is refused where objects are made.
struct Pair {
    std::uint64_t first;
    std::uint64_t second;
    static constexpr auto fields() { return std::tuple{field("first", 1, &Pair::first)}; }
};

TEST(AllTypesTest, wouldBeRefusedWithATableThatLeavesAMemberOut) {
    EXPECT_FALSE(tableIsComplete<Pair>(0));
    EXPECT_TRUE(tableIsComplete<Harbour::Cargo>(0));
}

}  // namespace
}  // namespace Vex
