#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tests/fuzz/Entries.h"
#ifdef QOS_FUZZ_GNMI
#include "tests/fuzz/GnmiEntries.h"
#endif

namespace {

/// A bug that is found only by those who are guided by what their input reaches.
void plantedBug(std::string_view bytes) {
    if (bytes.size() < 4 || bytes[0] != 'b') return;
    if (bytes[1] != 'u') return;
    if (bytes[2] != 'g') return;
    if (bytes[3] == '!') std::abort();
}

}  // namespace

/// One program for each entry, with the fuzzer's own `main`. With QOS_PLANTED_BUG in the
/// environment it has only that bug to find.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isPlanted = std::getenv("QOS_PLANTED_BUG") != nullptr;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (isPlanted)
        plantedBug(bytes);
    else
        QosAgent::QOS_FUZZ_ENTRY(bytes);
    return 0;
}
