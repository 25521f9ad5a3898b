#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "platform/Vex/Module.h"
#include "platform/Vex/TypeRecord.h"
#include "tests/support/Allocations.h"
#include "tests/support/HarbourMachines.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"
#include "tests/support/RecordingSubscriber.h"
#include "tests/support/Samples.h"

namespace Vex {
namespace {

using TestSupport::Change;
using TestSupport::Changes;
using TestSupport::RecordingSubscriber;

std::vector<const Module*> registeredModules() {
    std::vector<const Module*> result(modules().begin(), modules().end());
    std::erase(result, nullptr);  // where one has left
    return result;
}

std::vector<const TypeRecord*> registeredTypes(bool nodesOnly) {
    std::vector<const TypeRecord*> types;
    for (const Module* module : registeredModules())
        for (const TypeRecord* type : module->types)
            if (!nodesOnly || type->construct != nullptr) types.push_back(type);
    return types;
}

std::string testName(const ::testing::TestParamInfo<const TypeRecord*>& info) {
    std::string name(info.param->fullName);
    std::replace(name.begin(), name.end(), ':', '_');
    return name;
}

TEST(RegisteredTypesTest, beginWithThePlatformsSchemas) {
    std::set<std::string_view> names;
    for (const Module* module : registeredModules())
        names.insert(module->name);
    EXPECT_THAT(names, ::testing::IsSupersetOf({"Qos", "Acl", "QosOc", "Harbour"}));
}

TEST(RegisteredTypesTest, haveNamesOfTheirOwn) {
    std::set<std::string_view> names;
    for (const TypeRecord* type : registeredTypes(false))
        EXPECT_TRUE(names.insert(type->fullName).second) << type->fullName;
    EXPECT_GE(names.size(), 29u + 8u);
}

/// What holds for every type of every registered module, value records included.
class AnyTypeTest : public ::testing::TestWithParam<const TypeRecord*> {
protected:
    static bool isWellFormed(const Type& type) {
        switch (type.shape) {
            case Shape::boolean:
            case Shape::text:
                return true;
            case Shape::number:
                return type.maximum != 0;
            case Shape::enumeration:
                return !type.names.empty() && type.names.back().value <= type.maximum;
            case Shape::record:
                return type.record != nullptr && type.record->construct == nullptr;
            case Shape::entity:
                return type.record != nullptr && type.record->construct != nullptr;
            case Shape::list:
                return type.element != nullptr && isWellFormed(*type.element);
            case Shape::map:
                return type.key != nullptr && isWellFormed(*type.key) && type.element != nullptr &&
                       isWellFormed(*type.element);
        }
        return false;
    }
    const TypeRecord& type = *GetParam();
};

TEST_P(AnyTypeTest, isFoundByItsName) {
    EXPECT_EQ(typeNamed(type.fullName), &type);
}

TEST_P(AnyTypeTest, hasAttributesThatAreFoundByNameAndById) {
    for (const AttributeRecord& attribute : type.attributes) {
        EXPECT_FALSE(attribute.name.empty());
        EXPECT_EQ(attributeNamed(type, attribute.name), &attribute) << attribute.name;
        EXPECT_EQ(attributeWithId(type, attribute.id), &attribute) << attribute.name;
    }
    EXPECT_EQ(attributeNamed(type, "no such attribute"), nullptr);
    EXPECT_EQ(attributeWithId(type, 0xFFFF), nullptr);
}

TEST_P(AnyTypeTest, describesEachAttribute) {
    for (const AttributeRecord& attribute : type.attributes) {
        ASSERT_NE(attribute.type, nullptr) << attribute.name;
        EXPECT_TRUE(isWellFormed(*attribute.type)) << attribute.name;
        EXPECT_NE(attribute.read == nullptr, attribute.collection == nullptr) << attribute.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Of, AnyTypeTest, ::testing::ValuesIn(registeredTypes(false)), testName);

/// What holds for every type whose objects can be made: machines and entities.
class AnyNodeTest : public ::testing::Test,
                    public ::testing::WithParamInterface<const TypeRecord*> {
protected:
    template <class Act>
    static bool isRefused(Act act) {
        try {
            act();
            return false;
        } catch (const std::bad_variant_access&) {
            return true;
        } catch (const std::bad_cast&) {
            return true;
        }
    }
    const TypeRecord& type = *GetParam();
    TestSupport::Samples samples;
    std::vector<Value> arguments = samples.argumentsOf(type);
    Orin::Ptr<TypedNode> node = type.construct(arguments);
};

TEST_P(AnyNodeTest, isConstructedFromItsArguments) {
    ASSERT_TRUE(node);
    EXPECT_EQ(&node->typeData(), &type);
    EXPECT_EQ(node->userCount(), 1u);
    for (std::size_t i = 0; i < arguments.size(); ++i)
        EXPECT_EQ(type.attributes[i].read(node.get()), arguments[i]) << type.attributes[i].name;
}

TEST_P(AnyNodeTest, refusesMoreOrFewerArguments) {
    auto more = arguments;
    more.emplace_back();
    EXPECT_THROW(type.construct(more), std::invalid_argument);
    if (arguments.empty()) return;
    more.resize(arguments.size() - 1);
    EXPECT_THROW(type.construct(more), std::invalid_argument);
}

TEST_P(AnyNodeTest, refusesArgumentsOfOtherTypes) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        auto wrong = arguments;
        wrong[i] = ListValue();
        EXPECT_TRUE(isRefused([&] { type.construct(wrong); })) << type.attributes[i].name;
        if (type.attributes[i].type->shape != Shape::entity) continue;
        wrong[i] =
            NodeRef(Harbour::ShipSm::create(Harbour::Ship::create(""), Harbour::Board::create()));
        EXPECT_TRUE(isRefused([&] { type.construct(wrong); })) << type.attributes[i].name;
    }
}

TEST_P(AnyNodeTest, knowsWhereItsTypeIsRegistered) {
    const FwkType place = node->fwkType();
    ASSERT_LT(place.module, modules().size());
    ASSERT_LT(place.type, modules()[place.module]->types.size());
    EXPECT_EQ(modules()[place.module]->types[place.type], &type);
}

TEST_P(AnyNodeTest, readsBackWhatIsWrittenAndPublishesIt) {
    for (const AttributeRecord& attribute : type.attributes) {
        if (attribute.write == nullptr) continue;
        for (const unsigned n : {1U, 0U, 2U}) {
            const Value value = samples.of(*attribute.type, n);
            attribute.write(node.get(), value);
            EXPECT_EQ(attribute.read(node.get()), value) << attribute.name;
        }
        EXPECT_TRUE(isRefused([&] { attribute.write(node.get(), ListValue{{true}}); }));
        EXPECT_EQ(attribute.read(node.get()), samples.of(*attribute.type, 2)) << attribute.name;
        if (attribute.touch == nullptr) continue;
        RecordingSubscriber heard(*node);
        attribute.write(node.get(), samples.of(*attribute.type, 2));
        EXPECT_EQ(heard.take(), Changes{}) << attribute.name << ", the same value again";
        attribute.write(node.get(), samples.of(*attribute.type, 1));
        attribute.touch(node.get());
        const Change change{attribute.id, {}};
        EXPECT_EQ(heard.take(), (Changes{change, change})) << attribute.name;
    }
}

TEST_P(AnyNodeTest, takesAndGivesTheMembersOfItsCollections) {
    for (const AttributeRecord& attribute : type.attributes) {
        const CollectionOps* members = attribute.collection;
        if (members == nullptr || members->put == nullptr) continue;
        const Value key = samples.of(*members->key, 1);
        const Value member = samples.of(*attribute.type, 1);
        EXPECT_EQ(members->get(node.get(), key), Value()) << attribute.name;
        members->put(node.get(), key, member);
        EXPECT_EQ(members->size(node.get()), 1u) << attribute.name;
        EXPECT_EQ(members->get(node.get(), key), member) << attribute.name;
        members->put(node.get(), key, samples.of(*attribute.type, 2));
        EXPECT_EQ(members->get(node.get(), key), samples.of(*attribute.type, 2)) << attribute.name;
        EXPECT_EQ(members->del(node.get(), key), samples.of(*attribute.type, 2)) << attribute.name;
        EXPECT_EQ(members->del(node.get(), key), Value()) << attribute.name;
        EXPECT_EQ(members->size(node.get()), 0u) << attribute.name;
    }
}

TEST_P(AnyNodeTest, walksTheMembersOfItsCollections) {
    for (const AttributeRecord& attribute : type.attributes) {
        const CollectionOps* members = attribute.collection;
        if (members == nullptr || members->put == nullptr) continue;
        std::vector<Value> keys;
        for (const unsigned n : {2U, 1U}) {
            keys.push_back(samples.of(*members->key, n));
            members->put(node.get(), keys.back(), samples.of(*attribute.type, n));
        }
        if (members->isOrdered) std::swap(keys[0], keys[1]);
        std::vector<Value> visited;
        members->walk(node.get(), [&](const Value& key, const Value& member) {
            visited.push_back(key);
            EXPECT_EQ(member, members->get(node.get(), key)) << attribute.name;
        });
        EXPECT_EQ(visited, keys) << attribute.name;
    }
}

TEST_P(AnyNodeTest, publishesTheMembersOfItsCollections) {
    for (const AttributeRecord& attribute : type.attributes) {
        const CollectionOps* members = attribute.collection;
        if (members == nullptr || members->touch == nullptr) continue;
        const Value key = samples.of(*members->key, 1);
        const Value member = samples.of(*attribute.type, 1);
        const Change change{attribute.id, key};
        RecordingSubscriber heard(*node);
        members->put(node.get(), key, member);
        EXPECT_EQ(heard.take(), Changes{change}) << attribute.name;
        members->put(node.get(), key, member);
        EXPECT_EQ(heard.take(), Changes{}) << attribute.name << ", the same member again";
        members->touch(node.get(), key);
        members->del(node.get(), key);
        members->del(node.get(), key);
        EXPECT_EQ(heard.take(), (Changes{change, change})) << attribute.name;
    }
}

TEST_P(AnyNodeTest, leavesNothingBehindWhenItCannotBeConstructed) {
    type.construct(arguments);  // what a machine has written stays
    const auto before = TestSupport::liveCounts();
    const std::size_t failures = TestSupport::failEachAllocation(
        [&] { type.construct(arguments); }, [&] { EXPECT_EQ(TestSupport::liveCounts(), before); });
    EXPECT_GT(failures, 0u);
}

TEST_P(AnyNodeTest, keepsAnAttributeThatCannotBeWritten) {
    for (const AttributeRecord& attribute : type.attributes) {
        if (attribute.write == nullptr) continue;
        const Value earlier = samples.of(*attribute.type, 1);
        const Value later = samples.of(*attribute.type, 2);
        attribute.write(node.get(), earlier);
        TestSupport::failEachAllocation(
            [&] { attribute.write(node.get(), later); },
            [&] { EXPECT_EQ(attribute.read(node.get()), earlier) << attribute.name; });
        EXPECT_EQ(attribute.read(node.get()), later) << attribute.name;
    }
}

TEST_P(AnyNodeTest, keepsACollectionThatCannotBeChanged) {
    for (const AttributeRecord& attribute : type.attributes) {
        const CollectionOps* members = attribute.collection;
        if (members == nullptr || members->put == nullptr) continue;
        for (const unsigned n : {1U, 2U, 0U}) {
            const Value key = samples.of(*members->key, n);
            Value held;
            const auto failing = [&](const Value& next, auto change) {
                TestSupport::failEachAllocation(change, [&] {
                    EXPECT_EQ(members->get(node.get(), key), held) << attribute.name;
                });
                EXPECT_EQ(members->get(node.get(), key), next) << attribute.name;
                held = next;
            };
            const Value first = samples.of(*attribute.type, 1);
            const Value second = samples.of(*attribute.type, 2);
            failing(first, [&] { members->put(node.get(), key, first); });
            failing(second, [&] { members->put(node.get(), key, second); });
            // What is removed is handed out as a value, and may be lost where that fails.
            TestSupport::failEachAllocation([&] { members->del(node.get(), key); }, [] {});
            EXPECT_EQ(members->get(node.get(), key), Value()) << attribute.name;
            members->put(node.get(), key, first);
        }
        EXPECT_EQ(members->size(node.get()), 3u) << attribute.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Of, AnyNodeTest, ::testing::ValuesIn(registeredTypes(true)), testName);

}  // namespace
}  // namespace Vex
