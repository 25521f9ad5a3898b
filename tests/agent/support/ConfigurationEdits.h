#pragma once

#include <string>

#include "agent/json/JsonWriter.h"

/// The edits of a `configure` line, as text.
namespace QosAgent {

inline std::string quoted(const std::string& text) {
    std::string json;
    appendQuoted(json, text);
    return json;
}
inline std::string deleted(const std::string& path) {
    return R"({"delete":)" + quoted(path) + "}";
}
inline std::string updated(const std::string& path, const std::string& value) {
    return R"({"update":)" + quoted(path) + R"(,"value":)" + value + "}";
}
inline std::string replaced(const std::string& path, const std::string& value) {
    return R"({"replace":)" + quoted(path) + R"(,"value":)" + value + "}";
}

}  // namespace QosAgent
