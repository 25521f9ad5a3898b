#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "agent/json/JsonReader.h"

namespace QosAgent {

inline void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.offset << ": " << fault.message;
}

inline const Fault kNoFault{~std::size_t{0}, "no fault"};

inline Fault faultOf(const JsonResult& result) {
    const Fault* fault = std::get_if<Fault>(&result);
    return fault ? *fault : kNoFault;
}

inline Fault faultIn(std::string_view text, const Limits& limits = {}) {
    return faultOf(parseJson(text, limits));
}

inline Json treeOf(std::string_view text) {
    return std::get<Json>(parseJson(text));
}

inline std::string decoded(std::string_view text) {
    return std::string(treeOf(text).root().text());
}

inline std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

inline std::string quotedRun(std::size_t size) {
    return '"' + std::string(size, 'x') + '"';
}

/// An object with this many members, without its closing brace.
inline std::string objectOf(std::size_t members) {
    std::string text = "{";
    for (std::size_t i = 0; i < members; ++i)
        text += "\"k" + std::to_string(i) + "\":0,";
    return text;
}

}  // namespace QosAgent
