#include "bench/agent/RuleDocument.h"

#include <cstdlib>
#include <variant>

#include "agent/database/Document.h"
#include "agent/json/JsonReader.h"
#include "platform/Vex/Entity.h"

namespace QosBench {
namespace {

std::string documentWith(std::size_t rules) {
    std::string sequence;
    std::string byId;
    for (std::size_t rule = 1; rule <= rules; ++rule) {
        const std::string id = std::to_string(rule);
        const std::string separator = rule == 1 ? "" : ",";
        sequence.append(separator).append("\"").append(id).append("\":").append(id);
        byId.append(separator).append("\"").append(id);
        byId.append("\":{\"filter\":{\"dscpValue\":").append(std::to_string(rule % 64));
        byId.append(",\"dscpEnabled\":true}}");
    }
    return R"({"acl/config/cli":{"aclTypeConfig":{"ipv4":{"aclConfig":{"openconfig:c:t":)"
           R"({"aclSubConfig":{"ruleIdBySequence":{)" +
           sequence + R"(},"ipRuleById":{)" + byId + "}}}}}}}}";
}

template <class Root>
Orin::Ptr<Root> rootAt(const QosAgent::Database& database, std::string_view path) {
    return Vex::entityCast<Root>(database.subtreeAt(path)->root);
}

}  // namespace

RuleDocument::RuleDocument(std::size_t rules) : text_(documentWith(rules)) {}

void RuleDocument::load() {
    database_ = std::make_unique<QosAgent::Database>();
    const QosAgent::JsonResult json = QosAgent::parseJson(text_);
    const auto* document = std::get_if<QosAgent::Json>(&json);
    if (document == nullptr || QosAgent::checkDocument(*database_, document->root())) std::abort();
    QosAgent::mergeDocument(*database_, document->root());
    root_ = QosOc::ClassifierStateSm::ClassifierStateSmIs(
        rootAt<const Qos::Status>(*database_, "qos/status"),
        rootAt<const Acl::Input::Config>(*database_, "acl/config/cli"),
        rootAt<const Qos::Input::Config>(*database_, "qos/input/config/cli"),
        rootAt<const QosOc::Config::ClassifiersDir>(*database_,
                                                    "qos/openconfig/config/classifiers"),
        rootAt<QosOc::State::ClassifiersDir>(*database_, "qos/openconfig/state/classifiers"));
}

void RuleDocument::unload() {
    root_ = nullptr;
    database_ = nullptr;
}

}  // namespace QosBench
