#include "tests/model/Json.h"

#include <utility>

namespace Model {

Json::Json() : Json(Kind::null) {}

Json::Json(Kind valueKind, std::string valueText) : kind(valueKind), text(std::move(valueText)) {}

Json Json::null() {
    return Json(Kind::null);
}

Json Json::plain(std::string written) {
    return Json(Kind::plain, std::move(written));
}

Json Json::of(std::string text) {
    return Json(Kind::text, std::move(text));
}

Json Json::object() {
    return Json(Kind::object);
}

Json Json::list() {
    return Json(Kind::list);
}

Json& Json::add(std::string key, Json value) {
    members.push_back({std::move(key), std::move(value)});
    return members.back().value;
}

const Json* Json::find(std::string_view key) const {
    for (const auto& [name, value] : members)
        if (name == key) return &value;
    return nullptr;
}

std::string quoted(std::string_view text) {
    static constexpr const char* kDigits = "0123456789abcdef";
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20)
            out.append("\\u00").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
        else if (c == '"' || c == '\\')
            out.append("\\").append(1, c);
        else
            out += c;
    }
    return out + '"';
}

std::string Json::written() const {
    if (kind == Kind::null) return "null";
    if (kind == Kind::plain) return text;
    if (kind == Kind::text) return quoted(text);
    const bool isObject = kind == Kind::object;
    std::string out;
    for (const auto& [key, value] : members) {
        if (!out.empty()) out += ',';
        if (isObject) out += quoted(key) + ':';
        out += value.written();
    }
    return isObject ? '{' + out + '}' : '[' + out + ']';
}

}  // namespace Model
