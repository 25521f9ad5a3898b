#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "agent/gnmi/Notice.h"
#include "agent/gnmi/Refusal.h"

namespace google::protobuf {
template <typename Element>
class RepeatedPtrField;
}
namespace gnmi {
class ModelData;
}
namespace gnmi_ext {
class Extension;
class Commit;
}  // namespace gnmi_ext

/// Checks that several calls share.
namespace QosAgent::Gnmi {

OrRefusal<Encoding> encodingOf(int encoding);

std::optional<Refusal> checkModels(
    const google::protobuf::RepeatedPtrField<gnmi::ModelData>& models);

/// What the extensions of a request ask for.
struct Extensions {
    std::size_t depth = 0;  ///< 0: no limit
    const gnmi_ext::Commit* commit = nullptr;
};

/// Which of the extensions a call allows.
enum class Allowed { none, depth, commit };

OrRefusal<Extensions> extensionsOf(
    const google::protobuf::RepeatedPtrField<gnmi_ext::Extension>& extensions, Allowed allowed);

}  // namespace QosAgent::Gnmi
