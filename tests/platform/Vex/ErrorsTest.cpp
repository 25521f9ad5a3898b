#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/Vex/Errors.h"

namespace Vex {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

TEST(ErrorsTest, nameTheArgumentThatIsNull) {
    EXPECT_THAT([] { throwMutatorArgNullPointerException("cmapStatus"); },
                ThrowsMessage<MutatorArgNullPointerException>(HasSubstr("cmapStatus")));
    EXPECT_THROW(throwMutatorArgNullPointerException("x"), std::invalid_argument);
}

TEST(ErrorsTest, nameTheAttributeThatIsInstantiatedAlready) {
    EXPECT_THAT([] { Impl::throwMutatorReinstantiating("cmapStatusSm"); },
                ThrowsMessage<MutatorReinstantiatingException>(HasSubstr("cmapStatusSm")));
    EXPECT_THROW(Impl::throwMutatorReinstantiating("x"), std::logic_error);
}

TEST(ErrorsTest, nameTheIndexAndTheSize) {
    EXPECT_THAT([] { throwMutatorIndexOutOfRange(7, 3); },
                ThrowsMessage<std::out_of_range>(::testing::AllOf(HasSubstr("7"), HasSubstr("3"))));
}

TEST(ErrorsTest, tellOfAnEmptyVector) {
    EXPECT_THAT([] { throwMutatorVectorEmpty(); },
                ThrowsMessage<std::out_of_range>(HasSubstr("empty")));
}

}  // namespace
}  // namespace Vex
