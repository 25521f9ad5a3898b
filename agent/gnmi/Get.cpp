#include "agent/gnmi/Get.h"

#include <gnmi.pb.h>

#include <utility>

#include "agent/gnmi/Checks.h"
#include "agent/gnmi/Messages.h"
#include "agent/gnmi/ObjectWriter.h"

namespace QosAgent::Gnmi {

namespace {

using Event = TreeCursor::Event;

Query queryOf(Pattern pattern, gnmi::GetRequest::DataType type, std::size_t depth) {
    const bool wantsAll = type == gnmi::GetRequest::ALL;
    Query query;
    query.wantsConfig = wantsAll || type == gnmi::GetRequest::CONFIG;
    query.wantsKeys = query.wantsConfig;
    query.wantsState = type != gnmi::GetRequest::CONFIG;
    query.depth = depth;
    query.patterns.push_back(std::move(pattern));
    return query;
}

/// Walks with the cursor, which has just entered a requested node, until it leaves the node again.
std::string objectAt(TreeCursor& cursor, Encoding encoding) {
    ObjectWriter writer(encoding == Encoding::jsonIetf);
    for (std::size_t open = 1; open > 0;) {
        switch (cursor.next()) {
            case Event::enter:
                ++open;
                writer.enter(cursor.node());
                break;
            case Event::leave:
                if (--open > 0) writer.leave();
                break;
            case Event::leaf:
                writer.leaf(cursor.node(), cursor.json());
                break;
            case Event::end:
                return {};
        }
    }
    return writer.isEmpty() ? std::string() : writer.take();
}

/// One update for each leaf with PROTO, for each requested node otherwise.
std::vector<NodeUpdate> updatesOf(const Tree& tree, const Query& query, Encoding encoding) {
    std::vector<NodeUpdate> updates;
    TreeCursor cursor(tree, query);
    for (Event event = cursor.next(); event != Event::end; event = cursor.next()) {
        if (event == Event::leaf) {
            updates.push_back({cursor.path(), cursor.json(), 0});
        } else if (event == Event::enter && cursor.isInside() && encoding != Encoding::proto) {
            DataPath path = cursor.path();
            std::string object = objectAt(cursor, encoding);
            if (!object.empty()) updates.push_back({std::move(path), std::move(object), 0});
        }
    }
    return updates;
}

/// Whether there is anything where a request found nothing only because it limits the depth.
bool isTooShallow(const Tree& tree, Query query) {
    if (query.depth == 0) return false;
    query.depth = 0;
    return !updatesOf(tree, query, Encoding::proto).empty();
}

/// Answers the paths of one request.
class GetAnswer {
public:
    GetAnswer(const gnmi::GetRequest& request, const Tree& tree, std::int64_t timestamp,
              gnmi::GetResponse& response)
        : request_(request), tree_(tree), timestamp_(timestamp), response_(response) {}

    std::optional<Refusal> answer() {
        const auto extensions = extensionsOf(request_.extension(), Allowed::depth);
        if (const auto* wrong = std::get_if<Refusal>(&extensions)) return *wrong;
        depth_ = std::get<Extensions>(extensions).depth;
        const auto encoding = encodingOf(request_.encoding());
        if (const auto* wrong = std::get_if<Refusal>(&encoding)) return *wrong;
        encoding_ = std::get<Encoding>(encoding);
        if (auto wrong = checkModels(request_.use_models())) return wrong;
        if (!gnmi::GetRequest::DataType_IsValid(request_.type()))
            return Refusal{Code::invalidArgument, "an unknown type of data"};
        for (const gnmi::Path& path : request_.path())
            if (auto wrong = answerPath(path)) return wrong;
        return std::nullopt;
    }

private:
    std::optional<Refusal> answerPath(const gnmi::Path& path) {
        auto whole = joined(request_.has_prefix() ? &request_.prefix() : nullptr, path);
        if (auto* wrong = std::get_if<Refusal>(&whole)) return std::move(*wrong);
        auto pattern = Pattern::of(std::get<RequestPath>(std::move(whole)));
        if (auto* wrong = std::get_if<Refusal>(&pattern)) return std::move(*wrong);
        const bool isRoot = std::get<Pattern>(pattern).path().elements.empty();
        const std::string text = shown(std::get<Pattern>(pattern).path());
        const Query query = queryOf(std::get<Pattern>(std::move(pattern)), request_.type(), depth_);

        Notice notice{timestamp_, {}, updatesOf(tree_, query, encoding_)};
        if (notice.updates.empty() && !isTooShallow(tree_, query)) {
            if (!isRoot) return Refusal{Code::notFound, text + ": nothing is there"};
            if (encoding_ != Encoding::proto)
                notice.updates.push_back({{&schemaRoot(), {}}, "{}", 0});
        }
        write(notice, encoding_, request_.prefix().target(), *response_.add_notification());
        return std::nullopt;
    }

    const gnmi::GetRequest& request_;
    const Tree& tree_;
    const std::int64_t timestamp_;
    gnmi::GetResponse& response_;
    std::size_t depth_ = 0;
    Encoding encoding_ = Encoding::json;
};

}  // namespace

std::optional<Refusal> get(const gnmi::GetRequest& request, const Tree& tree,
                           std::int64_t timestamp, gnmi::GetResponse& response) {
    return GetAnswer(request, tree, timestamp, response).answer();
}

std::optional<Refusal> capabilities(const gnmi::CapabilityRequest& request,
                                    gnmi::CapabilityResponse& response) {
    const auto extensions = extensionsOf(request.extension(), Allowed::none);
    if (const auto* wrong = std::get_if<Refusal>(&extensions)) return *wrong;
    gnmi::ModelData& model = *response.add_supported_models();
    model.set_name(std::string(kModelName));
    model.set_organization(std::string(kModelOrganization));
    model.set_version(std::string(kModelVersion));
    for (const auto encoding : {gnmi::JSON, gnmi::JSON_IETF, gnmi::PROTO})
        response.add_supported_encodings(encoding);
    response.set_gnmi_version(
        gnmi::CapabilityRequest::descriptor()->file()->options().GetExtension(gnmi::gnmi_service));
    return std::nullopt;
}

}  // namespace QosAgent::Gnmi
