#include "agent/configuration/JsonEdit.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/Orin/TextHash.h"

namespace QosAgent {
namespace {

bool hasKeys(const JsonValue& entry, const PathElement& element) {
    for (const PathElement::Key& key : element.keys) {
        const auto member = memberOf(entry, key.name);
        if (!member || member->value.text() != key.value) return false;
    }
    return true;
}

/// A scalar, so that equal ones have equal texts.
std::string scalarText(const JsonValue& value) {
    std::string text(1, static_cast<char>('0' + static_cast<int>(value.kind())));
    if (value.is(JsonKind::boolean)) return text + (value.boolean() ? '1' : '0');
    return text.append(value.text());
}

bool holdsEntries(const JsonValue& array) {
    return array.size() > 0 && (*array.elements().begin()).is(JsonKind::object);
}

}  // namespace

Json JsonEdit::apply(std::optional<JsonValue> held, bool isOfChange, const ModelSchema* schema) {
    if (!isOfChange) keptOffset_ = edit_.pathOffset;
    addEdited(held, schema, 0);
    return builder_.take();
}

Json JsonEdit::merge(const JsonValue& held, bool isOfChange, const JsonValue& value,
                     const ModelSchema* schema) {
    if (!isOfChange) keptOffset_ = edit_.pathOffset;
    addMerged(held, value, schema, true);
    return builder_.take();
}

/// Adds what becomes of the value that the first `at` steps lead to.
void JsonEdit::addEdited(const Held& held, const ModelSchema* schema, std::size_t at) {
    if (at == steps_.size()) {
        const bool isMerged = edit_.operation == ConfigurationEdit::Operation::update && held;
        if (isMerged)
            addMerged(*held, *edit_.value, schema, true);
        else
            builder_.copy(*edit_.value);
        return;
    }
    // Nothing is below a leaf.
    if (held && !held->is(JsonKind::object) && isRemoval()) return keep(*held);
    const PathElement& element = steps_[at];
    const ModelSchema* inner = childOf(schema, element.name);
    builder_.beginObject(edit_.pathOffset);
    // The leaf by which a new entry is known.
    if (!held && at > 0)
        for (const PathElement::Key& key : steps_[at - 1].keys)
            if (key.name != element.name)
                builder_.key(key.name, edit_.pathOffset).text(key.value, edit_.pathOffset);
    bool isThere = false;
    if (held)
        for (const JsonMember& member : held->members()) {
            if (localName(member.key) == element.name) {
                isThere = true;
                addMember(member.value, member.key, inner, at);
            } else {
                keepKey(member);
                keep(member.value);
            }
        }
    if (!isThere && !isRemoval()) addMember({}, element.name, inner, at);
    builder_.end();
}

void JsonEdit::addMember(const Held& held, std::string_view name, const ModelSchema* schema,
                         std::size_t at) {
    const bool isEntry = !steps_[at].keys.empty();
    if (!isEntry && removesHere(at)) return;
    builder_.key(name, edit_.pathOffset);
    if (isEntry)
        addEntries(held, schema, at);
    else
        addEdited(held, schema, at + 1);
}

void JsonEdit::addEntries(const Held& held, const ModelSchema* schema, std::size_t at) {
    const PathElement& element = steps_[at];
    builder_.beginArray(edit_.pathOffset);
    bool isThere = false;
    if (held)
        for (const JsonValue& entry : held->elements()) {
            if (!hasKeys(entry, element)) {
                keep(entry);
                continue;
            }
            isThere = true;
            if (!removesHere(at)) addEntry(entry, schema, at);
        }
    if (!isThere && !isRemoval()) addEntry({}, schema, at);
    builder_.end();
}

void JsonEdit::addEntry(const Held& held, const ModelSchema* schema, std::size_t at) {
    if (at + 1 < steps_.size() || !edit_.value->is(JsonKind::object) ||
        hasKeys(*edit_.value, steps_[at]) ||
        (held && edit_.operation == ConfigurationEdit::Operation::update)) {
        addEdited(held, schema, at + 1);
        return;
    }
    // The path says the keys of a whole entry, too.
    builder_.beginObject(edit_.value->offset());
    for (const PathElement::Key& key : steps_[at].keys)
        if (!memberOf(*edit_.value, key.name))
            builder_.key(key.name, edit_.pathOffset).text(key.value, edit_.pathOffset);
    for (const JsonMember& member : edit_.value->members())
        builder_.key(member.key, member.keyOffset).copy(member.value);
    builder_.end();
}

void JsonEdit::addMerged(const JsonValue& held, const JsonValue& value, const ModelSchema* schema,
                         bool isEntry) {
    if (held.is(JsonKind::object) && value.is(JsonKind::object))
        return addMergedObject(held, value, schema);
    if (!held.is(JsonKind::array) || !value.is(JsonKind::array)) {
        builder_.copy(value);
        return;
    }
    const bool isList = schema != nullptr && schema->isList() && !isEntry;
    if (isList)
        addMergedList(held, value, *schema);
    else if (holdsEntries(held) || holdsEntries(value))
        builder_.copy(value);
    else
        addUnion(held, value);
}

void JsonEdit::addMergedObject(const JsonValue& held, const JsonValue& value,
                               const ModelSchema* schema) {
    std::unordered_map<std::string_view, JsonValue, Orin::TextHash> given;
    for (const JsonMember& member : value.members())
        given.emplace(localName(member.key), member.value);
    std::unordered_set<std::string_view, Orin::TextHash> merged;
    builder_.beginObject(value.offset());
    for (const JsonMember& member : held.members()) {
        const std::string_view name = localName(member.key);
        const auto at = given.find(name);
        keepKey(member);
        if (at == given.end()) {
            keep(member.value);
            continue;
        }
        addMerged(member.value, at->second, childOf(schema, name), false);
        merged.insert(name);
    }
    for (const JsonMember& member : value.members())
        if (!merged.contains(localName(member.key)))
            builder_.key(member.key, member.keyOffset).copy(member.value);
    builder_.end();
}

void JsonEdit::addMergedList(const JsonValue& held, const JsonValue& value,
                             const ModelSchema& schema) {
    std::unordered_map<std::string_view, JsonValue, Orin::TextHash> given;
    for (const JsonValue& entry : value.elements())
        if (const auto key = keyOf(entry, schema)) given.emplace(*key, entry);
    std::unordered_set<std::string_view, Orin::TextHash> merged;
    builder_.beginArray(value.offset());
    for (const JsonValue& entry : held.elements()) {
        const auto key = keyOf(entry, schema);
        const auto at = key ? given.find(*key) : given.end();
        if (at == given.end()) {
            keep(entry);
            continue;
        }
        addMerged(entry, at->second, &schema, true);
        merged.insert(*key);
    }
    for (const JsonValue& entry : value.elements()) {
        const auto key = keyOf(entry, schema);
        // Of two entries with one key both are kept, and refused by whoever reads them.
        const bool isFirst = key && given.find(*key)->second.offset() == entry.offset();
        if (!isFirst || !merged.contains(*key)) builder_.copy(entry);
    }
    builder_.end();
}

void JsonEdit::addUnion(const JsonValue& held, const JsonValue& value) {
    std::unordered_set<std::string, Orin::TextHash> there;
    builder_.beginArray(value.offset());
    for (const JsonValue& element : held.elements()) {
        there.insert(scalarText(element));
        keep(element);
    }
    for (const JsonValue& element : value.elements())
        if (!there.contains(scalarText(element))) builder_.copy(element);
    builder_.end();
}

}  // namespace QosAgent
