#include "agent/gnmi/StateSource.h"

#include "agent/json/JsonWriter.h"

namespace QosAgent::Gnmi {

namespace {

constexpr std::string_view kClassifiers = "classifier/";
constexpr std::string_view kState = "/state";
constexpr std::string_view kTerms = "/terms/term/";

void appendEscaped(std::string& path, std::string_view key) {
    for (const char byte : key) {
        if (byte == '~')
            path += "~0";
        else if (byte == '/')
            path += "~1";
        else
            path += byte;
    }
}

/// Reads one key of a path and takes it off the front.
std::string takeKey(std::string_view& path) {
    std::string key;
    std::size_t at = 0;
    for (; at < path.size() && path[at] != '/'; ++at) {
        const bool isEscape = path[at] == '~' && at + 1 < path.size();
        key += isEscape ? (path[++at] == '0' ? '~' : '/') : path[at];
    }
    path.remove_prefix(at);
    return key;
}

std::string quoted(std::string_view text) {
    std::string json;
    appendQuoted(json, text);
    return json;
}

std::string listOf(const std::vector<std::uint8_t>& values) {
    std::string json;
    JsonWriter writer(json);
    writer.beginArray();
    for (const std::uint8_t value : values)
        writer.number(value);
    writer.endArray();
    return json;
}

/// The leaves of the state of terms.
struct TermLeaves {
    struct Family {
        const SchemaNode* dscp;
        const SchemaNode* dscpSet;
    };
    const SchemaNode* id = termList().child("state")->child("id");
    Family ipv4 = family("ipv4");
    Family ipv6 = family("ipv6");
    const SchemaNode* targetGroup =
        termList().child("actions")->child("state")->child("target-group");

    static Family family(std::string_view name) {
        const SchemaNode* state = termList().child("conditions")->child(name)->child("state");
        return {state->child("dscp"), state->child("dscp-set")};
    }
};

void addConditions(std::vector<LeafValue>& leaves, const TermLeaves::Family& family,
                   const StateConditions& conditions) {
    if (conditions.dscp) leaves.push_back({family.dscp, std::to_string(*conditions.dscp)});
    if (!conditions.dscpSet.empty()) leaves.push_back({family.dscpSet, listOf(conditions.dscpSet)});
}

std::vector<LeafValue> termLeaves(const StateTerm& term) {
    static const TermLeaves nodes;
    std::vector<LeafValue> leaves{{nodes.id, quoted(term.stateId)}};
    addConditions(leaves, nodes.ipv4, term.ipv4);
    addConditions(leaves, nodes.ipv6, term.ipv6);
    if (term.targetGroup && !term.targetGroup->empty())
        leaves.push_back({nodes.targetGroup, quoted(*term.targetGroup)});
    return leaves;
}

std::vector<LeafValue> classifierLeaves(const StateValue& value) {
    static const SchemaNode* const name = classifierList().child("state")->child("name");
    static const SchemaNode* const type = classifierList().child("state")->child("type");
    return {{name, quoted(value.classifier)}, {type, quoted(value.type)}};
}

std::string classifierPath(std::string_view name) {
    std::string path(kClassifiers);
    appendEscaped(path, name);
    return path;
}

}  // namespace

const SchemaNode& classifierList() {
    static const SchemaNode& list = schemaNode("/qos/classifiers/classifier");
    return list;
}

const SchemaNode& termList() {
    static const SchemaNode& list = schemaNode("/qos/classifiers/classifier/terms/term");
    return list;
}

std::string statePath(const DataPath& entry) {
    std::string path = classifierPath(entry.keys.front());
    if (entry.node == &classifierList()) return path;
    path += kTerms;
    appendEscaped(path, entry.keys[1]);
    return path;
}

DataPath entryOfStatePath(std::string_view path) {
    path.remove_prefix(kClassifiers.size());
    std::string classifier = takeKey(path);
    if (!path.starts_with(kTerms)) return {&classifierList(), {std::move(classifier)}};
    path.remove_prefix(kTerms.size());
    std::string term = takeKey(path);
    return {&termList(), {std::move(classifier), std::move(term)}};
}

bool StateSource::canHoldEntries(const SchemaNode& node) {
    return termList().isAtOrBelow(node);
}

std::optional<std::string> StateSource::nextKey(const SchemaNode& list,
                                                const std::vector<std::string>& keys,
                                                const std::string* last) const {
    if (&list != &classifierList() && &list != &termList()) return std::nullopt;
    std::string prefix(kClassifiers);
    if (&list == &termList()) prefix = classifierPath(keys.front()).append(kTerms);
    std::string from = prefix;
    if (last != nullptr) {
        appendEscaped(from, *last);
        from += '0';  // the byte behind '/': past all below the entry
    }
    const StateMap::Entry* found = map_.firstFrom(from);
    // A term's own path ends with its key, so the next one may stand before `from`.
    if (last != nullptr && &list == &termList()) {
        from.pop_back();
        found = map_.firstAfter(from);
    }
    if (found == nullptr || !found->path.starts_with(prefix)) return std::nullopt;
    std::string_view rest = std::string_view(found->path).substr(prefix.size());
    return takeKey(rest);
}

bool StateSource::hasEntry(const DataPath& entry) const {
    if (entry.node != &classifierList() && entry.node != &termList()) return false;
    return map_.holds(statePath(entry));
}

std::vector<LeafValue> StateSource::leaves(const DataPath& entry) const {
    if (entry.node == &classifierList()) {
        const auto value = map_.find(statePath(entry).append(kState));
        if (value != nullptr) return classifierLeaves(*value);
    } else if (entry.node == &termList()) {
        const auto value = map_.find(statePath(entry));
        if (value != nullptr && value->term) return termLeaves(*value->term);
    }
    return {};
}

}  // namespace QosAgent::Gnmi
