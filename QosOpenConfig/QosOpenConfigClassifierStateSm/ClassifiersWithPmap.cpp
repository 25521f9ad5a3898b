#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifiersWithPmap.h"

#include "platform/Vex/Derive.h"

namespace QosOc {

constinit const Vex::TypeRecord ClassifiersWithPmap::kTypeRecord =
    Vex::recordOf<ClassifiersWithPmap>();

ClassifiersWithPmap::~ClassifiersWithPmap() = default;

Orin::Ptr<ClassifiersWithPmap> ClassifiersWithPmap::ClassifiersWithPmapIs() {
    return create();
}

Orin::Ptr<ClassifiersWithPmap> classifiersWithPmapFactory() {
    return ClassifiersWithPmap::ClassifiersWithPmapIs();
}

void ClassifiersWithPmap::classifierIs(const Config::ClassifierConfig& key, unsigned count) {
    if (unsigned* held = classifier_.find(key))
        *held = count;
    else
        classifier_.enter(key, count);
}

unsigned ClassifiersWithPmap::classifierDel(const Config::ClassifierConfig& key) {
    return classifier_.remove(key).value_or(0);
}

void ClassifiersWithPmap::classifierDelAll() {
    classifier_.clear();
}

}  // namespace QosOc
