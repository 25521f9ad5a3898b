#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Model {

/// A JSON value as the generator makes it, the model merges it and the agent reads it.
struct Json {
    enum class Kind { null, plain, text, list, object };

    static Json null() { return {}; }
    /// A number or a boolean, as it is written.
    static Json plain(std::string written) { return {Kind::plain, std::move(written), {}}; }
    static Json of(std::string text) { return {Kind::text, std::move(text), {}}; }
    static Json object() { return {Kind::object, {}, {}}; }
    static Json list() { return {Kind::list, {}, {}}; }

    bool isNull() const { return kind == Kind::null; }
    Json& add(std::string key, Json value) {
        members.emplace_back(std::move(key), std::move(value));
        return members.back().second;
    }
    const Json* find(std::string_view key) const;
    /// As it is written, in one line.
    std::string written() const;

    Kind kind = Kind::null;
    std::string text;
    /// Of an object in the order given; of a list with empty keys.
    std::vector<std::pair<std::string, Json>> members;
    /// Takes the place of what is there, instead of being merged into it.
    bool replaces = false;
};

std::string quoted(std::string_view text);

}  // namespace Model
