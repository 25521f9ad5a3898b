#include "agent/configuration/ModelSchema.h"

namespace QosAgent {
namespace {

using Nodes = std::span<const ModelSchema>;

constexpr ModelSchema list(std::string_view name, std::string_view key, Nodes children = {}) {
    return {name, key, children};
}
constexpr ModelSchema holder(std::string_view name, Nodes children) {
    return {name, {}, children};
}
constexpr ModelSchema apart(ModelSchema schema) {
    schema.isKeptApart = true;
    return schema;
}

constexpr ModelSchema kQueue[] = {list("queue", "name")};
constexpr ModelSchema kQueues[] = {holder("queues", kQueue)};
constexpr ModelSchema kInterfaceTerm[] = {list("term", "id")};
constexpr ModelSchema kInterfaceTerms[] = {holder("terms", kInterfaceTerm)};
constexpr ModelSchema kInterfaceClassifier[] = {list("classifier", "type", kInterfaceTerms)};
constexpr ModelSchema kInput[] = {list("input", "id")};
constexpr ModelSchema kInputs[] = {holder("inputs", kInput)};
constexpr ModelSchema kScheduler[] = {list("scheduler", "sequence", kInputs)};
constexpr ModelSchema kSchedulers[] = {holder("schedulers", kScheduler)};
constexpr ModelSchema kVoq[] = {list("voq-interface", "name", kQueues)};
constexpr ModelSchema kDirection[] = {
    holder("classifiers", kInterfaceClassifier),
    holder("queues", kQueue),
    holder("scheduler-policy", kSchedulers),
    holder("virtual-output-queues", kVoq),
};
constexpr ModelSchema kDirections[] = {holder("input", kDirection), holder("output", kDirection)};

constexpr ModelSchema kTerm[] = {apart(list("term", "id"))};
constexpr ModelSchema kTerms[] = {apart(holder("terms", kTerm))};
constexpr ModelSchema kClassifier[] = {apart(list("classifier", "name", kTerms))};
constexpr ModelSchema kGroup[] = {apart(list("forwarding-group", "name"))};
constexpr ModelSchema kTopQueue[] = {apart(list("queue", "name"))};
constexpr ModelSchema kInterface[] = {apart(list("interface", "interface-id", kDirections))};
constexpr ModelSchema kPolicy[] = {list("scheduler-policy", "name", kSchedulers)};
constexpr ModelSchema kBufferProfile[] = {list("buffer-allocation-profile", "name", kQueues)};
constexpr ModelSchema kQueueProfile[] = {list("queue-management-profile", "name")};
constexpr ModelSchema kQos[] = {
    apart(holder("forwarding-groups", kGroup)),
    apart(holder("queues", kTopQueue)),
    apart(holder("classifiers", kClassifier)),
    apart(holder("interfaces", kInterface)),
    holder("scheduler-policies", kPolicy),
    holder("buffer-allocation-profiles", kBufferProfile),
    holder("queue-management-profiles", kQueueProfile),
};
constexpr ModelSchema kTop[] = {apart(holder("qos", kQos))};
constexpr ModelSchema kRoot = apart(holder("", kTop));

}  // namespace

const ModelSchema* ModelSchema::child(std::string_view childName) const {
    for (const ModelSchema& node : children)
        if (node.name == childName) return &node;
    return nullptr;
}

const ModelSchema& ModelSchema::root() {
    return kRoot;
}

}  // namespace QosAgent
