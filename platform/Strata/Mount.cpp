#include "platform/Strata/Mount.h"

#include <stdexcept>

namespace Strata {
namespace {

MountFlag flagFor(char letter) {
    if (letter == 'r') return MountFlag::read;
    if (letter == 'w') return MountFlag::write;
    throw std::invalid_argument(std::string("unknown mount flag '") + letter + "'");
}

}  // namespace

void Mount::handleFlags(std::string_view letters) {
    AllMountFlags flags = flags_;
    for (const char letter : letters)
        flags.add(flagFor(letter));
    flags_ = flags;
}

}  // namespace Strata
