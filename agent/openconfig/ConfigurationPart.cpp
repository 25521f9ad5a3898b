#include "agent/openconfig/ConfigurationPart.h"

#include <utility>

namespace QosAgent {
namespace {

using Node = ConfigurationNode;

constexpr auto kNoOffset = JsonBuilder::kNoOffset;
constexpr const char* kQos = "qos";
constexpr const char* kTerms = "terms";
constexpr const char* kTerm = "term";

ModelPath holderPath(const char* holder) {
    return {{kQos, {}}, {holder, {}}};
}

bool isEntryOf(const PathElement& element, std::string_view list) {
    return element.name == list && element.keys.size() == 1;
}

/// The text of a classifier's type; empty if it has none that can be read.
std::string_view typeOf(const Node* classifier) {
    const Node::Member* config = classifier == nullptr ? nullptr : classifier->member("config");
    if (config == nullptr || config->node->value() == nullptr) return {};
    const auto type = memberOf(config->node->value()->json, "type");
    return type ? type->value.text() : std::string_view();
}

/// What an edit brought with its path has its place there.
void addMember(JsonBuilder& builder, const Node::Member& member, std::uint64_t change) {
    const Node::Origin& origin = member.node->origin();
    builder.key(member.name, origin.change == change ? origin.offset : kNoOffset);
    addJson(builder, *member.node, change);
}

}  // namespace

ConfigurationPart::ConfigurationPart(const ConfigurationTree& before,
                                     const ConfigurationTree& after, std::uint64_t change)
    : before_(before), after_(after), change_(change) {
    eachDifference(before, after, [this](const ModelPath& path, const auto&, const auto& later) {
        note(path, later.has_value());
    });
    for (auto& [name, classifier] : classifiers_)
        classifier.isWhole = classifier.isWhole || changesType(name);
}

void ConfigurationPart::note(const ModelPath& path, bool isThere) {
    if (path.empty() || (path.size() == 1 && path[0].name == kQos)) {
        isWhole_ = true;
    } else if (path.size() == 1) {
        if (isThere) topMembers_.push_back(path[0].name);
    } else if (Holder* holder = holderNamed(path[1].name)) {
        noteInHolder(*holder, path, isThere);
    } else if (isThere && path[1].name != "queues") {
        qosMembers_.push_back(path[1].name);
    }
}

void ConfigurationPart::noteInHolder(Holder& holder, const ModelPath& path, bool isThere) {
    const PathElement* inside = path.size() > 2 ? &path[2] : nullptr;
    if (inside == nullptr) {
        noteHolder(holder);
    } else if (isEntryOf(*inside, holder.list) && path.size() == 3) {
        noteEntry(holder, inside->keys.front().value, isThere);
    } else if (isEntryOf(*inside, holder.list)) {
        noteInClassifier(path, isThere);
    } else if (inside->name == holder.list) {
        noteEntries(holder, before_.nodeAt(path).get(), false);
        noteEntries(holder, after_.nodeAt(path).get(), true);
    } else if (isThere) {
        holder.otherMembers.push_back(inside->name);
    }
}

void ConfigurationPart::noteHolder(Holder& holder) {
    const ModelPath path = holderPath(holder.name);
    for (const bool isThere : {false, true}) {
        const ConfigurationNodePtr node = (isThere ? after_ : before_).nodeAt(path);
        if (node == nullptr) continue;
        if (node->container() == nullptr) {
            isWhole_ = true;
            return;
        }
        for (const Node::Member& member : *node->container()) {
            if (localName(member.name) == holder.list)
                noteEntries(holder, member.node.get(), isThere);
            else if (isThere)
                holder.otherMembers.emplace_back(localName(member.name));
        }
    }
}

/// All entries of a list came or went. Of a list that came and went none is both: the trees compare
/// two lists entry by entry.
void ConfigurationPart::noteEntries(Holder& holder, const Node* list, bool isThere) {
    if (list == nullptr) return;
    if (list->list() == nullptr)
        isWhole_ = true;
    else
        list->list()->each([&](const auto& entry) { noteEntry(holder, entry->keyValue, isThere); });
}

void ConfigurationPart::noteEntry(Holder& holder, const std::string& key, bool isThere) {
    if (!isThere)
        (&holder == &classifierHolder_ ? removedClassifiers_ : holder.removed).push_back(key);
    else if (&holder == &classifierHolder_)
        classifiers_[key].isWhole = true;
    else
        holder.changed.push_back(key);
}

void ConfigurationPart::noteInClassifier(const ModelPath& path, bool isThere) {
    Classifier& classifier = classifiers_[path[2].keys.front().value];
    const bool isInTerms = path[3].name == kTerms;
    if (isInTerms && path.size() == 5 && isEntryOf(path[4], kTerm)) {
        const std::string& term = path[4].keys.front().value;
        if (isThere)
            classifier.changedTerms.insert(term);
        else
            classifier.removedTerms.push_back(term);
    } else if (isInTerms && path.size() == 5 && path[4].name != kTerm) {
        if (isThere) classifier.otherMembers.push_back(path[4].name);
    } else if (isInTerms) {
        classifier.isWhole = true;
    }
}

bool ConfigurationPart::changesType(const std::string& name) const {
    const ModelPath path{
        {kQos, {}}, {classifierHolder_.name, {}}, {classifierHolder_.list, {{"name", name}}}};
    return typeOf(before_.nodeAt(path).get()) != typeOf(after_.nodeAt(path).get());
}

ConfigurationPart::Holder* ConfigurationPart::holderNamed(std::string_view name) {
    for (Holder* holder : {&groups_, &classifierHolder_, &interfaces_})
        if (holder->name == name) return holder;
    return nullptr;
}

Json ConfigurationPart::document() const {
    JsonBuilder builder;
    builder.beginObject(kNoOffset);
    addMembers(builder, after_.root().get(), topMembers_);
    builder.key("openconfig-qos:qos", kNoOffset).beginObject(kNoOffset);
    addMembers(builder, after_.nodeAt({{kQos, {}}}).get(), qosMembers_);
    for (const Holder* holder : {&groups_, &classifierHolder_, &interfaces_})
        addHolder(builder, *holder);
    return builder.end().end().take();
}

void ConfigurationPart::addHolder(JsonBuilder& builder, const Holder& holder) const {
    const bool hasClassifiers = &holder == &classifierHolder_ && !classifiers_.empty();
    const bool hasEntries = hasClassifiers || !holder.changed.empty();
    if (!hasEntries && holder.otherMembers.empty()) return;
    builder.key(holder.name, kNoOffset).beginObject(kNoOffset);
    addMembers(builder, after_.nodeAt(holderPath(holder.name)).get(), holder.otherMembers);
    if (hasEntries) {
        builder.key(holder.list, kNoOffset).beginArray(kNoOffset);
        for (const std::string& key : holder.changed)
            addJson(builder, *entryOf(holder, key), change_);
        for (const auto& [name, classifier] : classifiers_)
            if (hasClassifiers) addClassifier(builder, name);
        builder.end();
    }
    builder.end();
}

ConfigurationNodePtr ConfigurationPart::entryOf(const Holder& holder,
                                                const std::string& key) const {
    return after_.nodeAt({{kQos, {}}, {holder.name, {}}, {holder.list, {{holder.key, key}}}});
}

void ConfigurationPart::addClassifier(JsonBuilder& builder, const std::string& name) const {
    const Classifier& changed = classifiers_.at(name);
    const ConfigurationNodePtr node = entryOf(classifierHolder_, name);
    if (changed.isWhole || node->container() == nullptr) {
        addJson(builder, *node, change_);
        return;
    }
    builder.beginObject(kNoOffset);
    for (const Node::Member& member : *node->container()) {
        if (localName(member.name) == kTerms)
            addTerms(builder.key(member.name, kNoOffset), *member.node, changed);
        else
            addMember(builder, member, change_);
    }
    builder.end();
}

void ConfigurationPart::addTerms(JsonBuilder& builder, const Node& terms,
                                 const Classifier& changed) const {
    builder.beginObject(kNoOffset);
    addMembers(builder, &terms, changed.otherMembers);
    if (!changed.changedTerms.empty()) {
        const Node::List& list = *terms.member(kTerm)->node->list();
        builder.key(kTerm, kNoOffset).beginArray(kNoOffset);
        for (const std::string& term : changed.changedTerms)
            addJson(builder, *(*list.find(term))->node, change_);
        builder.end();
    }
    builder.end();
}

void ConfigurationPart::addMembers(JsonBuilder& builder, const Node* container,
                                   const Names& names) const {
    if (names.empty()) return;
    const std::set<std::string_view> wanted(names.begin(), names.end());
    for (const Node::Member& member : *container->container())
        if (wanted.contains(localName(member.name))) addMember(builder, member, change_);
}

}  // namespace QosAgent
