#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/Vex/Derive.h"
#include "platform/Vex/Module.h"
#include "tests/support/Harbour.h"
#include "tests/support/HarbourMachines.h"
#include "tests/support/Printers.h"

namespace Harbour {
namespace {

class Raft final : public Vex::Entity<Raft> {
public:
    static constexpr std::string_view kTypeName = "Harbour::Raft";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() { return std::tuple{}; }
    ~Raft() override = default;
};
constinit const Vex::TypeRecord Raft::kTypeRecord = Vex::recordOf<Raft>();

constexpr const Vex::TypeRecord* kRafts[] = {&Raft::kTypeRecord};
constexpr Vex::Module kFirst{"First", {}};
constexpr Vex::Module kSecond{"Second", kRafts};

class ModuleTest : public ::testing::Test {
protected:
    static std::ptrdiff_t indexOf(const Vex::Module& module) {
        const auto all = Vex::modules();
        return std::find(all.begin(), all.end(), &module) - all.begin();
    }
    static bool isRegistered(const Vex::Module& module) {
        return indexOf(module) != std::ssize(Vex::modules());
    }
};

TEST_F(ModuleTest, isRegisteredFromConstructionToDestruction) {
    EXPECT_FALSE(isRegistered(kSecond));
    {
        const Vex::ModuleRegistration registration(kSecond);
        EXPECT_TRUE(isRegistered(kSecond));
        EXPECT_EQ(Vex::typeNamed("Harbour::Raft"), &Raft::kTypeRecord);
    }
    EXPECT_FALSE(isRegistered(kSecond));
    EXPECT_EQ(Vex::typeNamed("Harbour::Raft"), nullptr);
}

TEST_F(ModuleTest, tellsWhichTypesAreInNone) {
    using ::testing::ElementsAre;
    EXPECT_THAT(Vex::unregisteredTypes(Port::kTypeRecord), ::testing::IsEmpty());
    EXPECT_THAT(Vex::unregisteredTypes(Raft::kTypeRecord), ElementsAre(&Raft::kTypeRecord));
    EXPECT_THAT(Vex::unregisteredTypes(PortSm::kTypeRecord), ::testing::IsEmpty());
    const Vex::ModuleRegistration second(kSecond);
    EXPECT_THAT(Vex::unregisteredTypes(Raft::kTypeRecord), ::testing::IsEmpty());
}

TEST_F(ModuleTest, keepsItsIndexWhenAnotherLeaves) {
    auto first = std::make_unique<Vex::ModuleRegistration>(kFirst);
    const Vex::ModuleRegistration second(kSecond);
    const auto raft = Raft::create();
    const Vex::FwkType before = raft->fwkType();
    first.reset();
    EXPECT_EQ(raft->fwkType(), before);
    EXPECT_EQ(before.module, indexOf(kSecond));
    EXPECT_EQ(before.type, 0);
}

TEST_F(ModuleTest, takesTheLowestFreeIndex) {
    auto first = std::make_unique<Vex::ModuleRegistration>(kFirst);
    const std::ptrdiff_t freed = indexOf(kFirst);
    first.reset();
    const Vex::ModuleRegistration second(kSecond);
    EXPECT_TRUE(isRegistered(kSecond));
    EXPECT_EQ(indexOf(kSecond), freed);
}

TEST_F(ModuleTest, leavesTheOthersWhereTheyAre) {
    const std::vector<const Vex::Module*> others(Vex::modules().begin(), Vex::modules().end());
    const Vex::ModuleRegistration first(kFirst);
    EXPECT_TRUE(isRegistered(kFirst));
    std::vector<const Vex::Module*> now(Vex::modules().begin(), Vex::modules().end());
    now.resize(others.size());
    std::replace(now.begin(), now.end(), &kFirst, static_cast<const Vex::Module*>(nullptr));
    EXPECT_EQ(now, others);
}

TEST_F(ModuleTest, stopsTheProgramWhenATypeIsInNone) {
    const auto raft = Raft::create();
    EXPECT_DEATH((void)raft->fwkType(),
                 "platform/Vex/Module:[0-9]+: .*fwkType.*: "
                 "Assertion `type is registered' failed\\.");
}

}  // namespace
}  // namespace Harbour
