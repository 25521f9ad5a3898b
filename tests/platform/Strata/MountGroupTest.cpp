#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Strata/MountGroup.h"
#include "tests/support/Harbour.h"
#include "tests/support/Printers.h"

namespace Strata {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Asks a database that hosts a harbour to read and a board to write.
class MountGroupTest : public ::testing::Test {
protected:
    MountGroupTest() {
        entities->entityIs("harbour/tide", Harbour::Tide::create());
        entities->entityIs("harbour/board", Harbour::Board::create(), Access::readAndWrite);
        entities->entityIs("harbour/gone", Orin::Ptr<Vex::TypedNode>());
    }
    void mount(const char* path, const char* type, const char* flags) {
        Mount mount(path, type);
        mount.flags().valIs(0);
        mount.handleFlags(flags);
        group->doMount(mount);
    }
    void expectRefused(const char* fault) const {
        EXPECT_THAT(group->faults(), ElementsAre(fault));
        EXPECT_EQ(group->status(), mountFailed_);
    }

    Orin::Ptr<EntityManager> entities = Orin::Ptr<EntityManager>::adopt(new EntityManager);
    Orin::Ptr<MountGroup> group = Orin::Ptr<MountGroup>::adopt(new MountGroup(entities));
};

TEST_F(MountGroupTest, succeedsWithoutMounts) {
    EXPECT_EQ(group->status(), mountSuccess_);
    EXPECT_THAT(group->mounts(), IsEmpty());
}

TEST_F(MountGroupTest, keepsMountsInTheOrderInWhichTheyWereAskedFor) {
    mount("harbour/tide", "Harbour::Tide", "r");
    mount("harbour/board", "Harbour::Board", "rw");
    mount("harbour/board", "Harbour::Board", "w");
    std::vector<std::string> mounts;
    for (const Mount& mount : group->mounts())
        mounts.push_back(mount.path() + ' ' + std::to_string(mount.flags().val()));
    EXPECT_THAT(mounts, ElementsAre("harbour/tide 1", "harbour/board 3", "harbour/board 2"));
    EXPECT_THAT(group->faults(), IsEmpty());
    EXPECT_EQ(group->status(), mountSuccess_);
}

TEST_F(MountGroupTest, refusesAPathThatTheDatabaseDoesNotHost) {
    mount("harbour/tode", "Harbour::Tide", "r");
    expectRefused("cannot mount \"harbour/tode\": there is no such path");
}

TEST_F(MountGroupTest, refusesAPathWithoutAnEntity) {
    mount("harbour/gone", "Harbour::Tide", "r");
    expectRefused("cannot mount \"harbour/gone\": there is no such path");
}

TEST_F(MountGroupTest, refusesAnotherType) {
    mount("harbour/tide", "Harbour::Board", "r");
    expectRefused("cannot mount \"harbour/tide\": its type is Harbour::Tide, not Harbour::Board");
}

TEST_F(MountGroupTest, refusesToWriteWhatIsToBeReadOnly) {
    mount("harbour/tide", "Harbour::Tide", "rw");
    expectRefused("cannot mount \"harbour/tide\": it must not be written");
}

TEST_F(MountGroupTest, refusesAMountThatAsksForNothing) {
    mount("harbour/tide", "Harbour::Tide", "");
    expectRefused("cannot mount \"harbour/tide\": neither reading nor writing is asked for");
}

TEST_F(MountGroupTest, keepsALineForEachRefusal) {
    mount("harbour/tide", "Harbour::Tide", "w");
    mount("harbour/board", "Harbour::Board", "w");
    mount("a\nb", "c\nd", "r");
    EXPECT_THAT(group->faults(),
                ElementsAre("cannot mount \"harbour/tide\": it must not be written",
                            "cannot mount \"a\\nb\": there is no such path"));
    EXPECT_EQ(group->mounts().size(), 3u);
}

}  // namespace
}  // namespace Strata
