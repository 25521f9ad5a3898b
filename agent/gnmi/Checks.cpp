#include "agent/gnmi/Checks.h"

#include <gnmi.pb.h>
#include <gnmi_ext.pb.h>

#include "agent/gnmi/Schema.h"

namespace QosAgent::Gnmi {

namespace {

Refusal notWithThisCall(std::string_view name) {
    return {Code::invalidArgument,
            "the extension " + std::string(name) + " does not belong to this call"};
}

Refusal notSupported(std::string_view name) {
    return {Code::unimplemented, "the extension " + std::string(name) + " is not supported"};
}

std::optional<Refusal> take(const gnmi_ext::Extension& extension, Allowed allowed,
                            Extensions& taken) {
    switch (extension.ext_case()) {
        case gnmi_ext::Extension::kDepth:
            if (allowed != Allowed::depth) return notWithThisCall("depth");
            taken.depth = extension.depth().level();
            return std::nullopt;
        case gnmi_ext::Extension::kCommit:
            if (allowed != Allowed::commit) return notWithThisCall("commit");
            if (taken.commit != nullptr)
                return Refusal{Code::invalidArgument, "more than one commit extension"};
            taken.commit = &extension.commit();
            return std::nullopt;
        case gnmi_ext::Extension::kMasterArbitration:
            return notSupported("master_arbitration");
        case gnmi_ext::Extension::kHistory:
            return notSupported("history");
        case gnmi_ext::Extension::kConfigSubscription:
            return notSupported("config_subscription");
        default:
            return std::nullopt;
    }
}

}  // namespace

OrRefusal<Encoding> encodingOf(int encoding) {
    switch (encoding) {
        case gnmi::JSON:
            return Encoding::json;
        case gnmi::PROTO:
            return Encoding::proto;
        case gnmi::JSON_IETF:
            return Encoding::jsonIetf;
        default:
            break;
    }
    const std::string name = gnmi::Encoding_IsValid(encoding)
                                 ? gnmi::Encoding_Name(static_cast<gnmi::Encoding>(encoding))
                                 : std::to_string(encoding);
    return Refusal{Code::unimplemented,
                   "the encoding " + name + " is not supported; JSON, JSON_IETF and PROTO are"};
}

std::optional<Refusal> checkModels(
    const google::protobuf::RepeatedPtrField<gnmi::ModelData>& models) {
    for (const gnmi::ModelData& model : models)
        if (model.name() != kModelName)
            return Refusal{Code::unimplemented, "the model \"" + model.name() +
                                                    "\" is not served, only \"" +
                                                    std::string(kModelName) + "\" is"};
    return std::nullopt;
}

OrRefusal<Extensions> extensionsOf(
    const google::protobuf::RepeatedPtrField<gnmi_ext::Extension>& extensions, Allowed allowed) {
    Extensions taken;
    for (const gnmi_ext::Extension& extension : extensions)
        if (auto wrong = take(extension, allowed, taken)) return *wrong;
    return taken;
}

}  // namespace QosAgent::Gnmi
