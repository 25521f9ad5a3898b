#pragma once

#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "platform/Orin/Export.h"

namespace Vex {

/// Thrown by a creator if a required input is null.
class PLATFORM_API MutatorArgNullPointerException : public std::invalid_argument {
public:
    using invalid_argument::invalid_argument;
};

/// Thrown by a creator if the child already exists and was created from other inputs.
class PLATFORM_API MutatorReinstantiatingException : public std::logic_error {
public:
    using logic_error::logic_error;
};

/// Throws `MutatorArgNullPointerException`; its text names the attribute.
[[noreturn]] PLATFORM_API void throwMutatorArgNullPointerException(std::string_view attribute);

/// Throws `std::out_of_range`; its text names the index and the size.
[[noreturn]] PLATFORM_API void throwMutatorIndexOutOfRange(std::size_t index, std::size_t size);
/// Throws `std::out_of_range` for removing an element from an empty vector.
[[noreturn]] PLATFORM_API void throwMutatorVectorEmpty();

namespace Impl {

/// Throws `MutatorReinstantiatingException`; its text names the attribute.
[[noreturn]] PLATFORM_API void throwMutatorReinstantiating(std::string_view attribute);

}  // namespace Impl
}  // namespace Vex
