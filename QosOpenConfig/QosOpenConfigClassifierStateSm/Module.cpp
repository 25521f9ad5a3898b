#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Module.h"

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"

namespace QosOc {
namespace {

constexpr const Vex::TypeRecord* kTypes[] = {
    &ClassifierStateSm::kTypeRecord, &ClassifiersWithPmap::kTypeRecord,
    &CmapTypeStatusSm::kTypeRecord,  &CmapStatusSm::kTypeRecord,
    &PmapTypeStatusSm::kTypeRecord,  &PmapStatusSm::kTypeRecord,
    &AclTypeStateSm::kTypeRecord,    &AclStateSm::kTypeRecord,
    &AclSubStateSm::kTypeRecord,     &ClassifierConfigSm::kTypeRecord,
    &ClassifierTermsSm::kTypeRecord,
};

}  // namespace

constinit const Vex::Module kStateSmModule{"QosOpenConfigClassifierStateSm", kTypes};

}  // namespace QosOc
