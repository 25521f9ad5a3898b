#include "agent/store/ConfigurationRecords.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "agent/configuration/ModelPath.h"
#include "agent/database/Path.h"
#include "agent/json/JsonBuilder.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {
namespace {

using Node = ConfigurationNode;
using NodePtr = ConfigurationNodePtr;
using Lists = std::map<std::string, const Node::List*>;

constexpr const char* kOrder = "order";
constexpr const char* kNode = "node";

/// Writes a node without the entries of its lists.
void writeWithoutEntries(JsonWriter& writer, const Node& node) {
    if (const Node::Value* value = node.value()) return writeJson(writer, value->json);
    const Node::Container* container = node.container();
    if (container == nullptr) {
        writer.beginArray().endArray();
        return;
    }
    writer.beginObject();
    for (const Node::Member& member : *container)
        writeWithoutEntries(writer.key(member.name), *member.node);
    writer.endObject();
}

std::string recordOf(const Node& node, std::uint64_t order) {
    std::string text;
    JsonWriter writer(text);
    writer.beginObject().key(kOrder).number(order).key(kNode);
    writeWithoutEntries(writer, node);
    writer.endObject();
    return text;
}

/// The lists of a node that are in no other list, by their paths from there.
void collectLists(const Node& node, const std::string& path, Lists& lists) {
    if (node.list() != nullptr) lists.emplace(path, node.list());
    if (node.container() == nullptr) return;
    for (const Node::Member& member : *node.container())
        collectLists(*member.node, path + '/' + std::string(localName(member.name)), lists);
}

Lists listsOf(const NodePtr& node) {
    Lists lists;
    if (node != nullptr) collectLists(*node, "", lists);
    return lists;
}

/// Steps are joined by `/`, and the root has no name.
std::string joined(const std::string& path, std::string_view relative) {
    if (path.empty() && relative.starts_with('/')) relative.remove_prefix(1);
    return path + std::string(relative);
}

class Differ {
public:
    explicit Differ(std::vector<RecordEdit>& edits) : edits_(edits) {}

    struct Placed {
        NodePtr node;
        std::uint64_t order;
    };
    void compare(const std::string& path, const Placed& before, const Placed& after) {
        if (after.node == nullptr) {
            if (before.node != nullptr) add(RecordEdit::Kind::eraseBelow, path);
            return;
        }
        std::string record = recordOf(*after.node, after.order);
        if (before.node == nullptr || recordOf(*before.node, before.order) != record)
            add(RecordEdit::Kind::put, path, std::move(record));
        if (before.node != after.node)
            compareLists(path, listsOf(before.node), listsOf(after.node));
    }

private:
    void compareLists(const std::string& path, const Lists& before, const Lists& after) {
        static const Node::List kNone;
        for (const auto& [relative, list] : before)
            if (!after.contains(relative))
                add(RecordEdit::Kind::eraseBelow, joined(path, relative));
        for (const auto& [relative, list] : after) {
            const auto held = before.find(relative);
            compareEntries(joined(path, relative), held == before.end() ? kNone : *held->second,
                           *list);
        }
    }
    void compareEntries(const std::string& path, const Node::List& before,
                        const Node::List& after) {
        Node::List::eachDifference(before, after, [&](const auto& earlier, const auto& later) {
            const std::string& key = (earlier != nullptr ? earlier : later)->keyValue;
            std::string place = path;
            appendKeyStep(place, key);
            compare(place, placed(earlier, before, key), placed(later, after, key));
        });
    }
    static Placed placed(const Node::List::EntryPtr& entry, const Node::List& list,
                         const std::string& key) {
        if (entry == nullptr) return {nullptr, 0};
        return {entry->node, list.orderOf(key)};
    }
    void add(RecordEdit::Kind kind, const std::string& path, std::string value = {}) {
        edits_.push_back({kind, {RecordArea::configuration, path}, std::move(value)});
    }

    std::vector<RecordEdit>& edits_;
};

}  // namespace

void writeDifference(const ConfigurationTree& before, const ConfigurationTree& after,
                     std::vector<RecordEdit>& edits) {
    if (before.root() == after.root()) return;
    Differ(edits).compare("", {before.root(), 0}, {after.root(), 0});
}

/// A record, and the parts that belong into its lists.
struct ConfigurationLoader::Part {
    Json record;
    std::uint64_t order;
    std::map<std::string, std::vector<const Part*>, std::less<>> lists;

    JsonValue node() const { return record.root().find(kNode)->value; }
};

/// Builds the whole document. An entry that a record was kept for stands at the offset that is its
/// place in `orders`, everything else nowhere.
struct ConfigurationLoader::Assembly {
    JsonBuilder builder;
    std::vector<std::uint64_t> orders;

    void add(const Part& part, const JsonValue& value, const std::string& path,
             std::size_t offset) {
        if (value.is(JsonKind::array)) {
            if (const auto list = part.lists.find(path); list != part.lists.end())
                return addList(list->second);
        }
        if (!value.is(JsonKind::object)) {
            builder.copy(value, JsonBuilder::kNoOffset);
            return;
        }
        builder.beginObject(offset);
        for (const JsonMember& member : value.members()) {
            builder.key(member.key, JsonBuilder::kNoOffset);
            if (part.lists.empty())
                builder.copy(member.value, JsonBuilder::kNoOffset);
            else
                add(part, member.value, path + '/' + std::string(localName(member.key)),
                    JsonBuilder::kNoOffset);
        }
        builder.end();
    }
    void addList(std::vector<const Part*> parts) {
        std::sort(parts.begin(), parts.end(),
                  [](const Part* left, const Part* right) { return left->order < right->order; });
        builder.beginArray(JsonBuilder::kNoOffset);
        for (const Part* part : parts) {
            orders.push_back(part->order);
            add(*part, part->node(), "", orders.size() - 1);
        }
        builder.end();
    }
};

ConfigurationLoader::ConfigurationLoader() = default;
ConfigurationLoader::~ConfigurationLoader() = default;

std::string ConfigurationLoader::add(std::string_view path, std::string_view record) {
    JsonResult parsed = parseJson(record);
    Json* json = std::get_if<Json>(&parsed);
    const auto order = json == nullptr ? std::nullopt : json->root().find(kOrder);
    if (!order || !order->value.plainNumber() || !json->root().find(kNode))
        return "no record of a configuration";
    auto part = std::make_unique<Part>(Part{std::move(*json), *order->value.plainNumber(), {}});
    const Part* added = part.get();
    if (!parts_.emplace(std::string(path), std::move(part)).second) return "twice there";
    if (path.empty()) return {};
    // The list is what lies between the entry that holds it and the key.
    const std::string list(path.substr(0, path.rfind('/')));
    for (std::size_t end = list.rfind('/');; end = end == 0 ? 0 : list.rfind('/', end - 1)) {
        if (end == std::string::npos) end = 0;
        const auto holder = parts_.find(list.substr(0, end));
        if (holder != parts_.end()) {
            holder->second->lists[(end == 0 ? "/" : "") + list.substr(end)].push_back(added);
            return {};
        }
        if (end == 0) return "nothing holds it";
    }
}

ConfigurationTree ConfigurationLoader::take() {
    const auto root = parts_.find("");
    if (root == parts_.end()) return {};
    Assembly assembly;
    assembly.add(*root->second, root->second->node(), "", JsonBuilder::kNoOffset);
    parts_.clear();
    const auto json = std::make_shared<const Json>(assembly.builder.take());
    return ConfigurationTree::of(json, json->root(), assembly.orders);
}

}  // namespace QosAgent
