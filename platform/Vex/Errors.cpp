#include "platform/Vex/Errors.h"

#include <string>

namespace Vex {

void throwMutatorArgNullPointerException(std::string_view attribute) {
    throw MutatorArgNullPointerException("mutator argument is null: " + std::string(attribute));
}

void Impl::throwMutatorReinstantiating(std::string_view attribute) {
    throw MutatorReinstantiatingException("already instantiated from other inputs: " +
                                          std::string(attribute));
}

}  // namespace Vex
