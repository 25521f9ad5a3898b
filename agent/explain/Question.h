#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "agent/json/Json.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

/// What an explanation is asked of: a classifier, or one term of it. Names are never empty.
struct Question {
    std::string classifier;
    std::optional<std::string> term;

    friend bool operator==(const Question&, const Question&) = default;
};

/// Reads `{"classifier": C, "term": T}`, where `term` may be left out. Returns a fault at the key
/// or value that is wrong.
std::variant<Question, Fault> questionFrom(const JsonValue& operand);

/// Reads `C` or `C/T`, as the command line has it: in a name `~1` stands for `/`, `~0` for `~`.
/// Returns what is wrong as the second alternative.
struct QuestionFault {
    std::string message;
};
std::variant<Question, QuestionFault> questionFrom(std::string_view text);

}  // namespace QosAgent
