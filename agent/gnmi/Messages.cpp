#include "agent/gnmi/Messages.h"

#include <gnmi.pb.h>

#include "agent/gnmi/Values.h"

namespace QosAgent::Gnmi {

namespace {

std::optional<Refusal> checkOrigin(const gnmi::Path& path) {
    if (path.origin().empty() || path.origin() == kOrigin) return std::nullopt;
    return Refusal{Code::unimplemented,
                   "origin \"" + path.origin() + "\" is not served, only \"openconfig\" is"};
}

/// What is wrong with one of the paths of a request, apart from its elements.
std::optional<Refusal> checkEnvelope(const gnmi::Path* prefix, const gnmi::Path& path) {
    if (path.element_size() > 0 || (prefix != nullptr && prefix->element_size() > 0))
        return Refusal{Code::invalidArgument,
                       "the field \"element\" of paths is obsolete, use \"elem\""};
    if (!path.target().empty())
        return Refusal{Code::invalidArgument, "a target belongs in the prefix, not in a path"};
    if (prefix != nullptr && !prefix->origin().empty() && !path.origin().empty())
        return Refusal{Code::invalidArgument, "an origin in the prefix and in a path"};
    if (prefix != nullptr)
        if (auto wrong = checkOrigin(*prefix)) return wrong;
    return checkOrigin(path);
}

void addElements(const gnmi::Path& path, RequestPath& joined) {
    for (const gnmi::PathElem& element : path.elem()) {
        PathElement& added = joined.elements.emplace_back();
        added.name = element.name();
        for (const auto& [name, value] : element.key())
            added.keys.emplace(name, value);
    }
}

void writeScalar(const Scalar& scalar, gnmi::TypedValue& message) {
    if (const auto* text = std::get_if<std::string>(&scalar))
        message.set_string_val(*text);
    else if (const auto* number = std::get_if<std::uint64_t>(&scalar))
        message.set_uint_val(*number);
    else if (const auto* integer = std::get_if<std::int64_t>(&scalar))
        message.set_int_val(*integer);
    else
        message.set_bool_val(std::get<bool>(scalar));
}

void writeProto(const NodeUpdate& update, gnmi::TypedValue& message) {
    const SchemaNode& leaf = *update.path.node;
    if (leaf.kind() == NodeKind::leafList) {
        gnmi::ScalarArray& list = *message.mutable_leaflist_val();
        for (const Scalar& scalar : scalarsOf(update.json, leaf))
            writeScalar(scalar, *list.add_element());
    } else {
        writeScalar(scalarOf(update.json, leaf), message);
    }
}

std::optional<Scalar> scalarOfMessage(const gnmi::TypedValue& value) {
    switch (value.value_case()) {
        case gnmi::TypedValue::kStringVal:
            return value.string_val();
        case gnmi::TypedValue::kUintVal:
            return std::uint64_t{value.uint_val()};
        case gnmi::TypedValue::kIntVal:
            return std::int64_t{value.int_val()};
        case gnmi::TypedValue::kBoolVal:
            return value.bool_val();
        default:
            return std::nullopt;
    }
}

OrRefusal<std::string> jsonOfList(const gnmi::ScalarArray& list, const SchemaNode& node) {
    if (node.kind() != NodeKind::leafList)
        return Refusal{Code::invalidArgument, "a list of scalars for what is no leaf-list"};
    std::string json = "[";
    for (const gnmi::TypedValue& element : list.element()) {
        const auto scalar = scalarOfMessage(element);
        if (!scalar) return Refusal{Code::invalidArgument, "an element that is no scalar"};
        if (json.size() > 1) json += ',';
        json += toJson(*scalar, node);
    }
    return json + "]";
}

}  // namespace

OrRefusal<RequestPath> joined(const gnmi::Path* prefix, const gnmi::Path& path) {
    if (auto wrong = checkEnvelope(prefix, path)) return *wrong;
    RequestPath joined;
    if (prefix != nullptr) addElements(*prefix, joined);
    addElements(path, joined);
    return joined;
}

void write(const DataPath& path, gnmi::Path& message) {
    auto key = path.keys.begin();
    for (const SchemaNode* node : path.node->chain()) {
        gnmi::PathElem& element = *message.add_elem();
        element.set_name(std::string(node->name()));
        if (node->isList()) (*element.mutable_key())[std::string(node->key())] = *key++;
    }
}

void write(const NodeUpdate& update, Encoding encoding, gnmi::TypedValue& message) {
    switch (encoding) {
        case Encoding::json:
            message.set_json_val(update.json);
            break;
        case Encoding::jsonIetf:
            message.set_json_ietf_val(update.json);
            break;
        case Encoding::proto:
            writeProto(update, message);
            break;
    }
}

void write(const Notice& notice, Encoding encoding, const std::string& target,
           gnmi::Notification& message) {
    message.set_timestamp(notice.timestamp);
    message.mutable_prefix()->set_origin(kOrigin);
    if (!target.empty()) message.mutable_prefix()->set_target(target);
    for (const DataPath& path : notice.deletes)
        write(path, *message.add_delete_());
    for (const NodeUpdate& update : notice.updates) {
        gnmi::Update& added = *message.add_update();
        write(update.path, *added.mutable_path());
        write(update, encoding, *added.mutable_val());
        added.set_duplicates(update.duplicates);
    }
}

std::string serialised(const Notice& notice, Encoding encoding, const std::string& target) {
    gnmi::SubscribeResponse response;
    write(notice, encoding, target, *response.mutable_update());
    return response.SerializeAsString();
}

std::string serialisedSync() {
    gnmi::SubscribeResponse response;
    response.set_sync_response(true);
    return response.SerializeAsString();
}

OrRefusal<std::string> jsonOf(const gnmi::TypedValue& value, const SchemaNode& node) {
    switch (value.value_case()) {
        case gnmi::TypedValue::kJsonVal:
            return compactJson(value.json_val());
        case gnmi::TypedValue::kJsonIetfVal:
            return compactJson(value.json_ietf_val());
        case gnmi::TypedValue::kLeaflistVal:
            return jsonOfList(value.leaflist_val(), node);
        case gnmi::TypedValue::kBytesVal:
        case gnmi::TypedValue::kAnyVal:
        case gnmi::TypedValue::kAsciiVal:
        case gnmi::TypedValue::kProtoBytes:
            return Refusal{Code::unimplemented,
                           "an unsupported encoding; JSON, JSON_IETF and scalars are supported"};
        case gnmi::TypedValue::VALUE_NOT_SET:
            return Refusal{Code::invalidArgument, "no value"};
        default:
            break;
    }
    const auto scalar = scalarOfMessage(value);
    if (!scalar) return Refusal{Code::invalidArgument, "no leaf of the model has fractions"};
    if (node.kind() != NodeKind::leaf)
        return Refusal{Code::invalidArgument, "a scalar for what is no leaf"};
    return toJson(*scalar, node);
}

}  // namespace QosAgent::Gnmi
