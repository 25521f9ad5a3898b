#include "platform/Vex/Errors.h"

#include <string>

namespace Vex {

void throwMutatorArgNullPointerException(std::string_view attribute) {
    throw MutatorArgNullPointerException("mutator argument is null: " + std::string(attribute));
}

void throwMutatorIndexOutOfRange(std::size_t index, std::size_t size) {
    throw std::out_of_range("index " + std::to_string(index) + " is not below the size " +
                            std::to_string(size));
}

void throwMutatorVectorEmpty() {
    throw std::out_of_range("the vector is empty");
}

void Impl::throwMutatorReinstantiating(std::string_view attribute) {
    throw MutatorReinstantiatingException("already instantiated from other inputs: " +
                                          std::string(attribute));
}

}  // namespace Vex
