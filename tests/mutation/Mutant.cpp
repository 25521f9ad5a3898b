#include "tests/mutation/Mutant.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <cstdlib>

unsigned qosChosenMutant = 0;
unsigned char* qosAskedMutants = nullptr;

namespace {

/// Child processes, those of death tests, leave their marks in the same memory: when they are
/// programs started anew, by way of a file.
[[gnu::constructor(101)]] void begin() {
    if (const char* chosen = std::getenv("QOS_MUTANT"))
        qosChosenMutant = static_cast<unsigned>(std::strtoul(chosen, nullptr, 10));
    const char* path = std::getenv("QOS_MUTANT_MARKS");
    const int file = path == nullptr ? -1 : ::open(path, O_RDWR | O_CLOEXEC);
    void* memory = ::mmap(nullptr, kMostMutants, PROT_READ | PROT_WRITE,
                          file < 0 ? MAP_SHARED | MAP_ANONYMOUS : MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) std::abort();
    qosAskedMutants = static_cast<unsigned char*>(memory);
}

}  // namespace
