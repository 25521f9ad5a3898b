#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace TestSupport {

/// The slot of a virtual member function, from 0; the destructors are 0 and 1. A pointer to a
/// virtual member function holds 1 and the slot's offset in the table.
template <class Member>
std::size_t slotOf(Member member) {
    std::size_t encoded = 0;
    static_assert(sizeof member >= sizeof encoded);
    std::memcpy(&encoded, &member, sizeof encoded);
    return (encoded - 1) / sizeof(void*);
}

/// The virtual operations of an object in slot order, by the names of the functions that are there:
/// as a debugger shows them, without arguments; destructors are `~`, deleting ones `delete ~`.
/// Read from the symbol tables of the loaded files, which must not be stripped. The table's length
/// is that of its symbol; empty where there is no symbol.
///
///     EXPECT_THAT(virtualOperations(machine.get()),
///                 ElementsAre("~", "delete ~", "Orin::Node::lastUserGone", ...));
std::vector<std::string> virtualOperations(const void* object);

}  // namespace TestSupport
