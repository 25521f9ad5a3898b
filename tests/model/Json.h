#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Model {

struct JsonMember;

/// A JSON value as the generator makes it, the model merges it and the agent reads it.
struct Json {
    enum class Kind { null, plain, text, list, object };

    Json();
    explicit Json(Kind valueKind, std::string valueText = "");
    static Json null();
    /// A number or a boolean, as it is written.
    static Json plain(std::string written);
    static Json of(std::string text);
    static Json object();
    static Json list();

    bool isNull() const { return kind == Kind::null; }
    Json& add(std::string key, Json value);
    const Json* find(std::string_view key) const;
    /// As it is written, in one line.
    std::string written() const;

    Kind kind;
    std::string text;
    /// Of an object in the order given; of a list with empty keys.
    std::vector<JsonMember> members;
    /// Takes the place of what is there, instead of being merged into it.
    bool replaces = false;
};

struct JsonMember {
    std::string key;
    Json value;
};

std::string quoted(std::string_view text);

}  // namespace Model
