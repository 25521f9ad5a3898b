#include "platform/QosOc/Config/ClassifierConfig.h"

#include "platform/Vex/Derive.h"

namespace QosOc::Config {

constinit const Vex::TypeRecord ClassifierConfig::kTypeRecord = Vex::recordOf<ClassifierConfig>();

Vex::TraceHelper& operator<<(Vex::TraceHelper& line, const ClassifierConfig& config) {
    line << config.name;
    if (config.type) line << " (" << *config.type << ")";
    return line;
}

}  // namespace QosOc::Config
