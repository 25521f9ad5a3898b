#include "agent/gnmi/Path.h"

#include <algorithm>

#include "agent/json/Excerpt.h"

namespace QosAgent::Gnmi {

namespace {

void appendKey(std::string& text, std::string_view name, std::string_view value) {
    text.append("[").append(name).append("=");
    for (const char byte : value) {
        if (byte == ']' || byte == '\\') text += '\\';
        if (byte == '\n' || byte == '\r')
            text += byte == '\n' ? "\\n" : "\\r";
        else
            text += byte;
    }
    text += ']';
}

}  // namespace

bool DataPath::isAtOrBelow(const DataPath& ancestor) const {
    return node->isAtOrBelow(*ancestor.node) &&
           std::equal(ancestor.keys.begin(), ancestor.keys.end(), keys.begin());
}

DataPath DataPath::parent() const {
    DataPath parent{node->parent(), keys};
    if (node->isList()) parent.keys.pop_back();
    return parent;
}

bool DataPathOrder::operator()(const DataPath& left, const DataPath& right) const {
    const auto& a = left.node->chain();
    const auto& b = right.node->chain();
    std::size_t key = 0;
    for (std::size_t at = 0; at < std::min(a.size(), b.size()); ++at) {
        if (a[at] != b[at]) return a[at]->order() < b[at]->order();
        if (!a[at]->isList()) continue;
        if (const int order = left.keys[key].compare(right.keys[key]); order != 0) return order < 0;
        ++key;
    }
    return a.size() < b.size();
}

std::string toText(const RequestPath& path) {
    if (path.elements.empty()) return "/";
    std::string text;
    for (const PathElement& element : path.elements) {
        text.append("/").append(element.name);
        for (const auto& [name, value] : element.keys)
            appendKey(text, name, value);
    }
    return text;
}

std::string shown(const RequestPath& path) {
    return shown(toText(path));
}

std::string shown(std::string_view path) {
    std::string text = excerpt(path, 200);
    text.erase(text.rfind('"'), 1);
    return text.substr(1);
}

std::string toText(const DataPath& path) {
    if (path.node->depth() == 0) return "/";
    std::string text;
    auto key = path.keys.begin();
    for (const SchemaNode* node : path.node->chain()) {
        text.append("/").append(node->name());
        if (node->isList()) appendKey(text, node->key(), *key++);
    }
    return text;
}

}  // namespace QosAgent::Gnmi
