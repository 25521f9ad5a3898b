#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/Strata/Mount.h"

namespace Strata {
namespace {

class MountTest : public ::testing::Test {
protected:
    static constexpr std::uint8_t kRead = 1;
    static constexpr std::uint8_t kWrite = 2;

    /// The flags of a mount without flags, once the letters were handled.
    static std::uint8_t flagsOf(std::string_view letters) {
        Mount mount("qos/status", "Qos::Status");
        mount.flags().valIs(0);
        mount.handleFlags(letters);
        return mount.flags().val();
    }
};

TEST_F(MountTest, hasAPathAndATypeAndReads) {
    const Mount mount("qos/status", "Qos::Status");
    EXPECT_EQ(mount.path(), "qos/status");
    EXPECT_EQ(mount.type(), "Qos::Status");
    EXPECT_EQ(mount.flags().val(), kRead);
}

TEST_F(MountTest, readsByRAndWritesByW) {
    EXPECT_EQ(flagsOf(""), 0);
    EXPECT_EQ(flagsOf("r"), kRead);
    EXPECT_EQ(flagsOf("w"), kWrite);
    EXPECT_EQ(flagsOf("rw"), kRead | kWrite);
    EXPECT_EQ(flagsOf("wr"), kRead | kWrite);
}

TEST_F(MountTest, addsToTheFlagsThatItHas) {
    Mount mount("p", "T");
    mount.handleFlags("w");
    EXPECT_TRUE(mount.flags().has(MountFlag::read));
    EXPECT_TRUE(mount.flags().has(MountFlag::write));
}

TEST_F(MountTest, refusesUnknownLettersWholly) {
    Mount mount("p", "T");
    EXPECT_THAT([&] { mount.handleFlags("wx"); },
                ::testing::ThrowsMessage<std::invalid_argument>(::testing::HasSubstr("'x'")));
    EXPECT_EQ(mount.flags().val(), kRead);
}

}  // namespace
}  // namespace Strata
