#include "tests/fuzz/GnmiEntries.h"

#include <gnmi.pb.h>


#include "agent/gnmi/Messages.h"
#include "agent/gnmi/Set.h"
#include "agent/gnmi/Stream.h"
#include "tests/agent/gnmi/Trees.h"
#include "tests/fuzz/Property.h"

namespace QosAgent {
namespace {

using namespace Gnmi;

constexpr const char* kConfiguration = R"({"openconfig-qos:qos": {
    "forwarding-groups": {"forwarding-group": [{"name": "gold", "config": {"name": "gold"}}]},
    "classifiers": {"classifier": [{"name": "c", "config": {"name": "c", "type": "IPV4"},
        "terms": {"term": [{"id": "t", "config": {"id": "t"},
            "conditions": {"ipv4": {"config": {"dscp": 46}}},
            "actions": {"config": {"target-group": "gold"}}}]}}]},
    "interfaces": {"interface": [{"interface-id": "e1", "config": {"interface-id": "e1"},
        "input": {"classifiers": {"classifier": [
            {"type": "IPV4", "config": {"type": "IPV4", "name": "c"}}]}}}]}}})";

const TreePtr& tree() {
    static const TreePtr tree = TreeBuilder()
                                    .configuration(kConfiguration)
                                    .classifier("c")
                                    .term("c", term("t", 46, "gold"))
                                    .policyMap("openconfig:c:")
                                    .build();
    return tree;
}

/// Nothing if the bytes are no message, which the transport refuses.
template <class Message>
std::optional<Message> read(std::string_view bytes) {
    Message message;
    if (!message.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()))) return {};
    return message;
}

void requireRefusal(const Refusal& refusal) {
    require(!refusal.message.empty(), "a refusal without words");
    require(refusal.message.size() < 2000, "a refusal of many words");
    requireLine(refusal.message);
}

void requireFindsWhatItMeans(Query query) {
    TreeCursor cursor(*tree(), query);
    for (auto event = cursor.next(); event != TreeCursor::Event::end; event = cursor.next())
        if (event == TreeCursor::Event::leaf)
            require(isMeant(query, cursor.path()), "a leaf is found that is not meant");
}

}  // namespace

void fuzzGnmiPath(std::string_view bytes) {
    const auto message = read<gnmi::Path>(bytes);
    if (!message) return;
    auto path = joined(nullptr, *message);
    if (const auto* refusal = std::get_if<Refusal>(&path)) return requireRefusal(*refusal);
    auto pattern = Pattern::of(std::get<RequestPath>(std::move(path)));
    if (const auto* refusal = std::get_if<Refusal>(&pattern)) return requireRefusal(*refusal);
    const Pattern& meant = std::get<Pattern>(pattern);
    const auto again = parseModelPath(toText(meant.path()));
    require(std::holds_alternative<ModelPath>(again), "the text of a path does not read back");
    require(std::get<ModelPath>(again).size() == meant.path().elements.size(),
            "the text of a path reads as another");
    Query query;
    query.patterns.push_back(meant);
    requireFindsWhatItMeans(std::move(query));
}

void fuzzGnmiSet(std::string_view bytes) {
    const auto request = read<gnmi::SetRequest>(bytes);
    if (!request) return;
    const auto edits = editsOf(*request, *tree());
    if (const auto* refusal = std::get_if<Refusal>(&edits)) return requireRefusal(*refusal);
    const std::string& line = std::get<Edits>(edits).line;
    if (line.empty()) return;
    TextDatabase db;
    const std::string first = std::string("{\"openconfig\":") + kConfiguration + '}';
    require(db.apply(first).empty(), "the base is refused");
    requireAllOrNothing(db, line, [&](std::string_view text) { return db.applyLine(text); });
}

void fuzzGnmiSubscribe(std::string_view bytes) {
    const auto request = read<gnmi::SubscribeRequest>(bytes);
    if (!request) return;
    auto list = subscriptionsOf(*request);
    if (const auto* refusal = std::get_if<Refusal>(&list)) return requireRefusal(*refusal);
    StreamCounters counters;
    Stream stream(std::get<SubscriptionList>(std::move(list)), counters);
    stream.setWake([] {});
    stream.begin(tree(), Stream::Clock::now());
    unsigned syncs = 0;
    while (const Bytes message = stream.next()) {
        const auto response = read<gnmi::SubscribeResponse>(*message);
        require(response.has_value(), "a message does not read back");
        require(syncs == 0, "a message behind the sync");
        if (response->sync_response()) ++syncs;
    }
    require(syncs == 1, "a stream without its sync");
}

}  // namespace QosAgent
