#include <array>
#include <string>
#include <utility>

#include "agent/configuration/ConfigurationEdit.h"
#include "agent/json/Excerpt.h"
#include "agent/json/Suggestion.h"

namespace QosAgent {
namespace {

using Operation = ConfigurationEdit::Operation;

struct Verb {
    std::string_view name;
    Operation operation;
};
constexpr std::array kVerbs{
    Verb{"delete", Operation::remove},
    Verb{"replace", Operation::replace},
    Verb{"update", Operation::update},
};
constexpr std::array<std::string_view, 4> kMembers{"delete", "replace", "update", "value"};

const Verb* verbNamed(std::string_view name) {
    for (const Verb& verb : kVerbs)
        if (verb.name == name) return &verb;
    return nullptr;
}

bool isWildcard(std::string_view text) {
    return text == "*" || text == "...";
}

/// What is wrong with an element of a path at a place of the model; empty if nothing is.
std::string elementFault(const PathElement& element, const ModelSchema* schema) {
    if (isWildcard(element.name)) return "an edit takes no wildcard in its path";
    for (const PathElement::Key& key : element.keys)
        if (key.value == "*") return "an edit takes no wildcard in its path";
    if (schema != nullptr && schema->isList()) {
        if (element.keys.empty())
            return "the list " + excerpt(element.name) + " needs its key " + excerpt(schema->key) +
                   " in the path";
        for (const PathElement::Key& key : element.keys)
            if (key.name != schema->key)
                return "the list " + excerpt(element.name) + " has no key " + excerpt(key.name) +
                       ", expected " + excerpt(schema->key);
    } else if (schema != nullptr && !element.keys.empty()) {
        return excerpt(element.name) + " is no list, and has no keys";
    }
    return {};
}

std::string pathFault(const ModelPath& path) {
    const ModelSchema* schema = &ModelSchema::root();
    for (const PathElement& element : path) {
        schema = childOf(schema, element.name);
        if (std::string fault = elementFault(element, schema); !fault.empty()) return fault;
    }
    if (!path.empty() && path.front().name != "qos")
        return "the model has no " + excerpt(path.front().name) + " at its root, expected \"qos\"";
    return {};
}

std::variant<ModelPath, Fault> readPath(const JsonValue& json) {
    if (!json.is(JsonKind::string))
        return Fault{json.offset(), "expected a path, found another value"};
    auto path = parseModelPath(json.text());
    if (auto* fault = std::get_if<PathFault>(&path))
        return Fault{json.offset(), std::move(fault->message)};
    if (std::string fault = pathFault(std::get<ModelPath>(path)); !fault.empty())
        return Fault{json.offset(), std::move(fault)};
    return std::get<ModelPath>(std::move(path));
}

std::variant<ConfigurationEdit, Fault> readEdit(const JsonValue& json) {
    if (!json.is(JsonKind::object)) return Fault{json.offset(), "an edit must be an object"};
    ConfigurationEdit edit{{}, {}, {}, json.offset(), json.offset()};
    const Verb* verb = nullptr;
    for (const JsonMember& member : json.members()) {
        if (member.key == "value") {
            edit.value = member.value;
            continue;
        }
        if (verb != nullptr) return Fault{member.keyOffset, "a second operation in one edit"};
        verb = verbNamed(member.key);
        if (verb == nullptr)
            return Fault{member.keyOffset, "unknown operation " + excerpt(member.key) +
                                               suggestion(member.key, kMembers)};
        auto path = readPath(member.value);
        if (auto* fault = std::get_if<Fault>(&path)) return std::move(*fault);
        edit.operation = verb->operation;
        edit.path = std::get<ModelPath>(std::move(path));
        edit.pathOffset = member.value.offset();
    }
    if (verb == nullptr)
        return Fault{json.offset(), "no operation, expected one of delete, replace, update"};
    const bool takesValue = edit.operation != Operation::remove;
    if (takesValue == edit.value.has_value()) return edit;
    return Fault{json.offset(), (takesValue ? "no value for the operation "
                                            : "a value is given for the operation ") +
                                    excerpt(verb->name)};
}

}  // namespace

std::variant<std::vector<ConfigurationEdit>, Fault> readEdits(const JsonValue& json) {
    if (!json.is(JsonKind::array)) return Fault{json.offset(), "expected a list of edits"};
    std::vector<ConfigurationEdit> edits;
    edits.reserve(json.size());
    for (const JsonValue& element : json.elements()) {
        auto edit = readEdit(element);
        if (auto* fault = std::get_if<Fault>(&edit)) return std::move(*fault);
        edits.push_back(std::get<ConfigurationEdit>(std::move(edit)));
    }
    return edits;
}

}  // namespace QosAgent
