#include "tests/mutation/Planted.h"

namespace Planted {
namespace {

/// `<` to `<=` changes nothing here; all other mutants are noticed.
int distance(int a, int b) {
    return a < b ? b - a : a - b;
}

}  // namespace

bool holds() {
    return distance(2, 5) == 3 && distance(5, 2) == 3;
}

int uncalled(int a) {
    return a * 2;
}

}  // namespace Planted
