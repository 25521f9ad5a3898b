#include <gtest/gtest.h>

#include "platform/Vex/Assert.h"

namespace Vex {
namespace {

TEST(AssertTest, printsTheStandardTextAndStopsTheProgram) {
    EXPECT_DEATH(assertFail("mg", "QosOpenConfig/Mounter", 42, "void X::doMounts()"),
                 "^[^ ]*platform_Vex_tests: QosOpenConfig/Mounter:42: void X::doMounts\\(\\): "
                 "Assertion `mg' failed\\.\n$");
}

TEST(AssertTest, endsByTheAbortSignal) {
    EXPECT_EXIT(assertFail("a", "b", 1, "c"), ::testing::KilledBySignal(SIGABRT), "");
}

TEST(AssertTest, goesOnWhileTheConditionHolds) {
    assertThat(true, "holds", "here", 1, "test");
    EXPECT_DEATH(assertThat(false, "holds", "here", 1, "test"), "Assertion `holds' failed\\.");
}

TEST(SassertHelperTest, printsConditionAndMessageBeforeTheStandardText) {
    const SassertHelper helper("false", "Unexpected ACL Type");
    EXPECT_DEATH(
        helper.fail("false", "platform/Acl", 7, "f()"),
        "^false: Unexpected ACL Type\n"
        "[^ ]*platform_Vex_tests: platform/Acl:7: f\\(\\): Assertion `false' failed\\.\n$");
}

}  // namespace
}  // namespace Vex
