#pragma once

#include <string>
#include <variant>

namespace QosAgent::Gnmi {

/// Why a call ends, with the numbers that the protocol gives them.
enum class Code {
    ok = 0,
    invalidArgument = 3,
    notFound = 5,
    permissionDenied = 7,
    resourceExhausted = 8,
    failedPrecondition = 9,
    unimplemented = 12,
    unavailable = 14,
};

/// Why a request is refused: one line for people that names the path and the reason.
struct Refusal {
    Code code;
    std::string message;

    friend bool operator==(const Refusal&, const Refusal&) = default;
};

template <class Result>
using OrRefusal = std::variant<Result, Refusal>;

}  // namespace QosAgent::Gnmi
