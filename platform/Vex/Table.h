#pragma once

#include <cstddef>
#include <tuple>
#include <utility>

#include "platform/Vex/Row.h"

/// Facts that are derived from the table of a class at compile time.
namespace Vex {

template <class T, std::size_t I>
inline constexpr auto row = std::get<I>(T::fields());
template <class T, std::size_t I>
using MemberAt = typename decltype(row<T, I>)::Member;
template <class T>
inline constexpr std::size_t fieldCount = std::tuple_size_v<decltype(T::fields())>;

template <class F, std::size_t... I>
constexpr void eachIndex(F& f, std::index_sequence<I...>) {
    (f.template operator()<I>(), ...);
}
/// Calls `f` for each row, in order, with the row's index as a compile-time constant.
template <class T, class F>
constexpr void eachRow(F f) {
    eachIndex(f, std::make_index_sequence<fieldCount<T>>{});
}

/// The number of leading rows that are arguments of the constructor.
template <class T>
consteval std::size_t givenCount() {
    std::size_t count = 0;
    bool leading = true;
    eachRow<T>([&]<std::size_t I>() {
        leading = leading && row<T, I>.isGiven;
        count += leading ? 1 : 0;
    });
    return count;
}
template <class T>
consteval bool givenRowsLead() {
    std::size_t count = 0;
    eachRow<T>([&]<std::size_t I>() { count += row<T, I>.isGiven ? 1 : 0; });
    return count == givenCount<T>();
}
/// Checks that the rows, laid out from the end of the base class, fill the class exactly.
template <class T>
consteval bool tableIsComplete(std::size_t baseSize) {
    std::size_t at = baseSize;
    const auto roundUp = [&](std::size_t alignment) {
        at = (at + alignment - 1) / alignment * alignment;
    };
    eachRow<T>([&]<std::size_t I>() {
        roundUp(alignof(MemberAt<T, I>));
        at += sizeof(MemberAt<T, I>);
    });
    roundUp(alignof(T));
    return at == sizeof(T);
}

}  // namespace Vex
