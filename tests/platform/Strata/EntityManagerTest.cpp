#include <gtest/gtest.h>

#include "platform/Strata/EntityManager.h"
#include "tests/support/Harbour.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"

namespace Strata {
namespace {

class EntityManagerTest : public ::testing::Test {
protected:
    Orin::Ptr<EntityManager> entities = Orin::Ptr<EntityManager>::adopt(new EntityManager);
    Orin::Ptr<Harbour::Tide> tide = Harbour::Tide::create();
};

TEST_F(EntityManagerTest, givesTheEntityAtAPath) {
    entities->entityIs("harbour/tide", tide);
    EXPECT_EQ(entities->getEntity("harbour/tide").get(), tide.get());
}

TEST_F(EntityManagerTest, givesNullWhereThereIsNone) {
    entities->entityIs("harbour/tide", tide);
    EXPECT_EQ(entities->getEntity("harbour"), nullptr);
    EXPECT_EQ(entities->getEntity("harbour/tide/"), nullptr);
}

TEST_F(EntityManagerTest, putsAnEntityInThePlaceOfAnother) {
    entities->entityIs("harbour/tide", Harbour::Tide::create());
    entities->entityIs("harbour/tide", tide);
    EXPECT_EQ(entities->getEntity("harbour/tide").get(), tide.get());
    EXPECT_EQ(entities->entities().size(), 1u);
    EXPECT_EQ(TestSupport::live<Harbour::Tide>(), 1u);
}

TEST_F(EntityManagerTest, keepsItsEntitiesAlive) {
    entities->entityIs("harbour/tide", tide);
    tide = nullptr;
    EXPECT_EQ(TestSupport::live<Harbour::Tide>(), 1u);
    entities = nullptr;
    EXPECT_EQ(TestSupport::live<Harbour::Tide>(), 0u);
}

}  // namespace
}  // namespace Strata
