#include "tests/mutation/Planted.h"

#include <string_view>

namespace Planted {
namespace {

/// `<` to `<=` changes nothing here; all other mutants are noticed.
int distance(int a, int b) {
    return a < b ? b - a : a - b;
}

/// Leaves in each of the ways that there are.
const char* wayOut(int a) {
    if (a == 1) throw a;
    while (a > 2) {
        if (a == 3) break;
        return "return";
    }
    return a == 3 ? "break" : "end";
}

/// The order of the steps matters.
int twiceAndOne(int a) {
    a *= 2;
    a += 1;
    return a;
}

bool leavesByThrowing() {
    try {
        return wayOut(1) == nullptr;
    } catch (int thrown) {
        return thrown == 1;
    }
}

}  // namespace

bool holds() {
    return distance(2, 5) == 3 && distance(5, 2) == 3 && leavesByThrowing() &&
           std::string_view(wayOut(2)) == "end" && std::string_view(wayOut(3)) == "break" &&
           std::string_view(wayOut(4)) == "return" && twiceAndOne(3) == 7;
}

int uncalled(int a) {
    return a * 2;
}

}  // namespace Planted
