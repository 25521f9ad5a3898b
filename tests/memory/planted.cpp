#include <cstdint>
#include <iostream>
#include <string_view>

#include "platform/OvSlab/Slab.h"

/// Does what must not be done with memory, so that it is seen to be reported: see CMakeLists.txt
/// here, and scripts/campaigns/memcheck.
namespace {

/// Memory as machines and entities have it.
class Plank : public OvSlab::Slabbed<Plank> {
public:
    static constexpr std::string_view kTypeName = "Toy::Plank";
    explicit Plank(int length) : length_(length) {}
    int length() const { return length_; }

private:
    int length_;
};

int lengthOfOneThatWent(int length) {
    const auto* plank = new Plank(length);
    delete plank;
    return plank->length();
}

[[gnu::noinline]] void loseOne(int length) {
    const volatile auto lost = reinterpret_cast<std::uintptr_t>(new Plank(length));
    static_cast<void>(lost);
}

/// Overwrites what the stack still knows of the call before.
[[gnu::noinline]] void sweepStack() {
    volatile char swept[4096];
    for (volatile char& byte : swept)
        byte = 0;
}

/// Of memory that nobody has written to.
int lengthOfOneThatHasNone() {
    OvSlab::Tracker& tracker = OvSlab::TrackerOf<Plank>::tracker;
    auto* length = static_cast<int*>(OvSlab::slabAlloc(sizeof(int), tracker));
    const int sign = *length > 0 ? 1 : 2;
    OvSlab::slabFree(length, sizeof(int), tracker);
    return sign;
}

int beyondTheGreatest(int one) {
    return 0x7FFFFFFF + one;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "use-after-free") {
        std::cout << lengthOfOneThatWent(argc) << '\n';
    } else if (what == "leak") {
        loseOne(argc);
        sweepStack();
    } else if (what == "uninitialised") {
        std::cout << lengthOfOneThatHasNone() << '\n';
    } else if (what == "overflow") {
        std::cout << beyondTheGreatest(argc) << '\n';
    } else if (what != "nothing") {
        std::cerr << "usage: planted use-after-free|leak|uninitialised|overflow|nothing\n";
        return 2;
    }
    return 0;
}
