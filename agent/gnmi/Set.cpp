#include "agent/gnmi/Set.h"

#include <gnmi.pb.h>
#include <gnmi_ext.pb.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "agent/gnmi/Checks.h"
#include "agent/gnmi/Messages.h"
#include "agent/gnmi/Values.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent::Gnmi {

namespace {

Refusal at(const RequestPath& path, Refusal refusal) {
    refusal.message = shown(path) + ": " + refusal.message;
    return refusal;
}

/// In a Set, a path in `/qos` that the model does not have is a mistake, not a missing service.
Refusal forSet(Refusal refusal, const RequestPath& path) {
    const bool isQos =
        !path.elements.empty() &&
        (path.elements.front().name == "qos" || path.elements.front().name == "openconfig-qos:qos");
    if (refusal.code == Code::unimplemented && isQos) refusal.code = Code::notFound;
    return refusal;
}

/// The node of the model that a path without wildcards names.
const SchemaNode& nodeOf(const RequestPath& path) {
    const SchemaNode* node = &schemaRoot();
    for (const PathElement& element : path.elements)
        node = node->child(element.name);
    return *node;
}

bool isState(const SchemaNode& node) {
    for (const SchemaNode* step : node.chain())
        if (step->name() == "state" && !step->isLeaf()) return true;
    return false;
}

/// Whether a path that may have wildcards names `state` itself, and so nothing that can be set.
bool namesState(const RequestPath& path) {
    return std::any_of(path.elements.begin(), path.elements.end(),
                       [](const PathElement& element) { return element.name == "state"; });
}

/// Collects the edits of one Set.
class Translation {
public:
    Translation(const gnmi::SetRequest& request, const Tree& tree)
        : request_(request), tree_(tree) {}

    std::optional<Refusal> translate() {
        if (request_.union_replace_size() > 0) return translateUnion();
        for (const gnmi::Path& path : request_.delete_())
            if (auto wrong = addDelete(path)) return wrong;
        for (const gnmi::Update& update : request_.replace())
            if (auto wrong = addEdit("replace", update)) return wrong;
        for (const gnmi::Update& update : request_.update())
            if (auto wrong = addEdit("update", update)) return wrong;
        return std::nullopt;
    }

    Edits take() {
        if (!edits_.paths.empty() || edits_.hasWildcards)
            edits_.line = "{\"configure\":[" + edits_.line + "]}";
        return std::move(edits_);
    }

private:
    /// The union of all values takes the place of the configuration.
    std::optional<Refusal> translateUnion() {
        if (request_.delete__size() + request_.replace_size() + request_.update_size() > 0)
            return Refusal{Code::invalidArgument,
                           "union_replace must not stand beside delete, replace or update"};
        add("delete", "/qos", {});
        for (const gnmi::Update& update : request_.union_replace())
            if (auto wrong = addEdit("update", update)) return wrong;
        return std::nullopt;
    }

    OrRefusal<Pattern> patternOf(const gnmi::Path& path) const {
        auto whole = joined(request_.has_prefix() ? &request_.prefix() : nullptr, path);
        if (auto* wrong = std::get_if<Refusal>(&whole)) return std::move(*wrong);
        auto pattern = Pattern::of(std::get<RequestPath>(whole));
        if (auto* wrong = std::get_if<Refusal>(&pattern))
            return forSet(std::move(*wrong), std::get<RequestPath>(whole));
        return pattern;
    }

    std::optional<Refusal> addDelete(const gnmi::Path& path) {
        auto pattern = patternOf(path);
        if (auto* wrong = std::get_if<Refusal>(&pattern)) return std::move(*wrong);
        Pattern& meant = std::get<Pattern>(pattern);
        if (namesState(meant.path())) return refuseState(meant.path());
        if (meant.hasWildcards()) {
            edits_.hasWildcards = true;
            addDeletesOf(std::move(meant));
            return std::nullopt;
        }
        add("delete", toText(meant.path()), {});
        return std::nullopt;
    }

    /// One delete for each node of the configuration that the pattern names.
    void addDeletesOf(Pattern pattern) {
        Query query;
        query.wantsState = false;
        query.patterns.push_back(std::move(pattern));
        TreeCursor cursor(tree_, query);
        std::vector<DataPath> found;
        for (auto event = cursor.next(); event != TreeCursor::Event::end; event = cursor.next()) {
            const bool isNode =
                event == TreeCursor::Event::enter || event == TreeCursor::Event::leaf;
            if (!isNode || !cursor.isInside() || isState(cursor.node())) continue;
            if (!found.empty() && cursor.path().isAtOrBelow(found.back())) continue;
            if (tree_.configOf(cursor.path())) found.push_back(cursor.path());
        }
        for (const DataPath& node : found)
            add("delete", toText(node), {});
    }

    std::optional<Refusal> addEdit(std::string_view operation, const gnmi::Update& update) {
        auto pattern = patternOf(update.path());
        if (auto* wrong = std::get_if<Refusal>(&pattern)) return std::move(*wrong);
        const Pattern& meant = std::get<Pattern>(pattern);
        const std::string text = toText(meant.path());
        if (meant.hasWildcards())
            return at(meant.path(), {Code::invalidArgument, "a wildcard or a missing key"});
        const SchemaNode& node = nodeOf(meant.path());
        if (isState(node)) return refuseState(meant.path());
        if (update.has_value())
            return at(meant.path(),
                      {Code::invalidArgument, "the field \"value\" is obsolete, use \"val\""});
        auto json = jsonOf(update.val(), node);
        if (auto* wrong = std::get_if<Refusal>(&json)) return at(meant.path(), std::move(*wrong));
        if (operation == "replace" && node.isList() && std::get<std::string>(json) == "{}")
            return at(meant.path(),
                      {Code::invalidArgument, "an entry without its key; delete what is to go"});
        add(operation, text, std::get<std::string>(json));
        return std::nullopt;
    }

    static Refusal refuseState(const RequestPath& path) {
        return at(path, {Code::invalidArgument, "state cannot be set"});
    }

    void add(std::string_view operation, std::string path, const std::string& json) {
        std::string& line = edits_.line;
        line.append(line.empty() ? "{" : ",{");
        appendQuoted(line, operation);
        line += ':';
        appendQuoted(line, path);
        if (operation != "delete") line.append(",\"value\":").append(json);
        line += '}';
        edits_.paths.push_back(std::move(path));
    }

    const gnmi::SetRequest& request_;
    const Tree& tree_;
    Edits edits_;
};

constexpr std::chrono::milliseconds kRollbackTime = std::chrono::minutes(10);

std::chrono::milliseconds timeOf(const google::protobuf::Duration& duration) {
    // A year is as good as any longer time.
    constexpr std::int64_t kMostSeconds = std::int64_t{365} * 24 * 3600;
    const std::int64_t seconds = std::min<std::int64_t>(duration.seconds(), kMostSeconds);
    // What is left of a millisecond counts as one.
    return std::chrono::milliseconds(seconds * 1000 + (duration.nanos() + 999'999) / 1'000'000);
}

OrRefusal<CommitAction> actionOf(const gnmi_ext::Commit& commit, bool hasEdits) {
    const auto wrong = [](std::string message) {
        return Refusal{Code::invalidArgument, "the extension commit " + std::move(message)};
    };
    if (commit.id().empty()) return wrong("has no id");
    CommitAction action{CommitAction::Kind::begin, commit.id(), kRollbackTime};
    switch (commit.action_case()) {
        case gnmi_ext::Commit::kCommit:
            if (!commit.commit().has_rollback_duration()) return action;
            action.time = timeOf(commit.commit().rollback_duration());
            if (action.time.count() <= 0) return wrong("has a rollback_duration of 0 or less");
            return action;
        case gnmi_ext::Commit::kConfirm:
            action.kind = CommitAction::Kind::confirm;
            break;
        case gnmi_ext::Commit::kCancel:
            action.kind = CommitAction::Kind::cancel;
            break;
        case gnmi_ext::Commit::kSetRollbackDuration:
            action.kind = CommitAction::Kind::postpone;
            action.time = timeOf(commit.set_rollback_duration().rollback_duration());
            if (action.time.count() <= 0) return wrong("has a rollback_duration of 0 or less");
            break;
        case gnmi_ext::Commit::ACTION_NOT_SET:
            return wrong("names no action");
    }
    if (hasEdits) return wrong("allows no edits beside this action");
    return action;
}

}  // namespace

OrRefusal<Edits> editsOf(const gnmi::SetRequest& request, const Tree& tree) {
    const auto extensions = extensionsOf(request.extension(), Allowed::commit);
    if (const auto* wrong = std::get_if<Refusal>(&extensions)) return *wrong;
    Translation translation(request, tree);
    if (auto wrong = translation.translate()) return *wrong;
    Edits edits = translation.take();
    if (const gnmi_ext::Commit* commit = std::get<Extensions>(extensions).commit) {
        auto action = actionOf(*commit, !edits.paths.empty());
        if (auto* wrong = std::get_if<Refusal>(&action)) return std::move(*wrong);
        edits.commit = std::get<CommitAction>(std::move(action));
    }
    return edits;
}

void answer(const gnmi::SetRequest& request, std::int64_t timestamp, gnmi::SetResponse& response) {
    if (request.has_prefix()) *response.mutable_prefix() = request.prefix();
    response.mutable_prefix()->set_origin(kOrigin);
    response.set_timestamp(timestamp);
    const auto add = [&](const gnmi::Path& path, gnmi::UpdateResult::Operation operation) {
        gnmi::UpdateResult& result = *response.add_response();
        *result.mutable_path() = path;
        result.mutable_path()->clear_origin();
        result.set_op(operation);
    };
    for (const gnmi::Path& path : request.delete_())
        add(path, gnmi::UpdateResult::DELETE);
    for (const gnmi::Update& update : request.replace())
        add(update.path(), gnmi::UpdateResult::REPLACE);
    for (const gnmi::Update& update : request.update())
        add(update.path(), gnmi::UpdateResult::UPDATE);
    for (const gnmi::Update& update : request.union_replace())
        add(update.path(), gnmi::UpdateResult::UNION_REPLACE);
}

}  // namespace QosAgent::Gnmi
