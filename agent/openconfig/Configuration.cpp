#include "agent/openconfig/Configuration.h"

namespace QosAgent {

std::optional<Fault> applyConfiguration(Database&, const JsonValue& document) {
    return Fault{document.offset(), "OpenConfig configurations are not supported yet"};
}

}  // namespace QosAgent
